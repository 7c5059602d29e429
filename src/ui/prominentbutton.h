#pragma once

#include <QPushButton>
#include <QTimer>

namespace quillfern {

/// The prominent push button of a window or sheet: white content on an accent-coloured, rounded fill; disabled,
/// the colours of disabled text on a neutral fill. While busy it shows a spinner in place of its icon and keeps
/// its accent.
class ProminentButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit ProminentButton(const QString &text, QWidget *parent = nullptr);

    /// Shows a spinner instead of the icon while `busy`.
    void setBusy(bool busy);
    [[nodiscard]] bool isBusy() const { return m_isBusy; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// The icon (or spinner) and the text side by side, and how wide they are together.
    [[nodiscard]] int contentWidth() const;
    [[nodiscard]] bool hasIcon() const;

    bool m_isBusy = false;
    int m_spinnerStep = 0;
    QTimer m_spinnerTimer;
};

} // namespace quillfern
