#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/appfonts.h"
#include "ui/contentview.h"
#include "ui/dialogpanelprovider.h"
#include "ui/progressoverlayview.h"
#include "ui/prominentbutton.h"
#include "ui/renamefailurelistmodel.h"
#include "ui/renameresultview.h"
#include "uitesthelpers.h"

#include <QAbstractItemModelTester>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QProxyStyle>
#include <QPushButton>
#include <QScopeGuard>
#include <QSplitter>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <memory>

using namespace Qt::StringLiterals;
using namespace quillfern;

namespace {

RenameRule prefixRule(const QString &prefix)
{
    RenameRule rule(RuleType::Insert);
    rule.insertText = prefix;
    rule.insertPosition = InsertPosition::Beginning;
    return rule;
}

/// A rule that gives every file the extension "txt", so files that differ only in extension clash.
RenameRule sameExtensionRule()
{
    RenameRule rule(RuleType::ExtensionChange);
    rule.newExtension = u"txt"_s;
    return rule;
}

/// Moves nothing and fails every move without saying why.
class SilentlyFailingMover final : public FileMover
{
public:
    std::optional<MoveError> move(const NativePath &, const NativePath &) override
    {
        return MoveError{MoveError::Kind::Other, {}};
    }
    bool isSameItem(const NativePath &, const NativePath &) override { return false; }
    bool exists(const NativePath &) override { return false; }
    std::optional<ItemIdentity> identity(const NativePath &) override { return std::nullopt; }
};

/// A desktop whose item views open an item with a single click, as Plasma's do by default.
class ClickOpensItemsStyle final : public QProxyStyle
{
public:
    ClickOpensItemsStyle()
        : QProxyStyle(u"Fusion"_s)
    {
    }

    int styleHint(StyleHint hint,
        const QStyleOption *option,
        const QWidget *widget,
        QStyleHintReturn *returnData) const override
    {
        if (hint == SH_ItemView_ActivateItemOnSingleClick)
            return 1;
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

/// Shows `folder` in the open panel and clicks the items named `names` in its visible view, the first alone and
/// the others with Ctrl held, as a user picks several items.
void clickInPanel(QFileDialog *dialog, const QString &folder, const QStringList &names)
{
    dialog->setDirectory(folder);
    // The dialog lists a folder in the background; click once the listing is there.
    auto *listing = dialog->findChild<QFileSystemModel *>();
    QVERIFY(listing);
    QTRY_COMPARE(listing->rowCount(listing->index(folder)), int(QDir(folder).count()) - 2);
    QAbstractItemView *view = dialog->findChild<QListView *>(u"listView"_s);
    if (!view->isVisible())
        view = dialog->findChild<QAbstractItemView *>(u"treeView"_s);
    QVERIFY(view && view->isVisible());
    Qt::KeyboardModifiers modifiers;
    for (const QString &name : names) {
        const QRect item = view->visualRect(listing->index(QDir(folder).filePath(name)));
        QVERIFY(!item.isEmpty());
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, item.center());
        modifiers = Qt::ControlModifier;
    }
}

/// Moves nothing and fails every move with the same message.
class FailingMover final : public FileMover
{
public:
    explicit FailingMover(QString message)
        : m_message(std::move(message))
    {
    }
    std::optional<MoveError> move(const NativePath &, const NativePath &) override
    {
        return MoveError{MoveError::Kind::Other, m_message};
    }
    bool isSameItem(const NativePath &, const NativePath &) override { return false; }
    bool exists(const NativePath &) override { return false; }
    std::optional<ItemIdentity> identity(const NativePath &) override { return std::nullopt; }

private:
    QString m_message;
};

/// How far the pixel that stands out most differs in lightness from `background`, from 0 to 255.
int contrastWith(const QImage &image, const QColor &background)
{
    int most = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            most = std::max(most, std::abs(image.pixelColor(x, y).lightness() - background.lightness()));
    }
    return most;
}

QString labelText(const QWidget *parent, const QString &objectName)
{
    const auto *label = parent->findChild<QLabel *>(objectName);
    return label ? label->text() : QString();
}

} // namespace

class TestContentView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void countersAppearWithFiles();
    void conflictCounterShowsOnlyWithConflicts();
    void rulePillCountsRules_data();
    void rulePillCountsRules();
    void renameButtonEnablement_data();
    void renameButtonEnablement();
    void topBarButtonsCarryShortcutsAndTooltips();
    void historyButtonsFollowTheStacks();
    void disabledCommandsLookDisabled_data();
    void disabledCommandsLookDisabled();
    void panesHaveTheirWidthLimits();
    void paneBarsLineUp_data();
    void paneBarsLineUp();
    void alertTitleCountsSelectedFiles_data();
    void alertTitleCountsSelectedFiles();
    void alertMessageWarnsAboutConflicts_data();
    void alertMessageWarnsAboutConflicts();
    void shortcutOpensAlertWithoutRenaming();
    void cancellingTheAlertRenamesNothing();
    void confirmingRenamesAndShowsSuccess();
    void failuresAreListedInTheResultSheet();
    void sheetsHaveNoMaximiseButton();
    void longFailuresAreShownWhole();
    void thousandsOfFailuresMakeNoWidgetPerRow();
    void overlayCoversTheWindowWhileRenaming();
    void importPanelAddsClickedFilesAndFolders_data();
    void importPanelAddsClickedFilesAndFolders();
    void importPanelReopensWhereTheLastImportWas();
    void screenshots_data();
    void screenshots();

