#pragma once

#include <QWidget>

class QPushButton;
class QVariantAnimation;

namespace quillfern {

class AppViewModel;
class PaneLabel;

/// The large target shown instead of the file table while the list is empty: a dashed rounded frame that
/// lights up in the accent colour while a drag hovers over the pane, an invitation to drop, and "Browse...".
/// Drops themselves are handled by the file list pane that holds it.
class DropZoneView final : public QWidget
{
    Q_OBJECT

public:
    explicit DropZoneView(AppViewModel *vm, QWidget *parent = nullptr);

    [[nodiscard]] bool isTargeted() const { return m_isTargeted; }
    /// Highlights the frame (animated over 0.2 s) while a drag hovers.
    void setTargeted(bool targeted);
    /// How far the highlight has come: 0 plain, 1 fully highlighted.
    [[nodiscard]] double highlight() const { return m_highlight; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyTheme();

    PaneLabel *m_symbol;
    QPushButton *m_browseButton;
    QVariantAnimation *m_animation;
    bool m_isTargeted = false;
    double m_highlight = 0;
};

} // namespace quillfern
