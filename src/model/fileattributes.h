#pragma once

#include "model/nativepath.h"

#include <QDateTime>

#include <filesystem>
#include <optional>

namespace quillfern {

/// File-system attributes of the item at a path, read afresh on every call; nothing is cached.
namespace fileattributes {

/// Whether a folder is at the path (a link to a folder counts); false when nothing can be read there.
bool isDirectory(const NativePath &path);

/// The content-modification time with all the precision the file system keeps (nanoseconds on most), or none
/// when it cannot be read.
std::optional<std::filesystem::file_time_type> modificationTime(const NativePath &path);

/// The content-modification date to the millisecond, or none when it cannot be read.
std::optional<QDateTime> modificationDate(const NativePath &path);

/// The size in bytes of a file, or none when it cannot be read or the item is not a regular file (a folder, a
/// device, a pipe).
std::optional<qint64> fileSize(const NativePath &path);

} // namespace fileattributes
} // namespace quillfern
