#pragma once

#include <QFont>
#include <QFontMetrics>
#include <QHash>
#include <QPixmap>
#include <QStyledItemDelegate>

namespace quillfern {

/// Draws one failure of the result sheet: a red cross, the file's name, and under it, in the secondary colour,
/// why its move failed. Both texts wrap onto as many lines as they need (between words, or within a word too
/// long for a line), so every message is read whole. The width they wrap in is the list's width less its
/// scroll bar, whether or not the bar shows, so a row's height never depends on the bar. The fonts are those of
/// the application when the delegate is made.
class RenameFailureRowView final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit RenameFailureRowView(QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    /// The lines of `text` in `width`, counted once per text and width.
    [[nodiscard]] int lineCount(const QString &text,
        const QFont &font,
        const QFontMetrics &metrics,
        int width,
        QHash<QString, int> &counted) const;
    /// The width the texts wrap in for the list that `option` comes from.
    [[nodiscard]] int textWidth(const QStyleOptionViewItem &option) const;
    [[nodiscard]] QPixmap mark(qreal devicePixelRatio) const;

    // Made once: a list of thousands of rows measures every row when it is laid out.
    const QFont m_nameFont;
    const QFont m_reasonFont;
    const QFontMetrics m_nameMetrics;
    const QFontMetrics m_reasonMetrics;

    mutable QHash<QString, int> m_nameLines;
    mutable QHash<QString, int> m_reasonLines;
    /// The width the counts above were made for.
    mutable int m_countedWidth = -1;
    mutable QHash<QString, QPixmap> m_marks;
};

} // namespace quillfern
