#pragma once

#include <QPlainTextEdit>

namespace quillfern {

/// A field for a one-line command that wraps instead of scrolling sideways: it is as tall as its placeholder
/// needs at its width (at most four lines), so the placeholder reads whole in a narrow pane, and a long
/// command shows whole as it is typed. Return or Enter submits the command and never adds a line; line breaks
/// pasted in become spaces. Tab moves the focus on.
class CommandField final : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit CommandField(QWidget *parent = nullptr);

    /// The command as typed.
    [[nodiscard]] QString text() const { return toPlainText(); }
    /// Replaces the command, the cursor going to its end.
    void setText(const QString &text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Fires when Return or Enter is pressed in the field.
    void submitted();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// The lines the placeholder takes in a field `width` wide.
    [[nodiscard]] int placeholderLines(int width) const;
    [[nodiscard]] int heightForLines(int lines) const;

    /// The width the last height was given for, so a new width asks for another height.
    int m_measuredWidth = -1;
};

} // namespace quillfern
