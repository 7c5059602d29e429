#pragma once

#include <QFont>

namespace quillfern::AppFonts {

// The text styles of every view, derived from the application font so the user's size setting is kept.

/// Monospaced body text (file names in the table).
QFont mono();
/// Monospaced caption text (names in the preview).
QFont monoSmall();
/// Callout size, medium weight (pane titles).
QFont label();
/// Caption size, semibold.
QFont sectionHeader();

// The platform text styles the views use besides the four above.
QFont body();
QFont callout();
QFont caption();
QFont caption2();
QFont headline();
QFont title();
QFont title2();
QFont title3();

} // namespace quillfern::AppFonts
