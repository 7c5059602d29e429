#pragma once

#include "engine/replacementtemplate_p.h"

#include <QString>

#include <unicode/regex.h>

#include <memory>
#include <optional>

namespace quillfern {

/// One compiled ICU pattern and its matcher, bounded in time and stack so that a pathological pattern cannot
/// freeze a preview. Not thread-safe: each thread compiles its own.
class IcuMatcher final
{
public:
    /// A code-unit range [start, end) of a match in the searched text.
    struct Range
    {
        qsizetype start = 0;
        qsizetype end = 0;
    };

    /// Compiles the pattern with the ICU flags (UREGEX_*); an invalid pattern gives a matcher that never matches.
    IcuMatcher(const QString &pattern, uint32_t flags);

    /// The number of capture groups of the pattern.
    [[nodiscard]] int groupCount() const;

    /// The first match in the text; none when there is none, the pattern is invalid or the limits were hit.
    [[nodiscard]] std::optional<Range> firstMatch(const QString &text);

    /// The text with every match replaced by the expanded template; none when the pattern is invalid, the
    /// template cannot be expanded or the limits were hit.
    [[nodiscard]] std::optional<QString> replaceAll(const QString &text, const ReplacementTemplate &replacement);

    /// The text with every match replaced by the replacement as it is; none when the pattern is invalid or the
    /// limits were hit.
    [[nodiscard]] std::optional<QString> replaceAllLiterally(const QString &text, const QString &replacement);

private:
    /// Calls `append(start, end)` for each match in the text that was last reset; false on an ICU failure.
    template<typename Append>
    [[nodiscard]] bool forEachMatch(Append append);
    [[nodiscard]] std::optional<QString> replaceAllByIcu(const QString &text, const QString &replacement);

    std::unique_ptr<icu::RegexMatcher> m_matcher;
};

} // namespace quillfern
