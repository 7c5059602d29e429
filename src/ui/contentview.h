#pragma once

#include "ui/dialogpanelprovider.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QMessageBox;
class QPushButton;
class QSplitter;
class QToolButton;

namespace quillfern {

class AppViewModel;
class FileListView;
class PresetManager;
class ProgressOverlayView;
class ProminentButton;
class RenameResultView;

/// The main window's content: a top bar (logo, import, undo and redo, the live counters, the rule count and the
/// Rename button) over the three resizable panes: rule editor, file list and live preview. It asks before a
/// batch rename, shows the result sheet afterwards and covers everything while a rename runs. It installs the
/// desktop's file choosers on the state object for as long as it lives.
class ContentView final : public QWidget
{
    Q_OBJECT

public:
    ContentView(AppViewModel *vm, PresetManager *presetManager, QWidget *parent = nullptr);
    ~ContentView() override;

    /// Opens the rename confirmation alert, as the Rename button does; only its "Rename" starts the rename.
    void confirmRename();
    /// Whether the confirmation alert is up.
    [[nodiscard]] bool isConfirmingRename() const { return m_showRenameConfirm; }

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    [[nodiscard]] QWidget *makeTopBar();
    [[nodiscard]] QWidget *makeLogoGroup();
    [[nodiscard]] QWidget *makeCounters();
    [[nodiscard]] QWidget *makeRulePill();
    [[nodiscard]] QSplitter *makeMainContent(PresetManager *presetManager);

    void alignPaneBars();
    /// Gives the file list the width its table needs, from the side panes, and gives it back when there is room.
    void balancePanes();
    void updateCounters();
    void updateRulePill();
    void updateHistoryButtons();
    void updateRenameButton();
    void updateRenaming();
    void presentRenameResult();
    void applyTheme();

    AppViewModel *m_vm;
    DialogPanelProvider m_panelProvider;
    bool m_showRenameConfirm = false;
    bool m_hasSizedPanes = false;

    QWidget *m_body = nullptr;
    QLabel *m_logo = nullptr;
    QPushButton *m_importButton = nullptr;
    QToolButton *m_undoButton = nullptr;
    QToolButton *m_redoButton = nullptr;
    QWidget *m_counters = nullptr;
    QLabel *m_filesCount = nullptr;
    QLabel *m_filesCaption = nullptr;
    QLabel *m_selectedCount = nullptr;
    QLabel *m_selectedCaption = nullptr;
    QWidget *m_conflictsBadge = nullptr;
    QLabel *m_conflictsCount = nullptr;
    QLabel *m_conflictsCaption = nullptr;
    QWidget *m_rulePill = nullptr;
    QLabel *m_rulePillIcon = nullptr;
    QLabel *m_rulePillText = nullptr;
    ProminentButton *m_renameButton = nullptr;
    QList<QWidget *> m_dividers;
    /// The headers of the rule editor, file list and preview panes, and the bottom bars of the last two.
    QList<QWidget *> m_paneHeaders;
    QList<QWidget *> m_paneFooters;
    QSplitter *m_splitter = nullptr;
    FileListView *m_fileList = nullptr;
    /// How much narrower than the user left them the preview and the rule editor are, for the file list's sake.
    int m_lentByPreview = 0;
    int m_lentByRuleEditor = 0;
    ProgressOverlayView *m_overlay = nullptr;
    QPointer<QMessageBox> m_confirmAlert;
    QPointer<RenameResultView> m_resultView;
};

} // namespace quillfern
