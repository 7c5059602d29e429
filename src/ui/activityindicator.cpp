#include "ui/activityindicator.h"

#include <QPainter>

namespace quillfern {

namespace {

constexpr int spokeCount = 12;

} // namespace

ActivityIndicator::ActivityIndicator(int diameter, QWidget *parent)
    : QWidget(parent)
    , m_diameter(diameter)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_timer.setInterval(frameInterval);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        ++m_step;
        update();
    });
}

void ActivityIndicator::setColor(const QColor &color)
{
    m_color = color;
    update();
}

QSize ActivityIndicator::sizeHint() const
{
    return {m_diameter, m_diameter};
}

void ActivityIndicator::paint(QPainter &painter, const QRectF &rect, const QColor &color, int step)
{
    const double radius = std::min(rect.width(), rect.height()) / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center());
    QPen pen(color, std::max(1.5, radius / 5), Qt::SolidLine, Qt::RoundCap);
    for (int spoke = 0; spoke < spokeCount; ++spoke) {
        // The spoke at `step` is fully opaque and the ones behind it fade out, so the bright end seems to turn.
        const int age = ((step - spoke) % spokeCount + spokeCount) % spokeCount;
        pen.setColor(QColor(color.red(),
            color.green(),
            color.blue(),
            int(color.alpha() * (1.0 - 0.8 * age / (spokeCount - 1)))));
        painter.setPen(pen);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius + pen.widthF() / 2));
        painter.rotate(360.0 / spokeCount);
    }
    painter.restore();
}

void ActivityIndicator::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paint(painter, rect(), m_color.isValid() ? m_color : palette().color(QPalette::WindowText), m_step);
}

void ActivityIndicator::showEvent(QShowEvent *)
{
    m_timer.start();
}

void ActivityIndicator::hideEvent(QHideEvent *)
{
    m_timer.stop();
}

} // namespace quillfern
