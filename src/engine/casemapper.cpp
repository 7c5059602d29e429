#include "engine/casemapper_p.h"
#include "model/icutext_p.h"

#include <unicode/casemap.h>

#include <atomic>

namespace quillfern {

namespace {

std::atomic<bool> isPlainAsciiTitleShortcutOn = true;

bool isAscii(QStringView text)
{
    for (const QChar unit : text) {
        if (unit.unicode() >= 0x80)
            return false;
    }
    return true;
}

/// Runs an icu::CaseMap function straight into a QString buffer, growing it once if the first guess was short
/// (full case mapping can lengthen text: "ß" becomes "SS"). The text comes back unchanged if ICU fails.
template<typename Map>
QString mapped(const QString &text, Map map)
{
    const auto *source = reinterpret_cast<const char16_t *>(text.utf16());
    QString result(text.size() + 8, Qt::Uninitialized);
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t length = map(source,
            int32_t(text.size()),
            reinterpret_cast<char16_t *>(result.data()),
            int32_t(result.size()),
            status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            result = QString(length, Qt::Uninitialized);
            continue;
        }
        if (!icutext::succeeded(status))
            return text;
        result.truncate(length);
        return result;
    }
    return text;
}

/// Whether ICU's word breaks in the text are simply the edges of runs of ASCII letters, digits and
/// underscores: ASCII without the characters that can join two such runs into one word. Unicode's word rules
/// join runs of ASCII only across : . ' , ; " (ICU's root rules no longer join at the colon; excluding it costs
/// nothing), and ICU's root rules count "@" as a letter, so "user@example" is one word. The equivalence test
/// holds the shortcut to ICU around every ASCII character.
bool hasPlainAsciiWords(QStringView text)
{
    for (const QChar unit : text) {
        switch (unit.unicode()) {
        case u'.':
        case u'\'':
        case u':':
        case u',':
        case u';':
        case u'"':
        case u'@':
            return false;
        default:
            if (unit.unicode() >= 0x80)
                return false;
        }
    }
    return true;
}

bool isAsciiLetter(char16_t unit)
{
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool isAsciiWordCharacter(char16_t unit)
{
    return isAsciiLetter(unit) || (unit >= u'0' && unit <= u'9') || unit == u'_';
}

char16_t asciiLower(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? char16_t(unit + (u'a' - u'A')) : unit;
}

char16_t asciiUpper(char16_t unit)
{
    return unit >= u'a' && unit <= u'z' ? char16_t(unit - (u'a' - u'A')) : unit;
}

/// ICU's default title-casing of such text: in each run of letters, digits and underscores the first letter
/// or digit is upper-cased and the rest of the run lower-cased; everything else stays.
QString titleOfPlainAsciiWords(const QString &text)
{
    QString result = text;
    bool isInWord = false;
    bool hasTitled = false;
    for (QChar &character : result) {
        char16_t &unit = reinterpret_cast<char16_t &>(character);
        if (!isAsciiWordCharacter(unit)) {
            isInWord = false;
            continue;
        }
        if (!isInWord) {
            isInWord = true;
            hasTitled = false;
        }
        if (hasTitled) {
            unit = asciiLower(unit);
        } else if (unit != u'_') {
            unit = asciiUpper(unit);
            hasTitled = true;
        }
    }
    return result;
}

} // namespace

QString CaseMapper::upper(const QString &text) const
{
    // ASCII maps one to one, and Qt's mapping of it is the same and much cheaper.
    if (isAscii(text))
        return text.toUpper();
    return mapped(text,
        [](const char16_t *source, int32_t length, char16_t *destination, int32_t capacity, UErrorCode &status) {
            return icu::CaseMap::toUpper("", 0, source, length, destination, capacity, nullptr, status);
        });
}

QString CaseMapper::lower(const QString &text) const
{
    if (isAscii(text))
        return text.toLower();
    return mapped(text,
        [](const char16_t *source, int32_t length, char16_t *destination, int32_t capacity, UErrorCode &status) {
            return icu::CaseMap::toLower("", 0, source, length, destination, capacity, nullptr, status);
        });
}

QString CaseMapper::title(const QString &text)
{
    // Most names are plain ASCII; running the word-break rules on them costs more than the rest of a preview.
    if (isPlainAsciiTitleShortcutOn.load(std::memory_order_relaxed) && hasPlainAsciiWords(text))
        return titleOfPlainAsciiWords(text);
    // Without an iterator ICU would create a word iterator per call.
    icu::BreakIterator *iterator = m_wordIterator.get();
    return mapped(text,
        [iterator](const char16_t *source,
            int32_t length,
            char16_t *destination,
            int32_t capacity,
            UErrorCode &status) {
            return icu::CaseMap::toTitle("", 0, iterator, source, length, destination, capacity, nullptr, status);
        });
}

void CaseMapper::setPlainAsciiTitleShortcut(bool isOn)
{
    isPlainAsciiTitleShortcutOn.store(isOn, std::memory_order_relaxed);
}

} // namespace quillfern
