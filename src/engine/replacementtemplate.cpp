#include "engine/replacementtemplate_p.h"

#include <algorithm>

namespace quillfern {

ReplacementTemplate::ReplacementTemplate(const QString &text, int groupCount)
    : m_text(text)
{
    parse(groupCount);
}

void ReplacementTemplate::appendLiteral(QChar character)
{
    if (m_pieces.isEmpty() || !std::holds_alternative<QString>(m_pieces.last()))
        m_pieces.append(QString());
    std::get<QString>(m_pieces.last()).append(character);
}

void ReplacementTemplate::parse(int groupCount)
{
    // Follows ICU's reading of a template; the rare forms it reads specially are left to ICU.
    const QString &text = m_text;
    // A digit or escaped character outside the basic plane is rare enough to leave to ICU.
    if (std::any_of(text.begin(), text.end(), [](QChar unit) { return unit.isSurrogate(); }))
        return;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        if (character == u'\\') {
            if (i + 1 == text.size() || text[i + 1] == u'u' || text[i + 1] == u'U')
                return;
            appendLiteral(text[++i]);
            continue;
        }
        if (character != u'$') {
            appendLiteral(character);
            continue;
        }
        if (i + 1 < text.size() && text[i + 1] == u'{')
            return;
        // ICU takes as many digits as keep the group number valid, and needs at least one.
        int group = 0;
        qsizetype digits = 0;
        while (i + 1 < text.size() && text[i + 1].isDigit()) {
            const int next = group * 10 + text[i + 1].digitValue();
            if (next > groupCount)
                break;
            group = next;
            ++digits;
            ++i;
        }
        if (digits == 0) {
            m_isInvalid = true;
            m_isParsed = true;
            return;
        }
        m_pieces.append(group);
    }
    m_isParsed = true;
}

} // namespace quillfern
