#pragma once

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

    /// How the replacement text of replaceAll is read.
    enum class Replacement {
        /// A template: $n and ${name} insert groups, a backslash escapes the next character.
        Template,
        /// The text as it is.
        Literal,
    };

    /// Compiles the pattern with the ICU flags (UREGEX_*); an invalid pattern gives a matcher that never matches.
    IcuMatcher(const QString &pattern, uint32_t flags);

    [[nodiscard]] bool isValid() const { return m_matcher != nullptr; }

    /// The first match in the text; none when there is none, the pattern is invalid or the limits were hit.
    [[nodiscard]] std::optional<Range> firstMatch(const QString &text);

    /// The text with every match replaced; none when the pattern is invalid, the template refers to a missing
    /// group or the limits were hit.
    [[nodiscard]] std::optional<QString> replaceAll(const QString &text,
                                                    const QString &replacement,
                                                    Replacement kind);

private:
    std::unique_ptr<icu::RegexMatcher> m_matcher;
};

} // namespace quillfern
