#pragma once

#include "model/nativepath.h"

#include <functional>

namespace quillfern::folderenumerator {

/// Calls `visit` for every entry below `folder`, depth first with each folder before its contents, hidden
/// entries and names that are not valid UTF-8 included; links to folders are listed but not entered, and
/// unreadable folders are skipped. A folder that cannot be opened yields nothing.
void forEachEntry(const NativePath &folder, const std::function<void(NativePath entry, bool isDirectory)> &visit);

} // namespace quillfern::folderenumerator
