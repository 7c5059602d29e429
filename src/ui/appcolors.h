#pragma once

#include <QColor>

namespace quillfern::AppColors {

// The colours of every view, derived from the application palette at each call so light and dark
// appearances both work.

/// The application accent colour (the bundled "AccentColor", adjusted for the palette's lightness).
QColor accent();
QColor success();
QColor warning();
QColor danger();
/// The window background.
QColor panelBackground();
/// The background of controls, lists and cards.
QColor sidebarBackground();
QColor rowHover();
QColor rowSelected();
QColor conflictBackground();
QColor conflictForeground();
QColor changedForeground();
QColor unchangedForeground();
/// Secondary and tertiary label colours.
QColor secondary();
QColor tertiary();
/// Hairlines between areas of a window.
QColor separator();
/// Text and symbols of a control that cannot be used: the palette's own colour for disabled text, or the text
/// colour faded where the palette has none.
QColor disabledText();
/// The fill of a prominent control that cannot be used: a faint neutral tone instead of the accent.
QColor disabledFill();

/// `color` with its alpha set to `opacity` (0 to 1).
QColor withOpacity(QColor color, double opacity);

} // namespace quillfern::AppColors
