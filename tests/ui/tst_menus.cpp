#include "app/quillfernapp.h"
#include "ui/contentview.h"
#include "ui/dialogpanelprovider.h"
#include "ui/filetablemodel.h"
#include "uitesthelpers.h"

#include <QFileDialog>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSplitter>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Qt::StringLiterals;
using namespace quillfern;

namespace {

RenameRule prefixRule()
{
    RenameRule rule(RuleType::Insert);
    rule.insertText = u"new_"_s;
    return rule;
}

} // namespace

class TestMenus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void windowIsTheOnlyOneAndTitled();
    void menusInOrder();
    void commandsHaveTitlesShortcutsAndPlaces_data();
    void commandsHaveTitlesShortcutsAndPlaces();
    void enabledStatesAtLaunch_data();
    void enabledStatesAtLaunch();
    void renameSelectedFollowsTheSelection();
    void exportFollowsThePreview();
    void historyCommandsFollowRenameAndUndo();
    void renameSelectedChosenFromTheMenuDoesNothing();
    void selectionShortcutsFireOnce();
    void historyShortcutsFireOnce();
    void renameShortcutOpensTheAlert();
    void importShortcutOpensThePanel();
    void exportWritesThePreviewWhereChosen();
    void focusedTextFieldKeepsItsOwnUndo();
    void windowKeepsItsMinimumSize();
    void narrowestWindowShowsEveryColumn();
    void locationsGivenAtStartAreAdded();
    void commandsWaitWhileARenameRuns();
    void renamingScreenshots_data();
    void renamingScreenshots();

private:
    QAction *command(const QString &objectName) const;
    void addFiles(const QStringList &names);
    /// Starts a rename of every file whose moves wait for the returned mover's release().
    std::shared_ptr<uitest::BlockingFileMover> startBlockedRename();

    std::unique_ptr<QTemporaryDir> m_dataHome;
    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<QuillfernApp> m_app;
};

void TestMenus::initTestCase()
{
    // The preset store writes its file under the data home, Qt's file dialogs their state under the configuration
    // home: keep both out of the real ones.
    m_dataHome = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dataHome->isValid());
    qputenv("XDG_DATA_HOME", m_dataHome->filePath(u"data"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", m_dataHome->filePath(u"config"_s).toUtf8());
}

void TestMenus::init()
{
    m_files = std::make_unique<QTemporaryDir>();
    QVERIFY(m_files->isValid());
    m_app = std::make_unique<QuillfernApp>();
    m_app->window().show();
    m_app->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_app->window()));
}

void TestMenus::cleanup()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<QDialog *>(window); dialog && dialog->isVisible())
            dialog->reject();
    }
    QTRY_VERIFY(!m_app->vm().isRenaming());
    m_app.reset();
    m_files.reset();
}

QAction *TestMenus::command(const QString &objectName) const
{
    return m_app->window().menuBar()->findChild<QAction *>(objectName);
}

void TestMenus::addFiles(const QStringList &names)
{
    m_app->vm().addFiles(uitest::createFiles(*m_files, names));
}

std::shared_ptr<uitest::BlockingFileMover> TestMenus::startBlockedRename()
{
    auto mover = std::make_shared<uitest::BlockingFileMover>();
    m_app->vm().setFileMover(mover);
    m_app->vm().performRename();
    return mover;
}

void TestMenus::windowIsTheOnlyOneAndTitled()
{
    QCOMPARE(m_app->window().windowTitle(), u"Quillfern"_s);
    QCOMPARE(m_app->window().centralWidget(), &m_app->contentView());
    int mainWindows = 0;
    for (QWidget *window : QApplication::topLevelWidgets())
        mainWindows += qobject_cast<QMainWindow *>(window) != nullptr;
    QCOMPARE(mainWindows, 1);
}

void TestMenus::menusInOrder()
{
    QStringList titles;
    for (QAction *menu : m_app->window().menuBar()->actions())
        titles.append(menu->text());
    QCOMPARE(titles, (QStringList{u"&File"_s, u"&Edit"_s, u"Edit"_s, u"Rename"_s}));
}

