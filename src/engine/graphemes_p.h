#pragma once

#include "engine/lazybreakiterator_p.h"

#include <QString>

namespace quillfern {

/// Counts and locates user-perceived characters (grapheme clusters) in text. Not thread-safe: each thread
/// makes its own.
class Graphemes final
{
public:
    /// The number of characters in the text.
    [[nodiscard]] qsizetype count(const QString &text);

    /// The code-unit offset where the character at `position` starts, the end of the text when it has no more
    /// characters. `position` must not be negative.
    [[nodiscard]] qsizetype offsetOf(const QString &text, qint64 position);

private:
    /// Whether every character is one code unit (ASCII without CR, which joins a following LF).
    [[nodiscard]] static bool isOneUnitPerCharacter(QStringView text);

    LazyBreakIterator m_iterator{LazyBreakIterator::Kind::Character};
};

} // namespace quillfern
