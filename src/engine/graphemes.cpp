#include "engine/graphemes_p.h"
#include "model/icutext_p.h"

#include <algorithm>

namespace quillfern {

bool Graphemes::isOneUnitPerCharacter(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80 && unit != u'\r'; });
}

qsizetype Graphemes::count(const QString &text)
{
    icu::BreakIterator *iterator = isOneUnitPerCharacter(text) ? nullptr : m_iterator.get();
    if (!iterator)
        return text.size();
    const icu::UnicodeString input = icutext::alias(text);
    iterator->setText(input);
    qsizetype characters = 0;
    while (iterator->next() != icu::BreakIterator::DONE)
        ++characters;
    return characters;
}

qsizetype Graphemes::offsetOf(const QString &text, qint64 position)
{
    Q_ASSERT(position >= 0);
    icu::BreakIterator *iterator = isOneUnitPerCharacter(text) ? nullptr : m_iterator.get();
    if (!iterator)
        return qsizetype(std::min<qint64>(position, text.size()));
    const icu::UnicodeString input = icutext::alias(text);
    iterator->setText(input);
    int32_t offset = 0;
    for (qint64 passed = 0; passed < position; ++passed) {
        const int32_t next = iterator->next();
        if (next == icu::BreakIterator::DONE)
            break;
        offset = next;
    }
    return offset;
}

} // namespace quillfern
