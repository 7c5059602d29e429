#include "ui/previewrowview.h"

#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/previewlistmodel.h"
#include "ui/symbolicons.h"

#include <QPainter>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int verticalPadding = 3;
constexpr int symbolBoxWidth = 12;
constexpr int symbolSize = 9;
constexpr int lineSpacing = 1;

} // namespace

PreviewRowView::PreviewRowView(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

void PreviewRowView::clearCaches()
{
    m_symbols.clear();
    m_lineHeight = 0;
}

QSize PreviewRowView::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    const int lines = index.data(PreviewListModel::LineCountRole).toInt();
    if (m_lineHeight == 0)
        m_lineHeight = QFontMetrics(AppFonts::monoSmall()).height();
    return {0, lines * m_lineHeight + (lines - 1) * lineSpacing + 2 * verticalPadding};
}

void PreviewRowView::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool hasConflict = index.data(PreviewListModel::HasConflictRole).toBool();
    const bool isChanged = index.data(PreviewListModel::IsChangedRole).toBool();
    const QString original = index.data(PreviewListModel::OriginalRole).toString();

    painter->save();
    if (hasConflict)
        painter->fillRect(option.rect, AppColors::conflictBackground());
    else if (option.state & QStyle::State_MouseOver)
        painter->fillRect(option.rect, AppColors::rowHover());

    painter->setFont(AppFonts::monoSmall());
    const int lineHeight = painter->fontMetrics().height();
    const QRect content = option.rect.adjusted(AppSpacing::md, verticalPadding, -AppSpacing::md, -verticalPadding);
    if (!isChanged) {
        const QRect line(content.left(), content.center().y() - lineHeight / 2, content.width(), lineHeight);
        paintLine(painter,
            line,
            u"equal"_s,
            AppColors::withOpacity(AppColors::secondary(), 0.4),
            original,
            AppColors::unchangedForeground());
        painter->restore();
        return;
    }

    const QRect oldLine(content.left(), content.top(), content.width(), lineHeight);
    const int oldEnd = paintLine(painter,
        oldLine,
        u"minus"_s,
        AppColors::withOpacity(AppColors::danger(), 0.7),
        original,
        AppColors::secondary());
    const int strikeY = oldLine.top() + painter->fontMetrics().ascent() - painter->fontMetrics().strikeOutPos();
    painter->setPen(QPen(AppColors::withOpacity(AppColors::secondary(), 0.5), 1));
    painter->drawLine(oldLine.left() + symbolBoxWidth + AppSpacing::xs, strikeY, oldEnd, strikeY);

    const QRect newLine(content.left(), oldLine.bottom() + 1 + lineSpacing, content.width(), lineHeight);
    const QString preview = index.data(PreviewListModel::PreviewRole).toString();
    const QColor plusColor = hasConflict ? AppColors::warning() : AppColors::success();
    const QColor nameColor = hasConflict ? AppColors::conflictForeground() : AppColors::changedForeground();
    QRect nameLine = newLine;
    if (hasConflict)
        nameLine.setRight(newLine.right() - AppSpacing::xs - symbolBoxWidth);
    const int newEnd = paintLine(painter, nameLine, u"plus"_s, plusColor, preview, nameColor);
    if (hasConflict) {
        const QPixmap warning =
            symbol(u"exclamationmark.triangle.fill"_s, AppColors::warning(), painter->device()->devicePixelRatioF());
        painter->drawPixmap(newEnd + AppSpacing::xs, newLine.center().y() - symbolSize / 2, warning);
    }
    painter->restore();
}

int PreviewRowView::paintLine(QPainter *painter,
    const QRect &line,
    const QString &symbolName,
    const QColor &symbolColor,
    const QString &text,
    const QColor &textColor) const
{
    const QPixmap mark = symbol(symbolName, symbolColor, painter->device()->devicePixelRatioF());
    painter->drawPixmap(line.left() + (symbolBoxWidth - symbolSize) / 2, line.center().y() - symbolSize / 2, mark);
    const QRect textRect = line.adjusted(symbolBoxWidth + AppSpacing::xs, 0, 0, 0);
    const QString shown = painter->fontMetrics().elidedText(text, Qt::ElideRight, textRect.width());
    painter->setPen(textColor);
    painter->drawText(textRect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    return textRect.left() + painter->fontMetrics().horizontalAdvance(shown);
}

QPixmap PreviewRowView::symbol(const QString &name, const QColor &color, qreal devicePixelRatio) const
{
    // Rendering an SVG per painted row would dominate scrolling; each symbol is drawn once per colour.
    const QString key = name + u'/' + color.name(QColor::HexArgb) + u'/' + QString::number(devicePixelRatio);
    auto found = m_symbols.find(key);
    if (found == m_symbols.end())
        found = m_symbols.insert(key,
            SymbolIcons::icon(name, color).pixmap(QSize(symbolSize, symbolSize), devicePixelRatio));
    return *found;
}

} // namespace quillfern
