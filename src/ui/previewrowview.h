#pragma once

#include <QHash>
#include <QPixmap>
#include <QStyledItemDelegate>

namespace quillfern {

/// Draws one preview row: an unchanged name dimmed after an "equal" mark; a changed name as the old name
/// struck through after a minus over the new name after a plus; conflicts in the conflict colours with a
/// warning mark, on a red tint that wins over the hover tint. Rows are drawn, not built from widgets, so a list
/// of any length costs only the rows on screen. Each row has the number of lines the model asks for.
class PreviewRowView final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit PreviewRowView(QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    /// Forgets the drawn symbols and the measured line height, for a new palette or font.
    void clearCaches();

private:
    /// One line: a mark in its 12-wide box, then the text; returns where the text ends.
    int paintLine(QPainter *painter,
        const QRect &line,
        const QString &symbolName,
        const QColor &symbolColor,
        const QString &text,
        const QColor &textColor) const;
    [[nodiscard]] QPixmap symbol(const QString &name, const QColor &color, qreal devicePixelRatio) const;

    mutable QHash<QString, QPixmap> m_symbols;
    /// The height of a line of names, measured on first use: the list asks every row for its height.
    mutable int m_lineHeight = 0;
};

} // namespace quillfern
