#pragma once

#include <QString>

#include <unicode/brkiter.h>

#include <memory>

namespace quillfern {

/// Full Unicode case mapping, independent of the user's locale (no Turkish dotless-i rules), with ICU's
/// word-break title-casing. Not thread-safe: each thread makes its own.
class CaseMapper final
{
public:
    CaseMapper();

    [[nodiscard]] QString upper(const QString &text) const;
    [[nodiscard]] QString lower(const QString &text) const;
    /// The first letter of every word upper-case (title-case), every other letter lower-case.
    [[nodiscard]] QString title(const QString &text);

private:
    std::unique_ptr<icu::BreakIterator> m_wordIterator;
};

} // namespace quillfern
