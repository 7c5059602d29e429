#include "engine/graphemes_p.h"
#include "model/icutext_p.h"

#include <algorithm>

namespace quillfern {

Graphemes::Graphemes()
{
    UErrorCode status = U_ZERO_ERROR;
    m_iterator.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (!icutext::succeeded(status))
        m_iterator.reset();
}

bool Graphemes::isOneUnitPerCharacter(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80 && unit != u'\r'; });
}

qsizetype Graphemes::count(const QString &text)
{
    if (isOneUnitPerCharacter(text) || !m_iterator)
        return text.size();
    const icu::UnicodeString input = icutext::alias(text);
    m_iterator->setText(input);
    qsizetype characters = 0;
    while (m_iterator->next() != icu::BreakIterator::DONE)
        ++characters;
    return characters;
}

qsizetype Graphemes::offsetOf(const QString &text, qint64 position)
{
    Q_ASSERT(position >= 0);
    if (isOneUnitPerCharacter(text) || !m_iterator)
        return qsizetype(std::min<qint64>(position, text.size()));
    const icu::UnicodeString input = icutext::alias(text);
    m_iterator->setText(input);
    int32_t offset = 0;
    for (qint64 passed = 0; passed < position; ++passed) {
        const int32_t next = m_iterator->next();
        if (next == icu::BreakIterator::DONE)
            break;
        offset = next;
    }
    return offset;
}

} // namespace quillfern
