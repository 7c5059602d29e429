#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QWidget>

class QLabel;

namespace quillfern {

/// A symbol, a text, or both side by side, drawn in one theme colour: the labels of the panes' headers, status
/// bars and empty states. The colour is a theme function, read again whenever the palette changes, so the
/// label follows light and dark appearances.
class PaneLabel final : public QWidget
{
    Q_OBJECT

public:
    using ColorFunction = QColor (*)();

    /// An empty `symbolName` or `text` leaves that part out.
    PaneLabel(const QString &symbolName, const QString &text, ColorFunction color, QWidget *parent = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString &text);
    [[nodiscard]] QString symbolName() const { return m_symbolName; }
    void setSymbolName(const QString &symbolName);
    void setColor(ColorFunction color);
    void setTextFont(const QFont &font);
    /// The symbol's edge in device-independent pixels; by default it follows the text font's height.
    void setSymbolSize(int size);
    void setAlignment(Qt::Alignment alignment);
    /// Lets the text wrap onto further lines.
    void setWordWrap(bool wrap);

protected:
    void changeEvent(QEvent *event) override;

private:
    void refresh();

    QLabel *m_symbol;
    QLabel *m_text;
    QString m_symbolName;
    ColorFunction m_color;
    int m_symbolSize = 0;
};

} // namespace quillfern
