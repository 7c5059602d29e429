#pragma once

#include "engine/lazybreakiterator_p.h"

#include <QString>

namespace quillfern {

/// Full Unicode case mapping, independent of the user's locale (no Turkish dotless-i rules), with ICU's
/// word-break title-casing. Not thread-safe: each thread makes its own.
class CaseMapper final
{
public:
    [[nodiscard]] QString upper(const QString &text) const;
    [[nodiscard]] QString lower(const QString &text) const;
    /// The first letter of every word upper-case (title-case), every other letter lower-case.
    [[nodiscard]] QString title(const QString &text);

    /// Turns title()'s shortcut for names of plain ASCII words on or off (it is on unless turned off), for every
    /// mapper of the process: for the benchmark that times the shortcut against ICU and the test that holds the
    /// two equal.
    static void setPlainAsciiTitleShortcut(bool isOn);

private:
    LazyBreakIterator m_wordIterator{LazyBreakIterator::Kind::Word};
};

} // namespace quillfern
