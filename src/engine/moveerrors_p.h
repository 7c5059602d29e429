#pragma once

#include "engine/moveerror.h"
#include "model/nativepath.h"

#include <system_error>

namespace quillfern::moveerrors {

/// The error of a move refused because something exists at `to`.
MoveError destinationExists(const NativePath &to);

/// Any other failure, in the operating system's words.
MoveError systemError(const std::error_code &code);

} // namespace quillfern::moveerrors
