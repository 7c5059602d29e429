#include "model/icutext_p.h"
#include "state/caselesstext_p.h"

#include <unicode/normalizer2.h>

namespace quillfern::caselesstext {

namespace {

const icu::Normalizer2 *instanceOr(const icu::Normalizer2 *(*getInstance)(UErrorCode &))
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *normalizer = getInstance(status);
    return icutext::succeeded(status) ? normalizer : nullptr;
}

/// The text in the normalizer's form; the text itself when it is in that form already or ICU fails.
icu::UnicodeString normalized(const icu::Normalizer2 *normalizer, const icu::UnicodeString &text)
{
    if (!normalizer)
        return text;
    // Most names are in the form already; finding that out copies nothing.
    UErrorCode status = U_ZERO_ERROR;
    if (normalizer->spanQuickCheckYes(text, status) == text.length() && icutext::succeeded(status))
        return text;
    status = U_ZERO_ERROR;
    icu::UnicodeString result = normalizer->normalize(text, status);
    return icutext::succeeded(status) ? result : text;
}

} // namespace

QString caselessForm(const QString &text)
{
    // Names are mostly ASCII; finding their form in one pass halves the time the filter spends on them
    // (bench_filter), and costs a name that is not ASCII only the scan up to its first such character.
    if (std::optional<QString> form = caselessFormOfAscii(text))
        return *std::move(form);
    return caselessFormByIcu(text);
}

QString caselessFormByIcu(const QString &text)
{
    static const icu::Normalizer2 *const decomposition = instanceOr(&icu::Normalizer2::getNFDInstance);
    static const icu::Normalizer2 *const composition = instanceOr(&icu::Normalizer2::getNFCInstance);
    // Folding can change what composes (it maps some composed letters to decomposed ones, and the combining
    // iota subscript to a plain iota), so the text is decomposed before and composed after it: Unicode's
    // canonical caseless match.
    icu::UnicodeString unicode = normalized(decomposition, icutext::alias(text));
    unicode.foldCase();
    return icutext::toQString(normalized(composition, unicode));
}

std::optional<QString> caselessFormOfAscii(QStringView text)
{
    QString form(text.size(), Qt::Uninitialized);
    QChar *out = form.data();
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        if (unit >= 0x80)
            return std::nullopt;
        // ASCII text is in every normal form, and full case folding maps A to Z to a to z and nothing else.
        *out++ = QChar(unit >= u'A' && unit <= u'Z' ? unit - u'A' + u'a' : unit);
    }
    return form;
}

} // namespace quillfern::caselesstext
