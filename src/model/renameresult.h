#pragma once

#include "model/nativepath.h"

#include <QString>

#include <optional>

namespace quillfern {

/// The outcome of one attempted move of a batch rename.
struct RenameResult
{
    NativePath originalURL;
    NativePath newURL;
    bool success = false;
    /// Why the move failed, readable as it is ("A file named “b.txt” already exists."); absent on success.
    std::optional<QString> error;
    /// The move succeeded on a file system that offers no atomic protection against an item appearing at the
    /// destination while it ran (neither a no-replace rename nor hard links); it was checked as late as possible.
    bool wasUnprotected = false;
};

} // namespace quillfern
