#pragma once

// Private to the parser: exposes an ICU type.

#include <QString>
#include <QStringList>

#include <unicode/regex.h>

#include <memory>
#include <optional>

namespace quillfern {

/// A regular expression (ICU syntax, no options) compiled once and then shared read-only between threads.
/// A pattern that does not compile never matches.
class CompiledPattern final
{
public:
    explicit CompiledPattern(const char16_t *pattern);

    /// The texts of the whole match (index 0) and of groups 1 to `groupCount` for the first match anywhere in
    /// `subject`; none when there is no match or any of those groups did not take part in it.
    [[nodiscard]] std::optional<QStringList> firstMatch(const QString &subject, int groupCount) const;

private:
    std::unique_ptr<const icu::RegexPattern> m_pattern;
};

} // namespace quillfern
