#pragma once

// QString and icu::UnicodeString are both UTF-16: conversions copy code units, never go through UTF-8.
// Private to the core libraries: no public header exposes an ICU type.

#include <QString>

#include <unicode/unistr.h>
#include <unicode/utypes.h>

namespace quillfern::icutext {

/// A read-only UnicodeString that aliases the QString's buffer; valid while `text` lives and is not changed.
inline icu::UnicodeString alias(const QString &text)
{
    return icu::UnicodeString(false, reinterpret_cast<const char16_t *>(text.utf16()), int32_t(text.size()));
}

inline QString toQString(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

/// The one check of every ICU status: true when the call succeeded (warnings count as success).
inline bool succeeded(UErrorCode status)
{
    return U_SUCCESS(status);
}

} // namespace quillfern::icutext