void TestMenus::commandsHaveTitlesShortcutsAndPlaces_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("menu");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QKeySequence>("shortcut");
    const QKeySequence ctrlShift = QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    QTest::newRow("import opens the File menu")
        << u"importFilesCommand"_s << u"fileMenu"_s << 0 << u"Import Files..."_s << QKeySequence(Qt::CTRL | Qt::Key_O);
    QTest::newRow("clear list follows import") << u"clearListCommand"_s << u"fileMenu"_s << 1 << u"Clear List"_s
                                               << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K);
    QTest::newRow("standard undo heads the Edit menu")
        << u"undoCommand"_s << u"standardEditMenu"_s << 0 << u"Undo"_s << QKeySequence(QKeySequence::Undo);
    QTest::newRow("standard redo follows it")
        << u"redoCommand"_s << u"standardEditMenu"_s << 1 << u"Redo"_s << QKeySequence(QKeySequence::Redo);
    QTest::newRow("undo rename comes after the standard pair")
        << u"undoRenameCommand"_s << u"standardEditMenu"_s << 2 << u"Undo Rename"_s
        << QKeySequence(Qt::CTRL | Qt::Key_Z);
    QTest::newRow("redo rename follows undo rename")
        << u"redoRenameCommand"_s << u"standardEditMenu"_s << 3 << u"Redo Rename"_s << ctrlShift;
    QTest::newRow("select all heads the own Edit menu") << u"selectAllFilesCommand"_s << u"selectionMenu"_s << 0
                                                        << u"Select All"_s << QKeySequence(Qt::CTRL | Qt::Key_A);
    QTest::newRow("deselect all is second") << u"deselectAllCommand"_s << u"selectionMenu"_s << 1 << u"Deselect All"_s
                                            << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A);
    QTest::newRow("invert selection is third")
        << u"invertSelectionCommand"_s << u"selectionMenu"_s << 2 << u"Invert Selection"_s
        << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I);
    QTest::newRow("rename selected heads the Rename menu")
        << u"renameSelectedCommand"_s << u"renameMenu"_s << 0 << u"Rename Selected..."_s
        << QKeySequence(Qt::CTRL | Qt::Key_Return);
    QTest::newRow("export comes after a separator")
        << u"exportPreviewCommand"_s << u"renameMenu"_s << 2 << u"Export Preview as CSV"_s << QKeySequence();
}

void TestMenus::commandsHaveTitlesShortcutsAndPlaces()
{
    QFETCH(QString, command);
    QFETCH(QString, menu);
    QFETCH(int, position);
    QFETCH(QString, title);
    QFETCH(QKeySequence, shortcut);
    auto *owner = m_app->window().menuBar()->findChild<QMenu *>(menu);
    QVERIFY(owner);
    QAction *action = owner->actions().value(position);
    QVERIFY(action);
    QCOMPARE(action->objectName(), command);
    QCOMPARE(action->text(), title);
    QCOMPARE(action->shortcut(), shortcut);
    if (menu == u"renameMenu"_s && position == 2)
        QVERIFY(owner->actions().at(1)->isSeparator());
}

void TestMenus::enabledStatesAtLaunch_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("import is always enabled") << u"importFilesCommand"_s << true;
    QTest::newRow("clear list is always enabled") << u"clearListCommand"_s << true;
    QTest::newRow("select all is always enabled") << u"selectAllFilesCommand"_s << true;
    QTest::newRow("deselect all is always enabled") << u"deselectAllCommand"_s << true;
    QTest::newRow("invert selection is always enabled") << u"invertSelectionCommand"_s << true;
    QTest::newRow("undo rename waits for a rename") << u"undoRenameCommand"_s << false;
    QTest::newRow("redo rename waits for an undo") << u"redoRenameCommand"_s << false;
    QTest::newRow("rename selected waits for a selection") << u"renameSelectedCommand"_s << false;
    QTest::newRow("export waits for a preview") << u"exportPreviewCommand"_s << false;
}

void TestMenus::enabledStatesAtLaunch()
{
    QFETCH(QString, command);
    QFETCH(bool, isEnabled);
    QAction *action = this->command(command);
    QVERIFY(action);
    QCOMPARE(action->isEnabled(), isEnabled);
}