private:
    /// Confirms the alert that is (or is about to be) open with the button titled `title`.
    void answerAlert(const QString &title);
    QMessageBox *waitForAlert();

    std::unique_ptr<QTemporaryDir> m_dataHome;
    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<AppViewModel> m_vm;
    std::unique_ptr<PresetManager> m_presets;
    std::unique_ptr<ContentView> m_view;
};

void TestContentView::initTestCase()
{
    // The preset store writes its file under the data home, Qt's file dialog its state under the configuration
    // home: keep both out of the real ones.
    m_dataHome = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dataHome->isValid());
    qputenv("XDG_DATA_HOME", m_dataHome->filePath(u"data"_s).toUtf8());
    qputenv("XDG_CONFIG_HOME", m_dataHome->filePath(u"config"_s).toUtf8());
}

void TestContentView::init()
{
    m_files = std::make_unique<QTemporaryDir>();
    QVERIFY(m_files->isValid());
    m_vm = std::make_unique<AppViewModel>();
    m_presets = std::make_unique<PresetManager>();
    m_view = std::make_unique<ContentView>(m_vm.get(), m_presets.get());
    m_view->resize(1200, 760);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void TestContentView::cleanup()
{
    // A sheet left open by a failed check must not leak into the next test.
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (auto *dialog = qobject_cast<QDialog *>(window); dialog && dialog->isVisible())
            dialog->reject();
    }
    m_view.reset();
    m_presets.reset();
    QTRY_VERIFY(!m_vm->isRenaming());
    m_vm.reset();
    m_files.reset();
}

QMessageBox *TestContentView::waitForAlert()
{
    QMessageBox *alert = nullptr;
    [&] {
        QTRY_VERIFY((alert = uitest::visibleTopLevel<QMessageBox>(u"renameConfirmAlert"_s)));
    }();
    return alert;
}

void TestContentView::answerAlert(const QString &title)
{
    QMessageBox *alert = waitForAlert();
    QVERIFY(alert);
    const QList<QAbstractButton *> buttons = alert->buttons();
    const auto button = std::find_if(buttons.cbegin(), buttons.cend(), [&](QAbstractButton *candidate) {
        return candidate->text() == title;
    });
    QVERIFY(button != buttons.cend());
    QTest::mouseClick(*button, Qt::LeftButton);
}

void TestContentView::countersAppearWithFiles()
{
    auto *counters = m_view->findChild<QWidget *>(u"counters"_s);
    QVERIFY(counters);
    QVERIFY(!counters->isVisible());

    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}));
    QVERIFY(counters->isVisible());
    QCOMPARE(labelText(m_view.get(), u"filesBadgeCount"_s), u"3"_s);
    QCOMPARE(labelText(m_view.get(), u"filesBadgeCaption"_s), u"files"_s);
    QCOMPARE(labelText(m_view.get(), u"selectedBadgeCount"_s), u"3"_s);
    QCOMPARE(labelText(m_view.get(), u"selectedBadgeCaption"_s), u"selected"_s);

    m_vm->setFileSelected(m_vm->files().constFirst().id, false);
    QCOMPARE(labelText(m_view.get(), u"selectedBadgeCount"_s), u"2"_s);

    m_vm->removeFiles({m_vm->files().at(0), m_vm->files().at(1)});
    QCOMPARE(labelText(m_view.get(), u"filesBadgeCount"_s), u"1"_s);
    QCOMPARE(labelText(m_view.get(), u"filesBadgeCaption"_s), u"file"_s);

    m_vm->clearFiles();
    QVERIFY(!counters->isVisible());
}

void TestContentView::conflictCounterShowsOnlyWithConflicts()
{
    auto *badge = m_view->findChild<QWidget *>(u"conflictsBadge"_s);
    QVERIFY(badge);
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s, u"a.md"_s, u"a.csv"_s}));
    QVERIFY(!badge->isVisible());

    m_vm->addRule(sameExtensionRule());
    QVERIFY(badge->isVisible());
    QCOMPARE(labelText(m_view.get(), u"conflictsBadgeCount"_s), u"2"_s);
    QCOMPARE(labelText(m_view.get(), u"conflictsBadgeCaption"_s), u"conflicts"_s);

    m_vm->removeFiles({m_vm->files().constLast()});
    QCOMPARE(labelText(m_view.get(), u"conflictsBadgeCount"_s), u"1"_s);
    QCOMPARE(labelText(m_view.get(), u"conflictsBadgeCaption"_s), u"conflict"_s);
}

void TestContentView::rulePillCountsRules_data()
{
    QTest::addColumn<int>("ruleCount");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no rules, no pill") << 0 << QString();
    QTest::newRow("one rule is singular") << 1 << u"1 rule"_s;
    QTest::newRow("three rules are plural") << 3 << u"3 rules"_s;
}

void TestContentView::rulePillCountsRules()
{
    QFETCH(int, ruleCount);
    QFETCH(QString, expected);
    for (int index = 0; index < ruleCount; ++index)
        m_vm->addRule(prefixRule(u"x"_s));
    auto *pill = m_view->findChild<QWidget *>(u"rulePill"_s);
    QVERIFY(pill);
    QCOMPARE(pill->isVisible(), !expected.isEmpty());
    if (!expected.isEmpty())
        QCOMPARE(labelText(m_view.get(), u"rulePillText"_s), expected);
}

