#pragma once

#include <QString>
#include <QUrl>

#include <filesystem>
#include <optional>

namespace quillfern {

/// Conversions between native paths and text. A native path keeps the exact bytes (POSIX) or UTF-16 units
/// (Windows) of a name, so a file whose name is not valid UTF-8 can still be found and renamed.
namespace nativepath {

/// The text of a path or name for display and for the rules; bytes that are not valid UTF-8 become U+FFFD.
QString toText(const std::filesystem::path &path);

/// The native path for a text (UTF-8 bytes on POSIX).
std::filesystem::path fromText(const QString &text);

/// The native path of a local file URL, bytes that are not valid UTF-8 included (from their percent-encoded
/// form); none for a URL that is not a local file.
std::optional<std::filesystem::path> fromLocalFileUrl(const QUrl &url);

/// The path without trailing separators, so its last component is the item's name ("a/b/" names "b").
std::filesystem::path withoutTrailingSeparator(std::filesystem::path path);

} // namespace nativepath
} // namespace quillfern