void TestMenus::renameSelectedFollowsTheSelection()
{
    QAction *renameSelected = command(u"renameSelectedCommand"_s);
    addFiles({u"a.txt"_s, u"b.txt"_s});
    QVERIFY(renameSelected->isEnabled());
    command(u"deselectAllCommand"_s)->trigger();
    QCOMPARE(m_app->vm().selectedCount(), 0);
    QVERIFY(!renameSelected->isEnabled());
    command(u"invertSelectionCommand"_s)->trigger();
    QCOMPARE(m_app->vm().selectedCount(), 2);
    QVERIFY(renameSelected->isEnabled());
}

void TestMenus::exportFollowsThePreview()
{
    QAction *exportPreview = command(u"exportPreviewCommand"_s);
    addFiles({u"a.txt"_s});
    QVERIFY(exportPreview->isEnabled());
    command(u"clearListCommand"_s)->trigger();
    QVERIFY(m_app->vm().files().isEmpty());
    QVERIFY(!exportPreview->isEnabled());
}

void TestMenus::historyCommandsFollowRenameAndUndo()
{
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    m_app->vm().performRename();
    QTRY_VERIFY(!m_app->vm().isRenaming());
    // The result sheet is window-modal; the window takes keys again once it is closed (and, without a window
    // manager to do it, activated again).
    m_app->vm().setShowRenameResult(false);
    m_app->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_app->window()));
    QVERIFY(command(u"undoRenameCommand"_s)->isEnabled());
    QVERIFY(!command(u"redoRenameCommand"_s)->isEnabled());

    command(u"undoRenameCommand"_s)->trigger();
    QCOMPARE(m_app->vm().files().constFirst().originalName(), u"a.txt"_s);
    QVERIFY(!command(u"undoRenameCommand"_s)->isEnabled());
    QVERIFY(command(u"redoRenameCommand"_s)->isEnabled());

    command(u"redoRenameCommand"_s)->trigger();
    QCOMPARE(m_app->vm().files().constFirst().originalName(), u"new_a.txt"_s);
}

void TestMenus::renameSelectedChosenFromTheMenuDoesNothing()
{
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    const auto filesBefore = m_app->vm().files();
    command(u"renameSelectedCommand"_s)->trigger();
    QCoreApplication::processEvents();
    QVERIFY(!m_app->contentView().isConfirmingRename());
    QVERIFY(!uitest::visibleTopLevel<QMessageBox>(u"renameConfirmAlert"_s));
    QVERIFY(!m_app->vm().isRenaming());
    QVERIFY(m_app->vm().undoStack().isEmpty());
    QCOMPARE(m_app->vm().files().constFirst().id, filesBefore.constFirst().id);
    QVERIFY(QFile::exists(m_files->filePath(u"a.txt"_s)));
}

