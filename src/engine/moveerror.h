#pragma once

#include <QString>

namespace quillfern {

/// Why one move on disk failed.
struct MoveError
{
    enum class Kind {
        /// Something already exists at the destination; it was left untouched.
        DestinationExists,
        /// Any other failure: permission, vanished source, full disk, read-only volume, ...
        Other,
    };

    Kind kind = Kind::Other;
    /// A readable message, the operating system's own words where it gave some.
    QString message;
};

} // namespace quillfern
