#pragma once

#include <QWidget>

class QListView;
class QStackedWidget;
class QToolButton;

namespace quillfern {

class AppViewModel;
class PaneLabel;
class PreviewListModel;
class PreviewRowView;

/// The live preview pane: a header with the conflict count (or a check mark when all is well), one row per
/// preview with old and new names, an empty state when there is nothing to show, and a footer counting the
/// changes with a button that exports the preview as a CSV file.
class PreviewPanelView final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewPanelView(AppViewModel *vm, QWidget *parent = nullptr);

    /// The bar at the top of the pane; the window gives the three panes' bars one height.
    [[nodiscard]] QWidget *header() const { return m_header; }
    /// The bar at the bottom of the pane; the window gives it the height of the other panes' bottom bars.
    [[nodiscard]] QWidget *footer() const { return m_footer; }

protected:
    void changeEvent(QEvent *event) override;

private:
    QWidget *createHeader();
    QWidget *createList();
    QWidget *
    createEmptyState(const QString &name, const QString &symbolName, const QString &text, const QString &detail);
    QWidget *createFooter();

    void update();
    void applyTheme();

    AppViewModel *m_vm;
    PreviewListModel *m_model;
    PreviewRowView *m_rowView;
    QListView *m_list = nullptr;
    QWidget *m_header = nullptr;
    QWidget *m_footer = nullptr;
    QStackedWidget *m_content = nullptr;
    QWidget *m_emptyState = nullptr;
    QWidget *m_noRulesState = nullptr;
    PaneLabel *m_conflictLabel = nullptr;
    PaneLabel *m_checkMark = nullptr;
    PaneLabel *m_changesLabel = nullptr;
    QToolButton *m_exportButton = nullptr;
};

} // namespace quillfern