void TestMenus::selectionShortcutsFireOnce()
{
    QWidget *window = &m_app->window();
    addFiles({u"a.txt"_s, u"b.txt"_s});
    QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(m_app->vm().selectedCount(), 0);
    QTest::keyClick(window, Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(m_app->vm().selectedCount(), 2);
    m_app->vm().setFileSelected(m_app->vm().files().constFirst().id, false);
    QTest::keyClick(window, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(m_app->vm().selectedCount(), 2);
    QTest::keyClick(window, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(m_app->vm().files().isEmpty());
}

void TestMenus::historyShortcutsFireOnce()
{
    QWidget *window = &m_app->window();
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    m_app->vm().performRename();
    QTRY_VERIFY(!m_app->vm().isRenaming());
    // The result sheet is window-modal; the window takes keys again once it is closed (and, without a window
    // manager to do it, activated again).
    m_app->vm().setShowRenameResult(false);
    m_app->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_app->window()));

    QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier);
    QTRY_COMPARE(m_app->vm().redoStack().size(), 1);
    QCOMPARE(m_app->vm().files().constFirst().originalName(), u"a.txt"_s);
    QTest::keyClick(window, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_COMPARE(m_app->vm().undoStack().size(), 1);
    QCOMPARE(m_app->vm().files().constFirst().originalName(), u"new_a.txt"_s);
}

void TestMenus::renameShortcutOpensTheAlert()
{
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    QTest::keyClick(&m_app->window(), Qt::Key_Return, Qt::ControlModifier);
    QTRY_VERIFY(uitest::visibleTopLevel<QMessageBox>(u"renameConfirmAlert"_s));
    QVERIFY(m_app->contentView().isConfirmingRename());
    QVERIFY(m_app->vm().undoStack().isEmpty());
    QVERIFY(QFile::exists(m_files->filePath(u"a.txt"_s)));
}

void TestMenus::importShortcutOpensThePanel()
{
    bool sawPanel = false;
    uitest::answerWhenShown<QFileDialog>(QString(DialogPanelProvider::openPanelName), [&](QFileDialog *panel) {
        sawPanel = true;
        panel->reject();
    });
    QTest::keyClick(&m_app->window(), Qt::Key_O, Qt::ControlModifier);
    QTRY_VERIFY(sawPanel);
    QVERIFY(m_app->vm().files().isEmpty());
}

void TestMenus::exportWritesThePreviewWhereChosen()
{
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    // The user keeps the proposed name and picks the folder.
    const QString target = m_files->filePath(u"rename_preview.csv"_s);
    QString proposedName;
    uitest::answerWhenShown<QFileDialog>(QString(DialogPanelProvider::savePanelName), [&](QFileDialog *panel) {
        const auto closeOnExit = qScopeGuard([panel] {
            if (panel->isVisible())
                panel->reject();
        });
        proposedName = panel->selectedFiles().value(0).section(u'/', -1);
        panel->setDirectory(m_files->path());
        // The dialog lists a folder in the background; accept once the listing is there.
        auto *listing = panel->findChild<QFileSystemModel *>();
        QVERIFY(listing);
        QTRY_COMPARE(listing->rowCount(listing->index(m_files->path())), 1);
        QMetaObject::invokeMethod(panel, "accept");
    });
    command(u"exportPreviewCommand"_s)->trigger();
    QCOMPARE(proposedName, u"rename_preview.csv"_s);
    QFile written(target);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(written.readAll()), m_app->vm().exportCSV());
}

void TestMenus::focusedTextFieldKeepsItsOwnUndo()
{
    addFiles({u"a.txt"_s});
    m_app->vm().addRule(prefixRule());
    m_app->vm().performRename();
    QTRY_VERIFY(!m_app->vm().isRenaming());
    // The result sheet is window-modal; the window takes keys again once it is closed (and, without a window
    // manager to do it, activated again).
    m_app->vm().setShowRenameResult(false);
    m_app->window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&m_app->window()));
    QVERIFY(!command(u"undoCommand"_s)->isEnabled());

    auto *field = m_app->window().findChild<QLineEdit *>(u"filterField"_s);
    QVERIFY(field);
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    QVERIFY(command(u"undoCommand"_s)->isEnabled());
    QTest::keyClicks(field, u"zzz"_s);
    QCOMPARE(field->text(), u"zzz"_s);

    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(field->text(), QString());
    QCOMPARE(m_app->vm().undoStack().size(), 1);
    QVERIFY(m_app->vm().redoStack().isEmpty());

    // The standard item does the same for the focused field.
    QTest::keyClicks(field, u"abc"_s);
    field->selectAll();
    command(u"cutCommand"_s)->trigger();
    QCOMPARE(field->text(), QString());
    command(u"undoCommand"_s)->trigger();
    QCOMPARE(field->text(), u"abc"_s);
}

void TestMenus::windowKeepsItsMinimumSize()
{
    m_app->window().resize(100, 100);
    QTRY_VERIFY(m_app->window().width() >= 960);
    QVERIFY(m_app->contentView().width() >= 960);
    QVERIFY(m_app->contentView().height() >= 600);
    QCOMPARE(m_app->contentView().minimumSize(), QSize(960, 600));
    uitest::saveScreenshot(&m_app->window(), u"window-minimum"_s);
}

