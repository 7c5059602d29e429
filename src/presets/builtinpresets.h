#pragma once

#include "presets/preset.h"

#include <QList>

namespace quillfern {

/// The five presets a new user starts with, in display order, each with a fresh id and created now:
/// "Clean Spaces", "Title Case", "Add Date Suffix", "Sequential Numbering" and "Lowercase + Underscores".
[[nodiscard]] QList<Preset> builtInPresets();

} // namespace quillfern