void TestContentView::renameButtonEnablement_data()
{
    QTest::addColumn<bool>("hasSelection");
    QTest::addColumn<bool>("ruleIsEnabled");
    QTest::addColumn<bool>("expectedEnabled");
    QTest::newRow("selected files and an enabled rule allow renaming") << true << true << true;
    QTest::newRow("nothing selected disables it") << false << true << false;
    QTest::newRow("every rule disabled disables it") << true << false << false;
}

void TestContentView::renameButtonEnablement()
{
    QFETCH(bool, hasSelection);
    QFETCH(bool, ruleIsEnabled);
    QFETCH(bool, expectedEnabled);
    auto *button = m_view->findChild<ProminentButton *>(u"renameButton"_s);
    QVERIFY(button);
    QVERIFY(!button->isEnabled());

    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s}));
    if (!hasSelection)
        m_vm->deselectAll();
    RenameRule rule = prefixRule(u"new_"_s);
    rule.isEnabled = ruleIsEnabled;
    m_vm->addRule(rule);
    QCOMPARE(button->isEnabled(), expectedEnabled);
}

void TestContentView::topBarButtonsCarryShortcutsAndTooltips()
{
    auto *import = m_view->findChild<QPushButton *>(u"topBarImportButton"_s);
    auto *undo = m_view->findChild<QToolButton *>(u"undoButton"_s);
    auto *redo = m_view->findChild<QToolButton *>(u"redoButton"_s);
    auto *rename = m_view->findChild<ProminentButton *>(u"renameButton"_s);
    QVERIFY(import && undo && redo && rename);

    const auto hint = [](const QString &text, const QKeySequence &keys) -> QString {
        return text + u" ("_s + keys.toString(QKeySequence::NativeText) + u')';
    };
    QCOMPARE(import->text(), u"Import"_s);
    QCOMPARE(import->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_O));
    QCOMPARE(import->toolTip(), hint(u"Import Files"_s, import->shortcut()));
    QVERIFY(!import->icon().isNull());
    QCOMPARE(undo->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Z));
    QCOMPARE(undo->toolTip(), hint(u"Undo"_s, undo->shortcut()));
    QVERIFY(!undo->icon().isNull());
    QCOMPARE(redo->shortcut(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    QCOMPARE(redo->toolTip(), hint(u"Redo"_s, redo->shortcut()));
    QVERIFY(!redo->icon().isNull());
    QCOMPARE(rename->text(), u"Rename"_s);
    QCOMPARE(rename->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Return));
    QCOMPARE(rename->toolTip(), hint(u"Rename Files"_s, rename->shortcut()));
    QCOMPARE(rename->width(), 110);
}

void TestContentView::historyButtonsFollowTheStacks()
{
    auto *undo = m_view->findChild<QToolButton *>(u"undoButton"_s);
    auto *redo = m_view->findChild<QToolButton *>(u"redoButton"_s);
    QVERIFY(!undo->isEnabled());
    QVERIFY(!redo->isEnabled());

    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    m_vm->performRename();
    QTRY_VERIFY(!m_vm->isRenaming());
    QVERIFY(undo->isEnabled());
    QVERIFY(!redo->isEnabled());
    QCOMPARE(m_vm->files().constFirst().originalName(), u"new_a.txt"_s);

    QTest::mouseClick(undo, Qt::LeftButton);
    QCOMPARE(m_vm->files().constFirst().originalName(), u"a.txt"_s);
    QVERIFY(!undo->isEnabled());
    QVERIFY(redo->isEnabled());

    QTest::mouseClick(redo, Qt::LeftButton);
    QCOMPARE(m_vm->files().constFirst().originalName(), u"new_a.txt"_s);
}

void TestContentView::disabledCommandsLookDisabled_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light appearance") << false;
    QTest::newRow("dark appearance") << true;
}

void TestContentView::disabledCommandsLookDisabled()
{
    QFETCH(bool, isDark);
    const uitest::PaletteScope palette(isDark);
    QTRY_COMPARE(m_view->palette().color(QPalette::Window), QApplication::palette().color(QPalette::Window));
    auto *undo = m_view->findChild<QToolButton *>(u"undoButton"_s);
    auto *redo = m_view->findChild<QToolButton *>(u"redoButton"_s);
    auto *rename = m_view->findChild<ProminentButton *>(u"renameButton"_s);
    const QColor window = m_view->palette().color(QPalette::Window);
    // The fill is read inside the rounded button, the text's contrast against that fill.
    const auto renameLook = [rename] {
        const QImage image = rename->grab().toImage();
        const QColor fill = image.pixelColor(image.width() / 2, 3);
        return std::pair{fill, contrastWith(image, fill)};
    };

    QVERIFY(!undo->isEnabled() && !redo->isEnabled() && !rename->isEnabled());
    const int disabledUndo = contrastWith(undo->grab().toImage(), window);
    const int disabledRedo = contrastWith(redo->grab().toImage(), window);
    const auto [disabledFill, disabledText] = renameLook();

    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    // Two renames and an undo leave both an undo and a redo.
    for (int round = 0; round < 2; ++round) {
        m_vm->performRename();
        QTRY_VERIFY(!m_vm->isRenaming());
        m_vm->setShowRenameResult(false);
    }
    m_vm->undoRename();
    QVERIFY(undo->isEnabled() && redo->isEnabled() && rename->isEnabled());
    const auto [enabledFill, enabledText] = renameLook();

    // A disabled symbol stands out from the window far less than an enabled one.
    QVERIFY2(disabledUndo * 10 < contrastWith(undo->grab().toImage(), window) * 6,
        qPrintable(u"%1 against %2"_s.arg(disabledUndo).arg(contrastWith(undo->grab().toImage(), window))));
    QVERIFY(disabledRedo * 10 < contrastWith(redo->grab().toImage(), window) * 6);
    // A disabled Rename button loses the accent's colour and its text stands out less.
    QVERIFY(enabledFill.hslSaturationF() > 0.5);
    QVERIFY2(disabledFill.hslSaturationF() < 0.25, qPrintable(disabledFill.name()));
    QVERIFY2(disabledText * 10 < enabledText * 6, qPrintable(u"%1 against %2"_s.arg(disabledText).arg(enabledText)));
}

