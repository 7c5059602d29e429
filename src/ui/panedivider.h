#pragma once

#include <QWidget>

namespace quillfern {

/// A hairline between the parts of a pane (toolbar, content, status bar), in a faint theme colour.
class PaneDivider final : public QWidget
{
    Q_OBJECT

public:
    /// A horizontal divider spans the width; a vertical one is `length` high.
    explicit PaneDivider(Qt::Orientation orientation, int length = 0, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillfern
