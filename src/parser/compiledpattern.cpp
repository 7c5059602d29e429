#include "model/icutext_p.h"
#include "parser/compiledpattern_p.h"

namespace quillfern {

namespace {

std::unique_ptr<const icu::RegexPattern> compile(const char16_t *pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<const icu::RegexPattern> compiled(
        icu::RegexPattern::compile(icu::UnicodeString(pattern), 0, status));
    return icutext::succeeded(status) ? std::move(compiled) : nullptr;
}

} // namespace

CompiledPattern::CompiledPattern(const char16_t *pattern)
    : m_pattern(compile(pattern))
{
}

std::optional<QStringList> CompiledPattern::firstMatch(const QString &subject, int groupCount) const
{
    if (!m_pattern)
        return std::nullopt;
    // Matchers keep per-search state, so each search gets its own; the compiled pattern itself is immutable.
    const icu::UnicodeString text = icutext::alias(subject);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> matcher(m_pattern->matcher(text, status));
    if (!icutext::succeeded(status) || !matcher->find(status) || !icutext::succeeded(status)
        || matcher->groupCount() < groupCount)
        return std::nullopt;

    QStringList captures;
    for (int group = 0; group <= groupCount; ++group) {
        const int32_t start = matcher->start(group, status);
        const int32_t end = matcher->end(group, status);
        // A group that took no part in the match reports -1.
        if (!icutext::succeeded(status) || start < 0 || end < start || end > subject.size())
            return std::nullopt;
        captures.append(subject.sliced(start, end - start));
    }
    return captures;
}

} // namespace quillfern