void TestContentView::panesHaveTheirWidthLimits()
{
    auto *splitter = m_view->findChild<QSplitter *>(u"mainSplitter"_s);
    QVERIFY(splitter);
    QCOMPARE(splitter->count(), 3);
    QVERIFY(!splitter->childrenCollapsible());
    const QWidget *ruleEditor = splitter->widget(0);
    const QWidget *fileList = splitter->widget(1);
    const QWidget *preview = splitter->widget(2);
    QCOMPARE(ruleEditor->minimumWidth(), 260);
    QCOMPARE(ruleEditor->maximumWidth(), 380);
    QCOMPARE(fileList->minimumWidth(), 340);
    QCOMPARE(fileList->maximumWidth(), QWIDGETSIZE_MAX);
    QCOMPARE(preview->minimumWidth(), 240);
    QCOMPARE(preview->maximumWidth(), 360);
    // The side panes open at their ideal widths and the file list takes the rest.
    QCOMPARE(splitter->sizes().at(0), 300);
    QCOMPARE(splitter->sizes().at(2), 280);

    // Dragging a handle far beyond a limit stops at the limit.
    const auto drag = [](QWidget *handle, int distance) {
        const QPoint start = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, start);
        QTest::mouseMove(handle, start + QPoint(distance, 0));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, start + QPoint(distance, 0));
    };
    drag(splitter->handle(1), 400);
    QCOMPARE(splitter->sizes().at(0), 380);
    drag(splitter->handle(2), 400);
    QCOMPARE(splitter->sizes().at(2), 240);
    drag(splitter->handle(2), -800);
    QCOMPARE(splitter->sizes().at(2), 360);
    // In a narrow window the file list keeps its minimum and the side panes give way.
    m_view->resize(900, 600);
    QTRY_COMPARE(splitter->width(), 900);
    QVERIFY(fileList->width() >= 340);
    QVERIFY(ruleEditor->width() >= 260);
    QVERIFY(preview->width() >= 240);
}

void TestContentView::paneBarsLineUp_data()
{
    QTest::addColumn<QStringList>("bars");
    QTest::addColumn<bool>("alongTheirTop");
    QTest::newRow("the three panes' headers end on one line")
        << QStringList{u"ruleEditorHeader"_s, u"fileListToolbar"_s, u"previewHeader"_s} << false;
    QTest::newRow("the file list's and the preview's bottom bars start on one line")
        << QStringList{u"fileListStatusBar"_s, u"previewFooter"_s} << true;
}

void TestContentView::paneBarsLineUp()
{
    QFETCH(QStringList, bars);
    QFETCH(bool, alongTheirTop);
    // With files, rules and a conflict, so each bar shows all it can.
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s, u"a.md"_s}));
    m_vm->addRule(sameExtensionRule());
    QApplication::processEvents();
    QList<int> edges;
    for (const QString &name : bars) {
        auto *bar = m_view->findChild<QWidget *>(name);
        QVERIFY2(bar && bar->isVisible(), qPrintable(name));
        // Nothing in a bar is cut by the shared height.
        for (const QWidget *child : bar->findChildren<QWidget *>(Qt::FindDirectChildrenOnly)) {
            if (child->isVisible())
                QVERIFY2(bar->rect().contains(child->geometry()), qPrintable(child->objectName()));
        }
        edges.append(bar->mapTo(m_view.get(), QPoint(0, alongTheirTop ? 0 : bar->height())).y());
    }
    QCOMPARE(edges.count(edges.constFirst()), edges.size());
}

void TestContentView::alertTitleCountsSelectedFiles_data()
{
    QTest::addColumn<int>("selectedCount");
    QTest::addColumn<QString>("expectedTitle");
    QTest::newRow("no file is plural") << 0 << u"Rename 0 files?"_s;
    QTest::newRow("one file is singular") << 1 << u"Rename 1 file?"_s;
    QTest::newRow("two files are plural") << 2 << u"Rename 2 files?"_s;
}

void TestContentView::alertTitleCountsSelectedFiles()
{
    QFETCH(int, selectedCount);
    QFETCH(QString, expectedTitle);
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s, u"c.txt"_s}));
    m_vm->deselectAll();
    for (int index = 0; index < selectedCount; ++index)
        m_vm->setFileSelected(m_vm->files().at(index).id, true);

    m_view->confirmRename();
    QMessageBox *alert = waitForAlert();
    QVERIFY(alert);
    QVERIFY(m_view->isConfirmingRename());
    QCOMPARE(alert->text(), expectedTitle);
    QCOMPARE(alert->windowModality(), Qt::WindowModal);
    answerAlert(u"Cancel"_s);
    QTRY_VERIFY(!m_view->isConfirmingRename());
}