void TestMenus::narrowestWindowShowsEveryColumn()
{
    addFiles({u"holiday photo.jpg"_s, u"notes.txt"_s, u"report.pdf"_s});
    auto *splitter = m_app->window().findChild<QSplitter *>(u"mainSplitter"_s);
    const QList<int> widthsAtOpening = splitter->sizes();
    m_app->window().resize(100, 100);
    QTRY_COMPARE(m_app->contentView().width(), 960);
    auto *table = m_app->window().findChild<QTableView *>(u"fileTable"_s);
    QApplication::processEvents();
    uitest::saveScreenshot(&m_app->window(), u"window-narrowest"_s);

    // The table shows every column without scrolling sideways.
    QCOMPARE(table->horizontalScrollBar()->maximum(), 0);
    const QHeaderView *columns = table->horizontalHeader();
    QVERIFY(
        columns->sectionViewportPosition(FileTableModel::TypeColumn) + columns->sectionSize(FileTableModel::TypeColumn)
        <= table->viewport()->width());
    QVERIFY(columns->sectionSize(FileTableModel::NameColumn) >= 120);
    // The preview gave way, as far as it needed and no further than its minimum.
    const QList<int> widths = splitter->sizes();
    QVERIFY(widths.at(2) < widthsAtOpening.at(2));
    QVERIFY(widths.at(2) >= 240);
    QVERIFY(widths.at(0) >= 260);

    // Wide again, the panes have their widths of before.
    m_app->window().resize(1200, 760);
    QTRY_COMPARE(m_app->contentView().width(), 1200);
    QCOMPARE(splitter->sizes(), widthsAtOpening);
}

void TestMenus::locationsGivenAtStartAreAdded()
{
    const auto locations = uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s});
    m_app->open(locations);
    QCOMPARE(m_app->vm().files().size(), 2);
    QCOMPARE(m_app->vm().files().at(1).url, locations.at(1));
}

