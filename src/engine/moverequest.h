#pragma once

#include "model/nativepath.h"

namespace quillfern {

/// One move that a batch asks for: the item at `source` takes the name `newName` in the same folder.
struct MoveRequest
{
    NativePath source;
    NativePath newName;

    /// Where the item will be: `newName` in the source's folder.
    [[nodiscard]] NativePath destination() const { return source.withFileName(newName); }
};

} // namespace quillfern