void TestContentView::alertMessageWarnsAboutConflicts_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("expectedMessage");
    QTest::newRow("no conflict reassures about undo") << QStringList{u"a.txt"_s,
        u"b.md"_s} << u"This action will rename the selected files on disk. It can be undone."_s;
    QTest::newRow("one conflict is singular")
        << QStringList{u"a.txt"_s, u"a.md"_s} << u"Warning: 1 conflict detected. Conflicting files will be skipped."_s;
    QTest::newRow("three conflicts are plural")
        << QStringList{u"a.txt"_s, u"a.md"_s, u"a.csv"_s, u"a.log"_s}
        << u"Warning: 3 conflicts detected. Conflicting files will be skipped."_s;
}

void TestContentView::alertMessageWarnsAboutConflicts()
{
    QFETCH(QStringList, names);
    QFETCH(QString, expectedMessage);
    m_vm->addFiles(uitest::createFiles(*m_files, names));
    m_vm->addRule(sameExtensionRule());

    m_view->confirmRename();
    QMessageBox *alert = waitForAlert();
    QVERIFY(alert);
    QCOMPARE(alert->informativeText(), expectedMessage);
    QStringList buttonTitles;
    for (QAbstractButton *button : alert->buttons())
        buttonTitles.append(button->text());
    buttonTitles.sort();
    QCOMPARE(buttonTitles, (QStringList{u"Cancel"_s, u"Rename"_s}));
    QCOMPARE(alert->buttonRole(alert->escapeButton()), QMessageBox::RejectRole);
    answerAlert(u"Cancel"_s);
}

void TestContentView::shortcutOpensAlertWithoutRenaming()
{
    const auto paths = uitest::createFiles(*m_files, {u"a.txt"_s});
    m_vm->addFiles(paths);
    m_vm->addRule(prefixRule(u"new_"_s));
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));

    QTest::keyClick(m_view.get(), Qt::Key_Return, Qt::ControlModifier);
    QMessageBox *alert = waitForAlert();
    QVERIFY(alert);
    QVERIFY(!m_vm->isRenaming());
    QVERIFY(m_vm->undoStack().isEmpty());
    QVERIFY(std::filesystem::exists(paths.constFirst().toStdPath()));

    // Return answers the default button, which is Cancel: the shortcut and Return together never rename.
    QTest::keyClick(alert, Qt::Key_Return);
    QTRY_VERIFY(!m_view->isConfirmingRename());
    QVERIFY(m_vm->undoStack().isEmpty());
    QVERIFY(std::filesystem::exists(paths.constFirst().toStdPath()));
}

void TestContentView::cancellingTheAlertRenamesNothing()
{
    const auto paths = uitest::createFiles(*m_files, {u"a.txt"_s});
    m_vm->addFiles(paths);
    m_vm->addRule(prefixRule(u"new_"_s));
    QTest::mouseClick(m_view->findChild<ProminentButton *>(u"renameButton"_s), Qt::LeftButton);
    answerAlert(u"Cancel"_s);
    QTRY_VERIFY(!m_view->isConfirmingRename());
    QVERIFY(m_vm->undoStack().isEmpty());
    QVERIFY(!m_vm->showRenameResult());
    QVERIFY(std::filesystem::exists(paths.constFirst().toStdPath()));
}

void TestContentView::confirmingRenamesAndShowsSuccess()
{
    const auto paths = uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s});
    m_vm->addFiles(paths);
    m_vm->addRule(prefixRule(u"new_"_s));
    QTest::mouseClick(m_view->findChild<ProminentButton *>(u"renameButton"_s), Qt::LeftButton);
    answerAlert(u"Rename"_s);

    RenameResultView *sheet = nullptr;
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    QVERIFY(QFile::exists(m_files->filePath(u"new_a.txt"_s)));
    QVERIFY(QFile::exists(m_files->filePath(u"new_b.txt"_s)));
    QCOMPARE(labelText(sheet, u"resultHeading"_s), u"Rename Complete"_s);
    QCOMPARE(labelText(sheet, u"renamedCounterNumber"_s), u"2"_s);
    QVERIFY(!sheet->findChild<QWidget *>(u"failedCounter"_s));
    QVERIFY(!sheet->findChild<QWidget *>(u"errorBox"_s));
    QCOMPARE(sheet->width(), 400);
    QCOMPARE(sheet->windowModality(), Qt::WindowModal);

    QTest::mouseClick(sheet->findChild<QPushButton *>(u"doneButton"_s), Qt::LeftButton);
    QVERIFY(!m_vm->showRenameResult());
    QTRY_VERIFY(!uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s));
}

