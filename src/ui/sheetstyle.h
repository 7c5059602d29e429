#pragma once

class QDialog;

namespace quillfern {

/// The sheet's window: modal to the window it belongs to, with a title and a close button but nothing to
/// minimise or maximise it, as a sheet belongs to its window rather than being a window of its own.
class SheetStyle final
{
public:
    SheetStyle() = delete;

    /// Gives `sheet` the sheet's window.
    static void apply(QDialog *sheet);
};

} // namespace quillfern
