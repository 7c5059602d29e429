#pragma once

#include "model/decoderesult.h"
#include "presets/preset.h"

#include <QByteArray>
#include <QList>

namespace quillfern {

/// The byte form of the presets file: one JSON array of presets, in display order.
namespace presetfile {

/// The presets as one compact JSON array, in list order.
[[nodiscard]] QByteArray encode(const QList<Preset> &presets);

/// Decodes a whole presets file strictly: one entry that fails to decode makes the whole file fail, with a
/// message naming the entry's index and what was wrong with it.
[[nodiscard]] DecodeResult<QList<Preset>> decode(const QByteArray &bytes);

} // namespace presetfile
} // namespace quillfern
