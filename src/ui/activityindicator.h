#pragma once

#include <QColor>
#include <QTimer>
#include <QWidget>

class QPainter;

namespace quillfern {

/// An indeterminate spinner: twelve spokes whose brightness runs round while the widget is visible.
class ActivityIndicator final : public QWidget
{
    Q_OBJECT

public:
    /// A spinner `diameter` pixels wide, drawn in the palette's text colour until setColor() is called.
    explicit ActivityIndicator(int diameter, QWidget *parent = nullptr);

    void setColor(const QColor &color);
    [[nodiscard]] QSize sizeHint() const override;

    /// Draws one frame of a spinner into `rect`; `step` (any integer) selects the brightest spoke.
    static void paint(QPainter &painter, const QRectF &rect, const QColor &color, int step);
    /// How often the brightest spoke moves on, for widgets that animate a spinner of their own.
    static constexpr int frameInterval = 80;

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    int m_diameter;
    int m_step = 0;
    QColor m_color;
    QTimer m_timer;
};

} // namespace quillfern