void TestContentView::failuresAreListedInTheResultSheet()
{
    m_vm->setFileMover(std::make_shared<SilentlyFailingMover>());
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    m_view->confirmRename();
    answerAlert(u"Rename"_s);

    RenameResultView *sheet = nullptr;
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    QCOMPARE(labelText(sheet, u"resultHeading"_s), u"Rename Completed with Errors"_s);
    QCOMPARE(labelText(sheet, u"renamedCounterNumber"_s), u"0"_s);
    QCOMPARE(labelText(sheet, u"failedCounterNumber"_s), u"2"_s);
    QVERIFY(sheet->findChild<QWidget *>(u"errorBox"_s));
    auto *list = sheet->findChild<QAbstractItemView *>(u"errorList"_s);
    QVERIFY(list);
    QAbstractItemModelTester tester(list->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(list->model()->rowCount(), 2);
    QCOMPARE(list->model()->index(0, 0).data().toString(), u"a.txt"_s);
    QCOMPARE(list->model()->index(1, 0).data().toString(), u"b.txt"_s);
    QCOMPARE(list->model()->index(0, 0).data(RenameFailureListModel::ReasonRole).toString(), u"Unknown error"_s);
    // Both rows show whole, one under the other.
    QVERIFY(
        list->visualRect(list->model()->index(1, 0)).top() >= list->visualRect(list->model()->index(0, 0)).bottom());
    QVERIFY(list->viewport()->rect().contains(list->visualRect(list->model()->index(1, 0))));

    // Escape closes the sheet like Done, and the flag follows.
    QTest::keyClick(sheet, Qt::Key_Escape);
    QTRY_VERIFY(!m_vm->showRenameResult());
}

void TestContentView::sheetsHaveNoMaximiseButton()
{
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    m_vm->performRename();
    QTRY_VERIFY(uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s));
    for (const QString &name : {u"renameResultView"_s, u"savePresetSheet"_s, u"loadPresetSheet"_s}) {
        auto *sheet = m_view->findChild<QDialog *>(name);
        QVERIFY2(sheet, qPrintable(name));
        const Qt::WindowFlags flags = sheet->windowFlags();
        // Its own hints, so the window manager adds none: a title and a close button, nothing else.
        QVERIFY2(flags.testFlag(Qt::CustomizeWindowHint), qPrintable(name));
        QVERIFY(flags.testFlag(Qt::WindowTitleHint));
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
        QVERIFY2(!flags.testFlag(Qt::WindowMaximizeButtonHint), qPrintable(name));
        QVERIFY(!flags.testFlag(Qt::WindowMinimizeButtonHint));
        QCOMPARE(sheet->windowModality(), Qt::WindowModal);
    }
}

