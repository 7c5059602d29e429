#include "engine/textcleanup_p.h"

#include <QStringView>

namespace quillfern::textcleanup {

namespace {

bool isWhitespace(QChar unit)
{
    // Every space separator is in the basic plane, so code units suffice.
    return unit == u'\t' || unit.category() == QChar::Separator_Space;
}

bool isKept(char32_t scalar)
{
    // ASCII alone is decided without a lookup in the Unicode tables.
    if (scalar < 0x80) {
        const auto ascii = char(scalar);
        switch (ascii) {
        case ' ':
        case '_':
        case '-':
        case '(':
        case ')':
        case '.':
            return true;
        default:
            return (ascii >= 'a' && ascii <= 'z') || (ascii >= 'A' && ascii <= 'Z') || (ascii >= '0' && ascii <= '9');
        }
    }
    switch (QChar::category(scalar)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
        return true;
    default:
        return false;
    }
}

} // namespace

QString trimWhitespace(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isWhitespace(text[start]))
        ++start;
    while (end > start && isWhitespace(text[end - 1]))
        --end;
    // Sharing the text when nothing is trimmed saves a copy per name.
    return start == 0 && end == text.size() ? text : text.sliced(start, end - start);
}

QString collapseSpaces(const QString &text)
{
    if (!text.contains(u"  "))
        return text;
    QString result;
    result.reserve(text.size());
    for (const QChar unit : text) {
        if (unit != u' ' || !result.endsWith(u' '))
            result += unit;
    }
    return result;
}

QString keepAlphanumerics(const QString &text)
{
    QString result(text.size(), Qt::Uninitialized);
    QChar *out = result.data();
    for (qsizetype i = 0; i < text.size();) {
        const bool isPair = text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const char32_t scalar = isPair ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1)) : text.at(i).unicode();
        const qsizetype length = isPair ? 2 : 1;
        if (isKept(scalar)) {
            for (qsizetype unit = 0; unit < length; ++unit)
                *out++ = text.at(i + unit);
        }
        i += length;
    }
    result.truncate(out - result.constData());
    return result;
}

} // namespace quillfern::textcleanup
