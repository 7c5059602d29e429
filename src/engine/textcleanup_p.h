#pragma once

#include <QString>

namespace quillfern {

/// The character-class edits of the trim and clean-up rules.
namespace textcleanup {

/// The text without whitespace (space separators and tabs, not line breaks) at either end.
QString trimWhitespace(const QString &text);

/// The text with every run of spaces (U+0020 only) made one space.
QString collapseSpaces(const QString &text);

/// The text with only letters, marks and digits of every script and the characters " _-()." kept.
QString keepAlphanumerics(const QString &text);

} // namespace textcleanup
} // namespace quillfern
