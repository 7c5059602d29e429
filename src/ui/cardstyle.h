#pragma once

class QWidget;

namespace quillfern {

/// The card look: control background, corners rounded by 10 and a faint shadow (black at 6 %, blur 3, 1 down).
class CardStyle final
{
public:
    CardStyle() = delete;

    /// Gives `widget` the card look. The widget paints its own background through a style sheet scoped to its
    /// object name, so give it one first.
    static void apply(QWidget *widget);
};

} // namespace quillfern
