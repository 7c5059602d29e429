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
};

} // namespace quillfern
