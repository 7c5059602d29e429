#include "engine/casemapper_p.h"

#include "model/icutext_p.h"

#include <unicode/locid.h>

namespace quillfern {

namespace {

bool isAscii(QStringView text)
{
    for (const QChar unit : text) {
        if (unit.unicode() >= 0x80)
            return false;
    }
    return true;
}

} // namespace

CaseMapper::CaseMapper()
{
    UErrorCode status = U_ZERO_ERROR;
    m_wordIterator.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
    if (!icutext::succeeded(status))
        m_wordIterator.reset();
}

QString CaseMapper::upper(const QString &text) const
{
    // ASCII maps one to one, and Qt's mapping of it is the same and much cheaper.
    if (isAscii(text))
        return text.toUpper();
    icu::UnicodeString mapped(icutext::alias(text));
    return icutext::toQString(mapped.toUpper(icu::Locale::getRoot()));
}

QString CaseMapper::lower(const QString &text) const
{
    if (isAscii(text))
        return text.toLower();
    icu::UnicodeString mapped(icutext::alias(text));
    return icutext::toQString(mapped.toLower(icu::Locale::getRoot()));
}

QString CaseMapper::title(const QString &text)
{
    icu::UnicodeString mapped(icutext::alias(text));
    // Without an iterator ICU would create a word iterator per call.
    return icutext::toQString(mapped.toTitle(m_wordIterator.get(), icu::Locale::getRoot()));
}

} // namespace quillfern
