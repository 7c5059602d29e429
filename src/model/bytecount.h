#pragma once

#include <QString>

namespace quillfern {

/// A byte count in the file style of a desktop file manager: decimal units, "Zero KB", "1 byte", "999 bytes",
/// "1 KB", "1.5 MB", "2.46 GB". Kilobytes show no decimals, megabytes one, larger units two.
QString formatByteCount(qint64 bytes);

} // namespace quillfern
