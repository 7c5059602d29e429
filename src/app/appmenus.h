#pragma once

#include <QKeySequence>
#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace quillfern {

class AppViewModel;

/// The application's menu commands in the menu bar of the main window: File (import, clear, quit), the
/// standard Edit menu for text fields followed by "Undo Rename" and "Redo Rename", the application's own
/// "Edit" menu for the file selection, and "Rename". Each command's enabled state follows the state object; while
/// a batch rename runs, every command but Quit is disabled, and with it its shortcut.
///
/// Qt fires neither of two shortcuts bound to the same keys, so every key sequence has one owner. Where a
/// top-bar button of the window already carries a shortcut (import, undo, redo, rename), the menu item only
/// shows it; the standard text-editing items only show theirs too, since a focused text field takes those
/// keys itself before any shortcut is looked up.
class AppMenus final : public QObject
{
    Q_OBJECT

public:
    /// Fills `menuBar` and keeps it up to date with `vm`; owned by the menu bar.
    AppMenus(AppViewModel *vm, QMenuBar *menuBar);

private:
    /// One item of the standard Edit menu that works on the focused text field through one of its methods.
    struct TextEditingItem
    {
        /// The method's signature ("undo()") and name ("undo").
        const char *signature;
        const char *name;
        QString objectName;
        QString title;
        QKeySequence::StandardKey key;
    };

    void addFileMenu(QMenuBar *menuBar);
    void addStandardEditMenu(QMenuBar *menuBar);
    void addTextEditingItem(QMenu *menu, const TextEditingItem &item);
    void addSelectionMenu(QMenuBar *menuBar);
    void addRenameMenu(QMenuBar *menuBar);
    void updateEnabledStates();
    void updateTextEditingStates();

    AppViewModel *m_vm;
    /// The standard editing items, each with the method of the focused widget it calls.
    QList<std::pair<QAction *, const char *>> m_textEditingActions;
    /// The commands that are enabled exactly while no rename runs: import, clear and the selection commands.
    QList<QAction *> m_idleCommands;
    QAction *m_undoRename = nullptr;
    QAction *m_redoRename = nullptr;
    QAction *m_renameSelected = nullptr;
    QAction *m_exportPreview = nullptr;
};

} // namespace quillfern
