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
        return QStringView(u" _-().").contains(QChar(scalar));
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
    return text.sliced(start, end - start);
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
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size();) {
        const char32_t scalar = text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()
                                    ? QChar::surrogateToUcs4(text.at(i), text.at(i + 1))
                                    : text.at(i).unicode();
        const qsizetype length = QChar::requiresSurrogates(scalar) ? 2 : 1;
        if (isKept(scalar))
            result += QStringView(text).sliced(i, length);
        i += length;
    }
    return result;
}

} // namespace quillfern::textcleanup
