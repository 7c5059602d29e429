#pragma once

#include <QColor>

namespace quillfern {

/// The colour `amount` (0 to 1) of the way from `from` to `to`, alpha included: for animated highlights and
/// for tints that must stay opaque.
inline QColor mixColors(const QColor &from, const QColor &to, double amount)
{
    const auto mix = [amount](float start, float end) {
        return float(start + (end - start) * amount);
    };
    return QColor::fromRgbF(mix(from.redF(), to.redF()),
        mix(from.greenF(), to.greenF()),
        mix(from.blueF(), to.blueF()),
        mix(from.alphaF(), to.alphaF()));
}

} // namespace quillfern
