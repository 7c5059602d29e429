#include "ui/elidinglabel.h"

#include <QPainter>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace quillfern {

ElidingLabel::ElidingLabel(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    setTextFormat(Qt::PlainText);
    setToolTip(text);
}

bool ElidingLabel::isElided() const
{
    return fontMetrics().horizontalAdvance(text()) > contentsRect().width();
}

QSize ElidingLabel::minimumSizeHint() const
{
    const QMargins margins = contentsMargins();
    return {fontMetrics().horizontalAdvance(u"…"_s) + margins.left() + margins.right(),
        QLabel::minimumSizeHint().height()};
}

void ElidingLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    // Eliding a text that just fits can still cut it, as the two measurements round differently.
    const QString shown = isElided() ? fontMetrics().elidedText(text(), Qt::ElideRight, area.width()) : text();
    style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), shown, foregroundRole());
}

} // namespace quillfern
