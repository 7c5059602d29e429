#include "ui/panedivider.h"

#include "ui/appcolors.h"

#include <QPainter>

namespace quillfern {

PaneDivider::PaneDivider(Qt::Orientation orientation, int length, QWidget *parent)
    : QWidget(parent)
{
    if (orientation == Qt::Horizontal) {
        setFixedHeight(1);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    } else {
        setFixedSize(1, length);
    }
}

void PaneDivider::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), AppColors::withOpacity(AppColors::secondary(), 0.25));
}

} // namespace quillfern
