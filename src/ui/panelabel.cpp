#include "ui/panelabel.h"

#include "ui/appspacing.h"
#include "ui/symbolicons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

namespace quillfern {

PaneLabel::PaneLabel(const QString &symbolName, const QString &text, ColorFunction color, QWidget *parent)
    : QWidget(parent)
    , m_symbol(new QLabel(this))
    , m_text(new QLabel(text, this))
    , m_symbolName(symbolName)
    , m_color(color)
{
    m_symbol->setObjectName(QStringLiteral("symbol"));
    m_text->setObjectName(QStringLiteral("text"));
    m_text->setTextFormat(Qt::PlainText);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(AppSpacing::xs);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text);
    refresh();
}

QString PaneLabel::text() const
{
    return m_text->text();
}

void PaneLabel::setText(const QString &text)
{
    m_text->setText(text);
    m_text->setVisible(!text.isEmpty());
}

void PaneLabel::setSymbolName(const QString &symbolName)
{
    m_symbolName = symbolName;
    refresh();
}

void PaneLabel::setColor(ColorFunction color)
{
    m_color = color;
    refresh();
}

void PaneLabel::setTextFont(const QFont &font)
{
    m_text->setFont(font);
    refresh();
}

void PaneLabel::setSymbolSize(int size)
{
    m_symbolSize = size;
    refresh();
}

void PaneLabel::setAlignment(Qt::Alignment alignment)
{
    m_text->setAlignment(alignment);
}

void PaneLabel::setWordWrap(bool wrap)
{
    m_text->setWordWrap(wrap);
}

void PaneLabel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        refresh();
}

void PaneLabel::refresh()
{
    const QColor color = m_color();
    QPalette palette = m_text->palette();
    palette.setColor(QPalette::WindowText, color);
    m_text->setPalette(palette);
    m_text->setVisible(!m_text->text().isEmpty());

    m_symbol->setVisible(!m_symbolName.isEmpty());
    if (m_symbolName.isEmpty())
        return;
    const int size = m_symbolSize > 0 ? m_symbolSize : m_text->fontMetrics().height();
    m_symbol->setFixedSize(size, size);
    m_symbol->setPixmap(SymbolIcons::icon(m_symbolName, color).pixmap(QSize(size, size), devicePixelRatioF()));
}

} // namespace quillfern
