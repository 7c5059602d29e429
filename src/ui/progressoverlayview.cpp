#include "ui/progressoverlayview.h"

#include "ui/activityindicator.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int cardCornerRadius = 16;
/// The regular platform spinner is 20 pixels; the overlay shows it half as large again.
constexpr int spinnerDiameter = 30;

} // namespace

ProgressOverlayView::ProgressOverlayView(QWidget *parent)
    : QWidget(parent)
    , m_card(new QWidget(this))
{
    Q_ASSERT_X(parent, "ProgressOverlayView", "the overlay covers its parent");
    setObjectName(u"progressOverlay"_s);
    setAttribute(Qt::WA_NoMousePropagation);
    setFocusPolicy(Qt::StrongFocus);

    m_card->setObjectName(u"progressCard"_s);
    auto *spinner = new ActivityIndicator(spinnerDiameter, m_card);
    auto *label = new QLabel(u"Renaming files..."_s, m_card);
    label->setObjectName(u"progressLabel"_s);
    label->setFont(AppFonts::headline());
    auto *layout = new QVBoxLayout(m_card);
    layout->setContentsMargins(AppSpacing::xl, AppSpacing::xl, AppSpacing::xl, AppSpacing::xl);
    layout->setSpacing(AppSpacing::lg);
    layout->addWidget(spinner, 0, Qt::AlignHCenter);
    layout->addWidget(label, 0, Qt::AlignHCenter);

    auto *centering = new QVBoxLayout(this);
    centering->addWidget(m_card, 0, Qt::AlignCenter);

    parent->installEventFilter(this);
    setGeometry(parent->rect());
}

bool ProgressOverlayView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget()) {
        if (event->type() == QEvent::Resize)
            setGeometry(parentWidget()->rect());
        // A widget added beside the overlay would be stacked above it.
        else if (event->type() == QEvent::ChildAdded && isVisible())
            raise();
    }
    return QWidget::eventFilter(watched, event);
}

void ProgressOverlayView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    raise();
}

void ProgressOverlayView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), AppColors::withOpacity(Qt::black, 0.25));
    // A nearly opaque window colour stands in for the platform's translucent material.
    painter.setPen(Qt::NoPen);
    painter.setBrush(AppColors::withOpacity(AppColors::panelBackground(), 0.94));
    painter.drawRoundedRect(m_card->geometry(), cardCornerRadius, cardCornerRadius);
}

} // namespace quillfern
