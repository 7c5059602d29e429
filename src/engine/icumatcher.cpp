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
    // ICU's C interface, which the platform's regular expressions are built on, refuses an empty pattern; the
    // C++ one would match the empty string everywhere.
    if (pattern.isEmpty())
        return;
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

int IcuMatcher::groupCount() const
{
    return m_matcher ? m_matcher->groupCount() : 0;
}

template<typename Append>
bool IcuMatcher::forEachMatch(Append append)
{
    UErrorCode status = U_ZERO_ERROR;
    while (m_matcher->find(status) && icutext::succeeded(status)) {
        const int32_t start = m_matcher->start(status);
        const int32_t end = m_matcher->end(status);
        if (!icutext::succeeded(status) || !append(start, end))
            return false;
    }
    return icutext::succeeded(status);
}

std::optional<QString> IcuMatcher::replaceAllByIcu(const QString &text, const QString &replacement)
{
    const icu::UnicodeString input = icutext::alias(text);
    m_matcher->reset(input);
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString result = m_matcher->replaceAll(icutext::alias(replacement), status);
    if (!icutext::succeeded(status))
        return std::nullopt;
    return icutext::toQString(result);
}

std::optional<QString> IcuMatcher::replaceAll(const QString &text, const ReplacementTemplate &replacement)
{
    if (!m_matcher)
        return std::nullopt;
    if (!replacement.isParsed())
        return replaceAllByIcu(text, replacement.text());
    // Expanding the parsed template here avoids ICU's per-character template reading on every match.
    const icu::UnicodeString input = icutext::alias(text);
    m_matcher->reset(input);
    QString result;
    qsizetype copiedUpTo = 0;
    const bool succeeded = forEachMatch([&](int32_t start, int32_t end) {
        if (replacement.isInvalid())
            return false;
        result += QStringView(text).sliced(copiedUpTo, start - copiedUpTo);
        for (const ReplacementTemplate::Piece &piece : replacement.pieces()) {
            if (const auto *literal = std::get_if<QString>(&piece)) {
                result += *literal;
                continue;
            }
            UErrorCode status = U_ZERO_ERROR;
            const int32_t groupStart = m_matcher->start(std::get<int>(piece), status);
            const int32_t groupEnd = m_matcher->end(std::get<int>(piece), status);
            if (!icutext::succeeded(status))
                return false;
            // A group that took no part in the match inserts nothing.
            if (groupStart >= 0)
                result += QStringView(text).sliced(groupStart, groupEnd - groupStart);
        }
        copiedUpTo = end;
        return true;
    });
    if (!succeeded)
        return std::nullopt;
    if (copiedUpTo == 0 && result.isEmpty())
        return text;
    return result + QStringView(text).sliced(copiedUpTo);
}

std::optional<QString> IcuMatcher::replaceAllLiterally(const QString &text, const QString &replacement)
{
    if (!m_matcher)
        return std::nullopt;
    const icu::UnicodeString input = icutext::alias(text);
    m_matcher->reset(input);
    QString result;
    qsizetype copiedUpTo = 0;
    const bool succeeded = forEachMatch([&](int32_t start, int32_t end) {
        result += QStringView(text).sliced(copiedUpTo, start - copiedUpTo) + replacement;
        copiedUpTo = end;
        return true;
    });
    if (!succeeded)
        return std::nullopt;
    return result + QStringView(text).sliced(copiedUpTo);
}

} // namespace quillfern
