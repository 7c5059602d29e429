#pragma once

namespace quillfern::AppSpacing {

/// The spacing scale of every view, in device-independent pixels.
inline constexpr int xs = 4;
inline constexpr int sm = 8;
inline constexpr int md = 12;
inline constexpr int lg = 16;
inline constexpr int xl = 24;

} // namespace quillfern::AppSpacing