void TestContentView::longFailuresAreShownWhole()
{
    const QString reason = u"The new name is 412 bytes long; a file name can have at most 255. Shorten what the rules "
                           u"insert or remove some of the name, then rename again."_s;
    const QString name = QString(u"a"_s).repeated(90) + u".txt"_s;
    m_vm->setFileMover(std::make_shared<FailingMover>(reason));
    m_vm->addFiles(uitest::createFiles(*m_files, {name, u"b.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    m_vm->performRename();
    RenameResultView *sheet = nullptr;
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    auto *list = sheet->findChild<QAbstractItemView *>(u"errorList"_s);
    QVERIFY(list);
    QCOMPARE(list->model()->index(0, 0).data(RenameFailureListModel::ReasonRole).toString(), reason);
    uitest::saveScreenshot(sheet, u"result-long-failures"_s);

    // Neither text fits one line of the list; each row is tall enough for all the lines its texts need.
    const QFontMetrics nameMetrics(AppFonts::caption());
    const QFontMetrics reasonMetrics(AppFonts::caption2());
    const int width = list->viewport()->width();
    QVERIFY(nameMetrics.horizontalAdvance(name) > width);
    QVERIFY(reasonMetrics.horizontalAdvance(reason) > width);
    const auto linesAtLeast = [width](const QFontMetrics &metrics, const QString &text) {
        return (metrics.horizontalAdvance(text) + width - 1) / width;
    };
    const QRect first = list->visualRect(list->model()->index(0, 0));
    const QRect second = list->visualRect(list->model()->index(1, 0));
    QVERIFY(first.height() >= linesAtLeast(nameMetrics, name) * nameMetrics.lineSpacing()
            + linesAtLeast(reasonMetrics, reason) * reasonMetrics.lineSpacing());
    QVERIFY(second.height() < first.height());
    QVERIFY(second.top() > first.bottom());
    QVERIFY(list->viewport()->rect().contains(first));
}

void TestContentView::thousandsOfFailuresMakeNoWidgetPerRow()
{
    constexpr int failureCount = 20'000;
    QList<NativePath> locations;
    for (int index = 0; index < failureCount; ++index)
        locations.append(NativePath::fromText(m_files->filePath(u"IMG_%1.jpg"_s.arg(index))));
    m_vm->setFileMover(std::make_shared<FailingMover>(u"Permission denied"_s));
    m_vm->addFiles(locations);
    m_vm->addRule(prefixRule(u"new_"_s));
    m_vm->performRename();
    RenameResultView *sheet = nullptr;
    QTRY_VERIFY_WITH_TIMEOUT((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)), 20'000);
    QCOMPARE(labelText(sheet, u"failedCounterNumber"_s), QString::number(failureCount));
    auto *list = sheet->findChild<QAbstractItemView *>(u"errorList"_s);
    QVERIFY(list);
    QCOMPARE(list->model()->rowCount(), failureCount);
    // The whole sheet is a few dozen widgets, however many rows its list has.
    QVERIFY(sheet->findChildren<QWidget *>().size() < 50);

    const QModelIndex last = list->model()->index(failureCount - 1, 0);
    list->scrollTo(last);
    QVERIFY(list->viewport()->rect().contains(list->visualRect(last)));
    QCOMPARE(last.data().toString(), u"IMG_%1.jpg"_s.arg(failureCount - 1));
}

void TestContentView::overlayCoversTheWindowWhileRenaming()
{
    auto mover = std::make_shared<uitest::BlockingFileMover>();
    const auto releaseOnExit = qScopeGuard([&] { mover->release(); });
    m_vm->setFileMover(mover);
    m_vm->addFiles(uitest::createFiles(*m_files, {u"a.txt"_s}));
    m_vm->addRule(prefixRule(u"new_"_s));
    auto *overlay = m_view->findChild<ProgressOverlayView *>(u"progressOverlay"_s);
    auto *button = m_view->findChild<ProminentButton *>(u"renameButton"_s);
    QVERIFY(overlay);
    QVERIFY(!overlay->isVisible());

    m_view->confirmRename();
    answerAlert(u"Rename"_s);
    QTRY_VERIFY(m_vm->isRenaming());
    QVERIFY(overlay->isVisible());
    QCOMPARE(overlay->geometry(), m_view->rect());
    QCOMPARE(labelText(overlay, u"progressLabel"_s), u"Renaming files..."_s);
    QVERIFY(!m_view->findChild<QWidget *>(u"contentBody"_s)->isEnabled());
    QVERIFY(button->isBusy());
    QCOMPARE(button->text(), u"Renaming..."_s);
    QVERIFY(!button->isEnabled());
    uitest::saveScreenshot(m_view.get(), u"window-renaming"_s);

    // A click on a control under the overlay reaches the overlay, not the control.
    QCOMPARE(m_view->childAt(m_view->findChild<QWidget *>(u"undoButton"_s)->mapTo(m_view.get(), QPoint(4, 4))),
        overlay);

    // Whatever appears in the window meanwhile stays under the overlay: a widget added beside the content, and
    // the drop zone of a list emptied by the state object.
    auto *latecomer = new QLabel(u"latecomer"_s, m_view.get());
    latecomer->setGeometry(m_view->rect());
    latecomer->show();
    m_vm->clearFiles();
    QTest::qWait(0);
    for (const QPoint &point :
        {m_view->rect().center(), QPoint(10, 10), m_view->rect().bottomRight() - QPoint(10, 10)}) {
        QWidget *top = m_view->childAt(point);
        QVERIFY(top == overlay || overlay->isAncestorOf(top));
    }
    uitest::saveScreenshot(m_view.get(), u"window-renaming-emptied"_s);
    delete latecomer;

    mover->release();
    QTRY_VERIFY(!m_vm->isRenaming());
    QVERIFY(!overlay->isVisible());
    QVERIFY(!button->isBusy());
    QCOMPARE(button->text(), u"Rename"_s);
    QTRY_VERIFY(uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s));
}

void TestContentView::importPanelAddsClickedFilesAndFolders_data()
{
    QTest::addColumn<QFileDialog::ViewMode>("viewMode");
    QTest::addColumn<bool>("clickOpensItems");
    QTest::addColumn<QStringList>("clicked");
    QTest::newRow("a folder clicked in the detail view is added")
        << QFileDialog::Detail << false << QStringList{u"folder"_s};
    QTest::newRow("a file and a folder clicked together are both added")
        << QFileDialog::Detail << false << QStringList{u"a.txt"_s, u"folder"_s};
    QTest::newRow("a folder clicked in the list view is added")
        << QFileDialog::List << false << QStringList{u"folder"_s};
    QTest::newRow("where a click opens items, a clicked folder is added, not entered")
        << QFileDialog::Detail << true << QStringList{u"folder"_s};
    QTest::newRow("where a click opens items, a folder and a file clicked together are both added")
        << QFileDialog::List << true << QStringList{u"folder"_s, u"a.txt"_s};
}

void TestContentView::importPanelAddsClickedFilesAndFolders()
{
    QFETCH(QFileDialog::ViewMode, viewMode);
    QFETCH(bool, clickOpensItems);
    QFETCH(QStringList, clicked);
    const QString originalStyle = QApplication::style()->name();
    const QPalette originalPalette = QApplication::palette();
    const auto restoreStyle = qScopeGuard([&] {
        QApplication::setStyle(originalStyle);
        QApplication::setPalette(originalPalette);
    });
    if (clickOpensItems)
        QApplication::setStyle(new ClickOpensItemsStyle);
    uitest::createFiles(*m_files, {u"a.txt"_s, u"b.txt"_s});
    QVERIFY(QDir(m_files->path()).mkdir(u"folder"_s));

    bool wasAnswered = false;
    uitest::answerWhenShown<QFileDialog>(QString(DialogPanelProvider::openPanelName), [&](QFileDialog *dialog) {
        const auto closeOnExit = qScopeGuard([dialog] {
            if (dialog->isVisible())
                dialog->reject();
        });
        QCOMPARE(dialog->windowTitle(), u"Add Files & Folders"_s);
        dialog->setViewMode(viewMode);
        clickInPanel(dialog, m_files->path(), clicked);
        // The name field lists every chosen item, folders too.
        const QString names = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->text();
        for (const QString &name : std::as_const(clicked))
            QVERIFY2(names.contains(name), qPrintable(names));
        QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open), Qt::LeftButton);
        wasAnswered = dialog->result() == QDialog::Accepted;
    });
    QTest::mouseClick(m_view->findChild<QPushButton *>(u"topBarImportButton"_s), Qt::LeftButton);
    QVERIFY(wasAnswered);

    QStringList names;
    for (const FileItem &item : m_vm->files())
        names.append(item.originalName());
    names.sort();
    clicked.sort();
    QCOMPARE(names, clicked);
    for (const FileItem &item : m_vm->files())
        QCOMPARE(item.isDirectory, item.originalName() == u"folder"_s);
}

