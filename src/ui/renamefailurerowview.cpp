#include "ui/renamefailurerowview.h"

#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/renamefailurelistmodel.h"
#include "ui/symbolicons.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int verticalPadding = AppSpacing::xs / 2;
/// Between the name and the reason.
constexpr int lineGap = 1;

/// `text` broken into lines of `width`, between words or, for a word longer than a line, anywhere.
void layOut(QTextLayout &layout, int width, int lineSpacing)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (int line = 0;; ++line) {
        QTextLine next = layout.createLine();
        if (!next.isValid())
            break;
        next.setLineWidth(width);
        next.setPosition(QPointF(0, line * lineSpacing));
    }
    layout.endLayout();
}

} // namespace

RenameFailureRowView::RenameFailureRowView(QObject *parent)
    : QStyledItemDelegate(parent)
    , m_nameFont(AppFonts::caption())
    , m_reasonFont(AppFonts::caption2())
    , m_nameMetrics(m_nameFont)
    , m_reasonMetrics(m_reasonFont)
{
}

int RenameFailureRowView::textWidth(const QStyleOptionViewItem &option) const
{
    const int markSize = m_nameMetrics.height();
    int rowWidth = option.rect.width();
    if (const auto *list = qobject_cast<const QAbstractScrollArea *>(option.widget)) {
        rowWidth = list->width() - 2 * list->frameWidth()
            - list->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, list);
    }
    return std::max(1, rowWidth - markSize - AppSpacing::sm);
}

int RenameFailureRowView::lineCount(const QString &text,
    const QFont &font,
    const QFontMetrics &metrics,
    int width,
    QHash<QString, int> &counted) const
{
    if (width != m_countedWidth) {
        m_nameLines.clear();
        m_reasonLines.clear();
        m_countedWidth = width;
    }
    // A reason is often the same for many rows: each text is measured once. Most texts fit one line, which a
    // single measurement tells; only the others are broken into lines.
    auto found = counted.constFind(text);
    if (found == counted.cend()) {
        int lines = 1;
        if (metrics.horizontalAdvance(text) > width) {
            QTextLayout layout(text, font);
            layOut(layout, width, metrics.lineSpacing());
            lines = std::max(1, layout.lineCount());
        }
        found = counted.insert(text, lines);
    }
    return *found;
}

QSize RenameFailureRowView::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int width = textWidth(option);
    const int nameLines = lineCount(index.data().toString(), m_nameFont, m_nameMetrics, width, m_nameLines);
    const int reasonLines = lineCount(index.data(RenameFailureListModel::ReasonRole).toString(),
        m_reasonFont,
        m_reasonMetrics,
        width,
        m_reasonLines);
    return {0,
        2 * verticalPadding + nameLines * m_nameMetrics.lineSpacing() + lineGap
            + reasonLines * m_reasonMetrics.lineSpacing()};
}

void RenameFailureRowView::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    painter->save();
    const int nameLineSpacing = m_nameMetrics.lineSpacing();
    const int markSize = m_nameMetrics.height();
    const QRect content = option.rect.adjusted(0, verticalPadding, 0, -verticalPadding);
    // The mark sits beside the name's first line.
    painter->drawPixmap(QRect(content.left(), content.top() + (nameLineSpacing - markSize) / 2, markSize, markSize),
        mark(painter->device()->devicePixelRatioF()));

    const int width = textWidth(option);
    const QPointF textStart(content.left() + markSize + AppSpacing::sm, content.top());
    QTextLayout name(index.data().toString(), m_nameFont);
    layOut(name, width, nameLineSpacing);
    painter->setPen(option.palette.color(QPalette::WindowText));
    name.draw(painter, textStart);

    QTextLayout reason(index.data(RenameFailureListModel::ReasonRole).toString(), m_reasonFont);
    layOut(reason, width, m_reasonMetrics.lineSpacing());
    painter->setPen(AppColors::secondary());
    reason.draw(painter, textStart + QPointF(0, name.lineCount() * nameLineSpacing + lineGap));
    painter->restore();
}

QPixmap RenameFailureRowView::mark(qreal devicePixelRatio) const
{
    // Rendering the symbol per painted row would dominate scrolling; it is drawn once per colour and scale.
    const QColor color = AppColors::danger();
    const QString key = color.name(QColor::HexArgb) + u'/' + QString::number(devicePixelRatio);
    auto found = m_marks.constFind(key);
    if (found == m_marks.cend()) {
        const int size = m_nameMetrics.height();
        found = m_marks.insert(key,
            SymbolIcons::icon(u"xmark.circle.fill"_s, color).pixmap(QSize(size, size), devicePixelRatio));
    }
    return *found;
}

} // namespace quillfern