void TestMenus::commandsWaitWhileARenameRuns()
{
    addFiles({u"a.txt"_s, u"b.txt"_s});
    m_app->vm().addRule(prefixRule());
    m_app->vm().setFileSelected(m_app->vm().files().constLast().id, false);
    const auto mover = startBlockedRename();
    const auto releaseOnExit = qScopeGuard([&] { mover->release(); });
    QVERIFY(m_app->vm().isRenaming());
    const QList<FileItem> filesBefore = m_app->vm().files();
    const QList<RenameRule> rulesBefore = m_app->vm().rules();
    QCOMPARE(m_app->vm().undoStack().size(), 1);
    bool panelShown = false;
    for (const QString &panel :
        {QString(DialogPanelProvider::openPanelName), QString(DialogPanelProvider::savePanelName)})
        uitest::answerWhenShown<QFileDialog>(panel, [&](QFileDialog *dialog) {
            panelShown = true;
            dialog->reject();
        });

    QMenuBar *menuBar = m_app->window().menuBar();
    QAction *quit = command(u"quitCommand"_s);
    for (const QString &name : {u"fileMenu"_s, u"standardEditMenu"_s, u"selectionMenu"_s, u"renameMenu"_s}) {
        auto *menu = menuBar->findChild<QMenu *>(name);
        menu->popup(m_app->window().mapToGlobal(QPoint(20, 20)));
        QTRY_VERIFY(menu->isVisible());
        for (QAction *action : menu->actions()) {
            if (action->isSeparator() || action == quit)
                continue;
            QVERIFY2(!action->isEnabled(), qPrintable(action->objectName()));
            // Clicked twice in the open menu, then triggered directly.
            const QPoint item = menu->actionGeometry(action).center();
            QTest::mouseClick(menu, Qt::LeftButton, {}, item);
            QTest::mouseClick(menu, Qt::LeftButton, {}, item);
            action->trigger();
        }
        menu->close();
    }
    QVERIFY(quit->isEnabled());

    // Every shortcut of the window, twice, while the overlay has the keyboard.
    const QList<QKeyCombination> shortcuts{Qt::CTRL | Qt::Key_O,
        Qt::CTRL | Qt::Key_Z,
        Qt::CTRL | Qt::SHIFT | Qt::Key_Z,
        Qt::CTRL | Qt::Key_Return,
        Qt::CTRL | Qt::SHIFT | Qt::Key_K,
        Qt::CTRL | Qt::Key_A,
        Qt::CTRL | Qt::SHIFT | Qt::Key_A,
        Qt::CTRL | Qt::SHIFT | Qt::Key_I,
        QKeyCombination(Qt::Key_Delete),
        QKeyCombination(Qt::Key_Escape)};
    for (const QKeyCombination keys : shortcuts) {
        QTest::keyClick(&m_app->window(), keys.key(), keys.keyboardModifiers());
        QTest::keyClick(&m_app->window(), keys.key(), keys.keyboardModifiers());
    }

    // Files dropped onto the list are not added.
    const NativePath dropped = uitest::createFiles(*m_files, {u"dropped.txt"_s}).constFirst();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(dropped.toText())});
    auto *fileList = m_app->window().findChild<QWidget *>(u"fileListView"_s);
    QDragEnterEvent enter(fileList->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(fileList, &enter);
    QVERIFY(!enter.isAccepted());
    QDropEvent drop(fileList->rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(fileList, &drop);

    QApplication::processEvents();
    QVERIFY(!panelShown);
    QVERIFY(!uitest::visibleTopLevel<QMessageBox>(u"renameConfirmAlert"_s));
    QVERIFY(m_app->vm().isRenaming());
    QCOMPARE(m_app->vm().files().size(), filesBefore.size());
    for (qsizetype index = 0; index < filesBefore.size(); ++index) {
        QCOMPARE(m_app->vm().files().at(index).id, filesBefore.at(index).id);
        QCOMPARE(m_app->vm().files().at(index).isSelected, filesBefore.at(index).isSelected);
    }
    QCOMPARE(m_app->vm().rules(), rulesBefore);
    QCOMPARE(m_app->vm().undoStack().size(), 1);
    QVERIFY(m_app->vm().redoStack().isEmpty());

    // The rename finishes as started, and the commands come back.
    mover->release();
    QTRY_VERIFY(!m_app->vm().isRenaming());
    QVERIFY(QFile::exists(m_files->filePath(u"new_a.txt"_s)));
    QVERIFY(QFile::exists(m_files->filePath(u"b.txt"_s)));
    for (const QString &name : {u"importFilesCommand"_s,
             u"clearListCommand"_s,
             u"undoRenameCommand"_s,
             u"selectAllFilesCommand"_s,
             u"deselectAllCommand"_s,
             u"invertSelectionCommand"_s,
             u"renameSelectedCommand"_s,
             u"exportPreviewCommand"_s})
        QVERIFY2(command(name)->isEnabled(), qPrintable(name));
    QVERIFY(!command(u"redoRenameCommand"_s)->isEnabled());
    // Its one snapshot is the list from before it.
    command(u"undoRenameCommand"_s)->trigger();
    QCOMPARE(m_app->vm().files().constFirst().originalName(), u"a.txt"_s);
}

void TestMenus::renamingScreenshots_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void TestMenus::renamingScreenshots()
{
    QFETCH(bool, isDark);
    if (qEnvironmentVariableIsEmpty("QUILLFERN_SCREENSHOTS"))
        QSKIP("set QUILLFERN_SCREENSHOTS to a folder to save pictures of the window");
    const uitest::PaletteScope palette(isDark);
    QTRY_COMPARE(m_app->window().palette().color(QPalette::Window), QApplication::palette().color(QPalette::Window));
    addFiles({u"holiday photo.jpg"_s, u"notes.txt"_s, u"report.pdf"_s});
    m_app->vm().addRule(prefixRule());
    const auto mover = startBlockedRename();
    const auto releaseOnExit = qScopeGuard([&] { mover->release(); });

    auto *menu = m_app->window().menuBar()->findChild<QMenu *>(u"standardEditMenu"_s);
    const QRect title = m_app->window().menuBar()->actionGeometry(menu->menuAction());
    menu->popup(m_app->window().menuBar()->mapToGlobal(title.bottomLeft()));
    QTRY_VERIFY(menu->isVisible());
    // The window and its open menu in one picture, as the user sees them.
    QPixmap picture = m_app->window().grab();
    QPainter painter(&picture);
    painter.drawPixmap(m_app->window().mapFromGlobal(menu->pos()), menu->grab());
    painter.end();
    uitest::saveScreenshot(picture, u"renaming-menu-open"_s + (isDark ? u"-dark"_s : u"-light"_s));
    menu->close();
}

QTEST_MAIN(TestMenus)
#include "tst_menus.moc"