void TestContentView::importPanelReopensWhereTheLastImportWas()
{
    QTemporaryDir first;
    QTemporaryDir second;
    uitest::createFiles(first, {u"a.txt"_s});
    uitest::createFiles(second, {u"b.txt"_s});
    auto *importButton = m_view->findChild<QPushButton *>(u"topBarImportButton"_s);
    QString shownAt;
    const auto answer = [&](const std::function<void(QFileDialog *)> &act) {
        shownAt.clear();
        uitest::answerWhenShown<QFileDialog>(QString(DialogPanelProvider::openPanelName),
            [&, act](QFileDialog *dialog) {
                const auto closeOnExit = qScopeGuard([dialog] {
                    if (dialog->isVisible())
                        dialog->reject();
                });
                shownAt = dialog->directory().absolutePath();
                act(dialog);
            });
        QTest::mouseClick(importButton, Qt::LeftButton);
    };
    const auto open = [](QFileDialog *dialog) {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open), Qt::LeftButton);
    };

    answer([&](QFileDialog *dialog) {
        clickInPanel(dialog, first.path(), {u"a.txt"_s});
        open(dialog);
    });
    QCOMPARE(m_vm->files().size(), 1);
    // Browsing elsewhere and cancelling does not move the place the panel opens in.
    answer([&](QFileDialog *dialog) { clickInPanel(dialog, second.path(), {u"b.txt"_s}); });
    QCOMPARE(shownAt, QDir(first.path()).absolutePath());
    QCOMPARE(m_vm->files().size(), 1);
    answer([&](QFileDialog *dialog) {
        clickInPanel(dialog, second.path(), {u"b.txt"_s});
        open(dialog);
    });
    QCOMPARE(shownAt, QDir(first.path()).absolutePath());
    QCOMPARE(m_vm->files().size(), 2);
    answer([](QFileDialog *) {});
    QCOMPARE(shownAt, QDir(second.path()).absolutePath());
}

void TestContentView::screenshots_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void TestContentView::screenshots()
{
    QFETCH(bool, isDark);
    if (qEnvironmentVariableIsEmpty("QUILLFERN_SCREENSHOTS"))
        QSKIP("set QUILLFERN_SCREENSHOTS to a folder to save pictures of the window");
    const uitest::PaletteScope palette(isDark);
    // The window takes a new application palette on its next turn of the event loop.
    QTRY_COMPARE(m_view->palette().color(QPalette::Window), QApplication::palette().color(QPalette::Window));
    const QString suffix = isDark ? u"-dark"_s : u"-light"_s;

    uitest::saveScreenshot(m_view.get(), u"window-empty"_s + suffix);
    uitest::createFiles(*m_files, {u"notes.txt"_s});
    QVERIFY(QDir(m_files->path()).mkdir(u"Holiday Photos"_s));
    uitest::answerWhenShown<QFileDialog>(QString(DialogPanelProvider::openPanelName), [&](QFileDialog *dialog) {
        const auto closeOnExit = qScopeGuard([dialog] { dialog->reject(); });
        clickInPanel(dialog, m_files->path(), {u"Holiday Photos"_s, u"notes.txt"_s});
        uitest::saveScreenshot(dialog, u"import-folder-selected"_s + suffix);
    });
    QTest::mouseClick(m_view->findChild<QPushButton *>(u"topBarImportButton"_s), Qt::LeftButton);
    m_vm->addFiles(uitest::createFiles(*m_files,
        {u"holiday photo.jpg"_s,
            u"holiday photo.png"_s,
            u"notes.txt"_s,
            u"report final.pdf"_s,
            u"report draft.pdf"_s}));
    m_vm->addRule(prefixRule(u"2026_"_s));
    m_vm->addRule(sameExtensionRule());
    uitest::saveScreenshot(m_view.get(), u"window-files-rules"_s + suffix);

    m_view->confirmRename();
    QMessageBox *alert = waitForAlert();
    QVERIFY(alert);
    uitest::saveScreenshot(alert, u"alert"_s + suffix);
    answerAlert(u"Rename"_s);
    RenameResultView *sheet = nullptr;
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    uitest::saveScreenshot(sheet, u"result-some-failed"_s + suffix);
    m_vm->setShowRenameResult(false);

    m_vm->setFileMover(std::make_shared<SilentlyFailingMover>());
    m_vm->deselectAll();
    m_vm->setFileSelected(m_vm->files().constFirst().id, true);
    m_vm->removeRule({1});
    m_view->confirmRename();
    answerAlert(u"Rename"_s);
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    uitest::saveScreenshot(sheet, u"result-failed"_s + suffix);
    m_vm->setShowRenameResult(false);

    m_vm->setFileMover(std::make_shared<SystemFileMover>());
    m_view->confirmRename();
    answerAlert(u"Rename"_s);
    QTRY_VERIFY((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)));
    uitest::saveScreenshot(sheet, u"result-success"_s + suffix);
    uitest::saveScreenshot(m_view.get(), u"window-after-rename"_s + suffix);
    m_vm->setShowRenameResult(false);

    QList<NativePath> many;
    for (int index = 0; index < 20'000; ++index)
        many.append(NativePath::fromText(m_files->filePath(u"holiday photo %1.jpg"_s.arg(index))));
    m_vm->addFiles(many);
    m_vm->selectAll();
    m_vm->setFileMover(std::make_shared<FailingMover>(
        u"Permission denied: the folder does not let this user rename the items in it."_s));
    m_view->confirmRename();
    answerAlert(u"Rename"_s);
    QTRY_VERIFY_WITH_TIMEOUT((sheet = uitest::visibleTopLevel<RenameResultView>(u"renameResultView"_s)), 20'000);
    uitest::saveScreenshot(sheet, u"result-20000-failures"_s + suffix);
}

QTEST_MAIN(TestContentView)
#include "tst_contentview.moc"
