#include "ui/prominentbutton.h"

#include "ui/activityindicator.h"
#include "ui/appcolors.h"
#include "ui/appspacing.h"

#include <QPainter>

namespace quillfern {

namespace {

constexpr int cornerRadius = 6;
constexpr int verticalPadding = 5;

} // namespace

ProminentButton::ProminentButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    setIconSize({14, 14});
    m_spinnerTimer.setInterval(ActivityIndicator::frameInterval);
    connect(&m_spinnerTimer, &QTimer::timeout, this, [this] {
        ++m_spinnerStep;
        update();
    });
}

void ProminentButton::setBusy(bool busy)
{
    if (m_isBusy == busy)
        return;
    m_isBusy = busy;
    if (busy)
        m_spinnerTimer.start();
    else
        m_spinnerTimer.stop();
    updateGeometry();
    update();
}

bool ProminentButton::hasIcon() const
{
    return m_isBusy || !icon().isNull();
}

int ProminentButton::contentWidth() const
{
    const int textWidth = fontMetrics().horizontalAdvance(text());
    return hasIcon() ? iconSize().width() + AppSpacing::sm + textWidth : textWidth;
}

QSize ProminentButton::sizeHint() const
{
    const int height = std::max(fontMetrics().height(), iconSize().height()) + 2 * verticalPadding;
    return {contentWidth() + 2 * AppSpacing::md, height};
}

QSize ProminentButton::minimumSizeHint() const
{
    return sizeHint();
}

void ProminentButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    const QColor accent = AppColors::accent();
    QColor fill = accent;
    // A busy button is at work and keeps its colour; one that cannot be used turns neutral.
    if (!isEnabled() && m_isBusy)
        fill = AppColors::withOpacity(accent, 0.4);
    else if (!isEnabled())
        fill = AppColors::disabledFill();
    else if (isDown())
        fill = accent.darker(115);
    else if (underMouse())
        fill = accent.lighter(108);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(frame, cornerRadius, cornerRadius);
    if (hasFocus()) {
        painter.setPen(QPen(AppColors::withOpacity(Qt::white, 0.7), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame.adjusted(2, 2, -2, -2), cornerRadius - 2, cornerRadius - 2);
    }

    QColor foreground = Qt::white;
    if (!isEnabled())
        foreground = m_isBusy ? AppColors::withOpacity(Qt::white, 0.75) : AppColors::disabledText();
    int x = (width() - contentWidth()) / 2;
    if (hasIcon()) {
        const QRect iconRect(QPoint(x, (height() - iconSize().height()) / 2), iconSize());
        if (m_isBusy)
            ActivityIndicator::paint(painter, iconRect, foreground, m_spinnerStep);
        else
            icon().paint(&painter, iconRect, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
        x += iconSize().width() + AppSpacing::sm;
    }
    painter.setPen(foreground);
    painter.drawText(QRect(x, 0, width() - x, height()), Qt::AlignLeft | Qt::AlignVCenter, text());
}

} // namespace quillfern
