#pragma once

#include <QColor>

class QLabel;

namespace quillfern::RuleEditorStyle {

/// The primary label colour of the palette.
QColor primaryText();

// Small look helpers shared by the rule editor pane, its rows, editors and sheets.

/// Draws the label's text in the secondary label colour.
void makeSecondary(QLabel *label);
/// Caption-sized secondary text, wrapped when it does not fit.
void makeCaption(QLabel *label);

} // namespace quillfern::RuleEditorStyle
