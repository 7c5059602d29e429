#pragma once

#include <QWidget>

namespace quillfern {

/// The dimmed layer over the whole window while a batch rename runs: a centred card with a spinner and
/// "Renaming files...". It follows its parent's size, stays above everything else in it, even widgets added while
/// it shows, and takes every mouse event, so nothing underneath can be clicked; the window disables its own
/// content for the keyboard.
class ProgressOverlayView final : public QWidget
{
    Q_OBJECT

public:
    explicit ProgressOverlayView(QWidget *parent);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QWidget *m_card;
};

} // namespace quillfern
