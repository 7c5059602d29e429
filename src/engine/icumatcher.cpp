#include "engine/icumatcher_p.h"

#include "model/icutext_p.h"

namespace quillfern {

namespace {

// In steps of the match engine, roughly milliseconds each: far above what any real file name needs, far below
// what a user would notice while typing a pattern.
constexpr int32_t matchTimeLimit = 20;
// Backtracking patterns such as (a+)+ grow ICU's heap-allocated stack; cap it well below the default 8 MB.
constexpr int32_t matchStackLimit = 1024 * 1024;

} // namespace

IcuMatcher::IcuMatcher(const QString &pattern, uint32_t flags)
{
    UErrorCode status = U_ZERO_ERROR;
    auto matcher = std::make_unique<icu::RegexMatcher>(icutext::alias(pattern), flags, status);
    if (!icutext::succeeded(status))
        return;
    matcher->setTimeLimit(matchTimeLimit, status);
    matcher->setStackLimit(matchStackLimit, status);
    if (icutext::succeeded(status))
        m_matcher = std::move(matcher);
}

std::optional<IcuMatcher::Range> IcuMatcher::firstMatch(const QString &text)
{
    if (!m_matcher)
        return std::nullopt;
    const icu::UnicodeString input = icutext::alias(text);
    m_matcher->reset(input);
    UErrorCode status = U_ZERO_ERROR;
    const bool found = m_matcher->find(status);
    if (!icutext::succeeded(status) || !found)
        return std::nullopt;
    const int32_t start = m_matcher->start(status);
    const int32_t end = m_matcher->end(status);
    if (!icutext::succeeded(status))
        return std::nullopt;
    return Range{start, end};
}

std::optional<QString> IcuMatcher::replaceAll(const QString &text, const QString &replacement, Replacement kind)
{
    if (!m_matcher)
        return std::nullopt;
    const icu::UnicodeString input = icutext::alias(text);
    m_matcher->reset(input);
    UErrorCode status = U_ZERO_ERROR;
    if (kind == Replacement::Template) {
        const icu::UnicodeString result = m_matcher->replaceAll(icutext::alias(replacement), status);
        if (!icutext::succeeded(status))
            return std::nullopt;
        return icutext::toQString(result);
    }
    // A literal replacement may hold $ and backslashes, which replaceAll would read as a template.
    QString result;
    qsizetype copiedUpTo = 0;
    while (m_matcher->find(status) && icutext::succeeded(status)) {
        const int32_t start = m_matcher->start(status);
        const int32_t end = m_matcher->end(status);
        if (!icutext::succeeded(status))
            return std::nullopt;
        result += QStringView(text).sliced(copiedUpTo, start - copiedUpTo) + replacement;
        copiedUpTo = end;
    }
    if (!icutext::succeeded(status))
        return std::nullopt;
    result += QStringView(text).sliced(copiedUpTo);
    return result;
}

} // namespace quillfern
