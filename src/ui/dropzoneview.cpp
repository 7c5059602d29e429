#include "ui/dropzoneview.h"

#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/colormix_p.h"
#include "ui/panelabel.h"
#include "ui/symbolicons.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVariantAnimation>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int cornerRadius = 12;
constexpr int buttonCornerRadius = 6;
constexpr int borderWidth = 2;
constexpr int symbolSize = 48;
constexpr int highlightMilliseconds = 200;

QColor plainBorder()
{
    return AppColors::withOpacity(AppColors::secondary(), 0.3);
}

} // namespace

DropZoneView::DropZoneView(AppViewModel *vm, QWidget *parent)
    : QWidget(parent)
    , m_symbol(new PaneLabel(u"arrow.down.doc.fill"_s, {}, &AppColors::secondary, this))
    , m_browseButton(new QPushButton(u"Browse..."_s, this))
    , m_animation(new QVariantAnimation(this))
{
    m_symbol->setObjectName(u"dropZoneSymbol"_s);
    m_symbol->setSymbolSize(symbolSize);

    auto *title = new PaneLabel({}, u"Drop Files & Folders Here"_s, &AppColors::secondary, this);
    title->setObjectName(u"dropZoneTitle"_s);
    QFont titleFont = AppFonts::title3();
    titleFont.setWeight(QFont::Medium);
    title->setTextFont(titleFont);

    auto *separator = new PaneLabel({}, u"or"_s, &AppColors::tertiary, this);
    separator->setTextFont(AppFonts::caption());

    m_browseButton->setObjectName(u"browseButton"_s);
    m_browseButton->setCursor(Qt::PointingHandCursor);
    connect(m_browseButton, &QPushButton::clicked, vm, &AppViewModel::selectFiles);

    auto *layout = new QVBoxLayout(this);
    const int inset = AppSpacing::xl + AppSpacing::lg;
    layout->setContentsMargins(inset, inset, inset, inset);
    layout->setSpacing(AppSpacing::lg);
    layout->addStretch();
    for (QWidget *widget : {static_cast<QWidget *>(m_symbol),
             static_cast<QWidget *>(title),
             static_cast<QWidget *>(separator),
             static_cast<QWidget *>(m_browseButton)})
        layout->addWidget(widget, 0, Qt::AlignHCenter);
    layout->addStretch();

    m_animation->setDuration(highlightMilliseconds);
    m_animation->setEasingCurve(QEasingCurve::InOutQuad);
    connect(m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        m_highlight = value.toDouble();
        update();
    });
    applyTheme();
}

void DropZoneView::setTargeted(bool targeted)
{
    if (m_isTargeted == targeted)
        return;
    m_isTargeted = targeted;
    m_symbol->setColor(targeted ? &AppColors::accent : &AppColors::secondary);
    m_animation->stop();
    m_animation->setStartValue(m_highlight);
    m_animation->setEndValue(targeted ? 1.0 : 0.0);
    m_animation->start();
}

void DropZoneView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double half = borderWidth / 2.0;
    const QRectF frame = QRectF(rect()).adjusted(AppSpacing::xl + half,
        AppSpacing::xl + half,
        -AppSpacing::xl - half,
        -AppSpacing::xl - half);
    QPainterPath shape;
    shape.addRoundedRect(frame, cornerRadius, cornerRadius);

    const QColor accent = AppColors::accent();
    painter.fillPath(shape, AppColors::withOpacity(accent, 0.05 * m_highlight));
    QPen pen(mixColors(plainBorder(), accent, m_highlight), borderWidth);
    // The dash pattern is in units of the pen width: 8 on, 4 off.
    pen.setDashPattern({8.0 / borderWidth, 4.0 / borderWidth});
    painter.strokePath(shape, pen);
}

void DropZoneView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        applyTheme();
}

void DropZoneView::applyTheme()
{
    // A prominent button in the accent colour, as the one obvious action of an empty list, labelled in the
    // palette's colour for text on a highlight.
    const QColor accent = AppColors::accent();
    const QColor label = palette().color(QPalette::HighlightedText);
    m_browseButton->setIcon(SymbolIcons::icon(u"folder"_s, label));
    m_browseButton->setStyleSheet(
        uR"(QPushButton { background: %1; color: %2; border: none; border-radius: %3px; padding: %4px %5px; }
QPushButton:hover { background: %6; }
QPushButton:pressed { background: %7; })"_s.arg(accent.name(),
            label.name(),
            QString::number(buttonCornerRadius),
            QString::number(AppSpacing::xs + 1),
            QString::number(AppSpacing::md),
            accent.lighter(110).name(),
            accent.darker(115).name()));
}

} // namespace quillfern
