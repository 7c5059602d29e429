#include "app/appmenus.h"

#include "state/appviewmodel.h"

#include <QAction>
#include <QApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// Shows `shortcut` beside the item without binding it: a widget shortcut of a menu item is live only while the
/// menu bar itself has the keyboard focus, which it never keeps, so the keys reach their one owner.
void showShortcutOnly(QAction *action, const QKeySequence &shortcut)
{
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetShortcut);
}

QAction *addAction(QMenu *menu, const QString &objectName, const QString &title)
{
    QAction *action = menu->addAction(title);
    action->setObjectName(objectName);
    return action;
}

/// Whether the focused widget is a text field that offers `method` (such as "undo()").
bool focusedWidgetOffers(const char *method)
{
    const QWidget *focused = QApplication::focusWidget();
    return focused && focused->metaObject()->indexOfMethod(method) >= 0;
}

} // namespace

AppMenus::AppMenus(AppViewModel *vm, QMenuBar *menuBar)
    : QObject(menuBar)
    , m_vm(vm)
{
    addFileMenu(menuBar);
    addStandardEditMenu(menuBar);
    addSelectionMenu(menuBar);
    addRenameMenu(menuBar);

    connect(m_vm, &AppViewModel::undoStackChanged, this, &AppMenus::updateEnabledStates);
    connect(m_vm, &AppViewModel::redoStackChanged, this, &AppMenus::updateEnabledStates);
    connect(m_vm, &AppViewModel::filesChanged, this, &AppMenus::updateEnabledStates);
    connect(m_vm, &AppViewModel::previewsChanged, this, &AppMenus::updateEnabledStates);
    connect(m_vm, &AppViewModel::isRenamingChanged, this, [this] {
        updateEnabledStates();
        updateTextEditingStates();
    });
    connect(qApp, &QApplication::focusChanged, this, &AppMenus::updateTextEditingStates);
    updateEnabledStates();
    updateTextEditingStates();
}

void AppMenus::addFileMenu(QMenuBar *menuBar)
{
    QMenu *menu = menuBar->addMenu(u"&File"_s);
    menu->setObjectName(u"fileMenu"_s);
    QAction *importFiles = addAction(menu, u"importFilesCommand"_s, u"Import Files..."_s);
    showShortcutOnly(importFiles, QKeySequence(Qt::CTRL | Qt::Key_O));
    connect(importFiles, &QAction::triggered, m_vm, &AppViewModel::selectFiles);
    QAction *clearList = addAction(menu, u"clearListCommand"_s, u"Clear List"_s);
    clearList->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K));
    connect(clearList, &QAction::triggered, m_vm, &AppViewModel::clearFiles);
    m_idleCommands.append({importFiles, clearList});
    menu->addSeparator();
    QAction *quit = addAction(menu, u"quitCommand"_s, u"Quit"_s);
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, qApp, &QApplication::closeAllWindows);
}

void AppMenus::addStandardEditMenu(QMenuBar *menuBar)
{
    QMenu *menu = menuBar->addMenu(u"&Edit"_s);
    menu->setObjectName(u"standardEditMenu"_s);
    addTextEditingItem(menu, {"undo()", "undo", u"undoCommand"_s, u"Undo"_s, QKeySequence::Undo});
    addTextEditingItem(menu, {"redo()", "redo", u"redoCommand"_s, u"Redo"_s, QKeySequence::Redo});
    // The rename history follows the standard undo and redo items, in the same group.
    m_undoRename = addAction(menu, u"undoRenameCommand"_s, u"Undo Rename"_s);
    showShortcutOnly(m_undoRename, QKeySequence(Qt::CTRL | Qt::Key_Z));
    connect(m_undoRename, &QAction::triggered, m_vm, &AppViewModel::undoRename);
    m_redoRename = addAction(menu, u"redoRenameCommand"_s, u"Redo Rename"_s);
    showShortcutOnly(m_redoRename, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    connect(m_redoRename, &QAction::triggered, m_vm, &AppViewModel::redoRename);
    menu->addSeparator();
    addTextEditingItem(menu, {"cut()", "cut", u"cutCommand"_s, u"Cut"_s, QKeySequence::Cut});
    addTextEditingItem(menu, {"copy()", "copy", u"copyCommand"_s, u"Copy"_s, QKeySequence::Copy});
    addTextEditingItem(menu, {"paste()", "paste", u"pasteCommand"_s, u"Paste"_s, QKeySequence::Paste});
    addTextEditingItem(menu,
        {"selectAll()", "selectAll", u"selectAllTextCommand"_s, u"Select All"_s, QKeySequence::SelectAll});
}

void AppMenus::addTextEditingItem(QMenu *menu, const TextEditingItem &item)
{
    QAction *action = addAction(menu, item.objectName, item.title);
    showShortcutOnly(action, QKeySequence(item.key));
    connect(action, &QAction::triggered, this, [signature = item.signature, name = item.name] {
        if (focusedWidgetOffers(signature))
            QMetaObject::invokeMethod(QApplication::focusWidget(), name);
    });
    m_textEditingActions.append({action, item.signature});
}

void AppMenus::addSelectionMenu(QMenuBar *menuBar)
{
    QMenu *menu = menuBar->addMenu(u"Edit"_s);
    menu->setObjectName(u"selectionMenu"_s);
    QAction *selectAll = addAction(menu, u"selectAllFilesCommand"_s, u"Select All"_s);
    selectAll->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_A));
    connect(selectAll, &QAction::triggered, m_vm, &AppViewModel::selectAll);
    QAction *deselectAll = addAction(menu, u"deselectAllCommand"_s, u"Deselect All"_s);
    deselectAll->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A));
    connect(deselectAll, &QAction::triggered, m_vm, &AppViewModel::deselectAll);
    QAction *invert = addAction(menu, u"invertSelectionCommand"_s, u"Invert Selection"_s);
    invert->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I));
    connect(invert, &QAction::triggered, m_vm, &AppViewModel::invertSelection);
    m_idleCommands.append({selectAll, deselectAll, invert});
}

void AppMenus::addRenameMenu(QMenuBar *menuBar)
{
    QMenu *menu = menuBar->addMenu(u"Rename"_s);
    menu->setObjectName(u"renameMenu"_s);
    // Chosen from the menu it does nothing: a rename starts only from the Rename button and its confirmation,
    // and the button owns the shortcut. The item shows the shortcut and, when enabled, that files are selected.
    m_renameSelected = addAction(menu, u"renameSelectedCommand"_s, u"Rename Selected..."_s);
    showShortcutOnly(m_renameSelected, QKeySequence(Qt::CTRL | Qt::Key_Return));
    menu->addSeparator();
    m_exportPreview = addAction(menu, u"exportPreviewCommand"_s, u"Export Preview as CSV"_s);
    connect(m_exportPreview, &QAction::triggered, m_vm, [this] { m_vm->exportCSVToFile(); });
}

void AppMenus::updateEnabledStates()
{
    // While a batch rename runs the window is covered: no command may change the list, its history or the
    // selection under it (an undo then would take the running rename's own snapshot).
    const bool isIdle = !m_vm->isRenaming();
    for (QAction *command : std::as_const(m_idleCommands))
        command->setEnabled(isIdle);
    m_undoRename->setEnabled(isIdle && !m_vm->undoStack().isEmpty());
    m_redoRename->setEnabled(isIdle && !m_vm->redoStack().isEmpty());
    m_renameSelected->setEnabled(isIdle && m_vm->selectedCount() > 0);
    m_exportPreview->setEnabled(isIdle && !m_vm->previews().isEmpty());
}

void AppMenus::updateTextEditingStates()
{
    // The standard editing items work on the focused text field, whichever kind it is.
    const bool isIdle = !m_vm->isRenaming();
    for (const auto &[action, signature] : std::as_const(m_textEditingActions))
        action->setEnabled(isIdle && focusedWidgetOffers(signature));
}

} // namespace quillfern
