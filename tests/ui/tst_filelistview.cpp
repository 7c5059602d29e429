#include "../state/fakepanelprovider.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/actionmenu.h"
#include "ui/dropzoneview.h"
#include "ui/filelistview.h"
#include "ui/filemanagerreveal.h"
#include "ui/filetablemodel.h"
#include "ui/panelabel.h"
#include "uitesthelpers.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <fstream>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// The widget of this type and object name inside `parent`; the test fails hard when it is missing.
template<typename Widget>
Widget *child(const QObject *parent, const QString &name)
{
    auto *found = parent->findChild<Widget *>(name);
    if (!found)
        qFatal("no child named %s", qPrintable(name));
    return found;
}

/// Creates a file (or, for a name ending in "/", a folder) in `dir` and returns its location.
NativePath create(const QTemporaryDir &dir, const QString &name, const QByteArray &content = {})
{
    const QString path = dir.filePath(name);
    if (name.endsWith(u'/')) {
        QDir().mkpath(path);
        return NativePath::fromText(QDir(path).absolutePath());
    }
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot create %s", qPrintable(path));
    return NativePath::fromText(path);
}

/// A rule that deletes every digit, so "x1.txt" and "x2.txt" both become "x.txt".
RenameRule removeDigits()
{
    RenameRule rule(RuleType::Replace);
    rule.findText = u"[0-9]"_s;
    rule.useRegex = true;
    return rule;
}

QMimeData *urlData(const QList<QUrl> &urls)
{
    auto *data = new QMimeData;
    data->setUrls(urls);
    return data;
}

/// Delivers a whole drag and drop of `data` to `target`, as the window system would.
void drop(QWidget *target, const QMimeData *data)
{
    const QPoint position = target->rect().center();
    QDragEnterEvent enter(position, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent dropped(position, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropped);
}

QStringList actionTexts(const QMenu *menu)
{
    QStringList texts;
    for (const QAction *action : menu->actions())
        texts << (action->isSeparator() ? u"---"_s : action->text());
    return texts;
}

} // namespace

class TestFileListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void statusCountsFilesAndSelection_data();
    void statusCountsFilesAndSelection();
    void statusCountsAllFilesWhileFiltered();
    void statusShowsConflicts_data();
    void statusShowsConflicts();
    void typeColumnNamesTheKind_data();
    void typeColumnNamesTheKind();
    void tableShowsFilteredFilesInColumns();
    void onlyToggleTurnsTheOtherOff_data();
    void onlyToggleTurnsTheOtherOff();
    void optionsMenuHoldsItsCommandsInOrder();
    void optionsMenuCommandsAct_data();
    void optionsMenuCommandsAct();
    void includeSubfoldersToggleIsBound();
    void filterFieldIsBoundAndClearable();
    void sortPickerOffersEveryOrder();
    void importAndBrowseOpenThePanel_data();
    void importAndBrowseOpenThePanel();
    void dropZoneShowsOnlyWhileListIsEmpty();
    void droppedFilesAreAdded_data();
    void droppedFilesAreAdded();
    void droppedNameThatIsNotUtf8KeepsItsBytes();
    void dropWithoutUsableUrlAddsNothing_data();
    void dropWithoutUsableUrlAddsNothing();
    void dragHighlightsUntilItLeaves();
    void checkboxTogglesIsSelected();
    void tableSelectionIsBoundToSelectedFileIDs();
    void contextMenuWorksOnClickedRowOrSelection_data();
    void contextMenuWorksOnClickedRowOrSelection();
    void contextMenuRevealsFiles();
    void contextMenuOutsideRowsShowsNothing();
    void everyNameHasAnIconAndLinesUp_data();
    void everyNameHasAnIconAndLinesUp();
    void modelStaysConsistent();
    void screenshots();

private:
    /// Adds files named `names` from the temporary folder and lays the view out.
    QList<NativePath> addFiles(const QStringList &names);
    [[nodiscard]] QTableView *table() const { return child<QTableView>(m_view.get(), u"fileTable"_s); }
    [[nodiscard]] QString statusText() const { return child<PaneLabel>(m_view.get(), u"statusLabel"_s)->text(); }
    [[nodiscard]] int rowNamed(const QString &name) const;
    [[nodiscard]] QPoint rowCenter(int row) const;
    [[nodiscard]] QMenu *openContextMenuAt(int row);

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<AppViewModel> m_vm;
    std::unique_ptr<FileListView> m_view;
};

void TestFileListView::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_vm = std::make_unique<AppViewModel>();
    m_view = std::make_unique<FileListView>(m_vm.get());
    m_view->resize(640, 420);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void TestFileListView::cleanup()
{
    m_view.reset();
    m_vm.reset();
    m_dir.reset();
}

QList<NativePath> TestFileListView::addFiles(const QStringList &names)
{
    QList<NativePath> locations;
    for (const QString &name : names)
        locations << create(*m_dir, name, name.toUtf8());
    m_vm->addFiles(locations);
    return locations;
}

int TestFileListView::rowNamed(const QString &name) const
{
    const QAbstractItemModel *model = table()->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, FileTableModel::NameColumn).data() == name)
            return row;
    }
    return -1;
}

QPoint TestFileListView::rowCenter(int row) const
{
    return table()->visualRect(table()->model()->index(row, FileTableModel::NameColumn)).center();
}

QMenu *TestFileListView::openContextMenuAt(int row)
{
    const QPoint position = row < 0 ? QPoint(5, table()->viewport()->height() - 5) : rowCenter(row);
    Q_EMIT table()->customContextMenuRequested(position);
    return table()->findChild<QMenu *>(u"fileContextMenu"_s);
}

void TestFileListView::statusCountsFilesAndSelection_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("selected");
    QTest::addColumn<QString>("status");
    QTest::newRow("an empty list counts zero files") << QStringList() << 0 << u"0 files · 0 selected"_s;
    QTest::newRow("one file reads in the singular") << QStringList{u"a.txt"_s} << 0 << u"1 file · 0 selected"_s;
    QTest::newRow("two files, one selected") << QStringList{u"a.txt"_s, u"b.txt"_s} << 1 << u"2 files · 1 selected"_s;
    QTest::newRow("every added file starts selected")
        << QStringList{u"a.txt"_s, u"b.txt"_s, u"c.txt"_s} << 3 << u"3 files · 3 selected"_s;
}

void TestFileListView::statusCountsFilesAndSelection()
{
    QFETCH(QStringList, names);
    QFETCH(int, selected);
    QFETCH(QString, status);
    addFiles(names);
    m_vm->deselectAll();
    for (int index = 0; index < selected; ++index)
        m_vm->setFileSelected(m_vm->files().at(index).id, true);
    QCOMPARE(statusText(), status);
}

void TestFileListView::statusCountsAllFilesWhileFiltered()
{
    addFiles({u"apple.txt"_s, u"banana.txt"_s, u"cherry.txt"_s});
    QTest::keyClicks(child<QLineEdit>(m_view.get(), u"filterField"_s), u"APPLE"_s);
    QCOMPARE(table()->model()->rowCount(), 1);
    QCOMPARE(statusText(), u"3 files · 3 selected"_s);
}

void TestFileListView::statusShowsConflicts_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("conflicts");
    QTest::newRow("no clash hides the conflict label") << QStringList{u"x1.txt"_s, u"y1.txt"_s} << QString();
    QTest::newRow("one clash reads in the singular") << QStringList{u"x1.txt"_s, u"x2.txt"_s} << u"1 conflict"_s;
    QTest::newRow("two clashes read in the plural")
        << QStringList{u"x1.txt"_s, u"x2.txt"_s, u"x3.txt"_s} << u"2 conflicts"_s;
}

void TestFileListView::statusShowsConflicts()
{
    QFETCH(QStringList, names);
    QFETCH(QString, conflicts);
    addFiles(names);
    m_vm->addRule(removeDigits());
    const auto *label = child<PaneLabel>(m_view.get(), u"conflictLabel"_s);
    QCOMPARE(label->isVisible(), !conflicts.isEmpty());
    if (!conflicts.isEmpty()) {
        QCOMPARE(label->text(), conflicts);
        QCOMPARE(label->symbolName(), u"exclamationmark.triangle.fill"_s);
    }
}

void TestFileListView::typeColumnNamesTheKind_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("type");
    QTest::newRow("a file without extension shows File") << u"README"_s << u"File"_s;
    QTest::newRow("an extension shows in upper case") << u"photo.jpeg"_s << u"JPEG"_s;
    QTest::newRow("a folder shows Folder, even with a dot in its name") << u"album.2024/"_s << u"Folder"_s;
    QTest::newRow("a hidden file has no extension") << u".bashrc"_s << u"File"_s;
}

void TestFileListView::typeColumnNamesTheKind()
{
    QFETCH(QString, name);
    QFETCH(QString, type);
    m_vm->addFiles({create(*m_dir, name)});
    QCOMPARE(table()->model()->index(0, FileTableModel::TypeColumn).data().toString(), type);
}

void TestFileListView::tableShowsFilteredFilesInColumns()
{
    addFiles({u"b.txt"_s, u"a.txt"_s});
    const QAbstractItemModel *model = table()->model();
    QCOMPARE(model->columnCount(), 5);
    QStringList titles;
    for (int column = 0; column < model->columnCount(); ++column)
        titles << model->headerData(column, Qt::Horizontal).toString();
    QCOMPARE(titles, (QStringList{QString(), u"Name"_s, u"Size"_s, u"Modified"_s, u"Type"_s}));
    // Sorted by name, as filteredFiles orders them.
    QCOMPARE(model->index(0, FileTableModel::NameColumn).data().toString(), u"a.txt"_s);
    QCOMPARE(model->index(1, FileTableModel::NameColumn).data().toString(), u"b.txt"_s);
    QCOMPARE(model->index(0, FileTableModel::SizeColumn).data().toString(), m_vm->filteredFiles()[0].fileSizeString());
    QCOMPARE(model->index(0, FileTableModel::ModifiedColumn).data().toString(),
        m_vm->filteredFiles()[0].modifiedDateString());
    QVERIFY(!model->index(0, FileTableModel::NameColumn).data(Qt::DecorationRole).value<QIcon>().isNull());
    QCOMPARE(table()->horizontalHeader()->sectionSize(FileTableModel::SelectedColumn), 24);
    QCOMPARE(table()->horizontalHeader()->sectionSize(FileTableModel::SizeColumn), 70);
    QCOMPARE(table()->horizontalHeader()->sectionSize(FileTableModel::ModifiedColumn), 120);
    QCOMPARE(table()->horizontalHeader()->sectionSize(FileTableModel::TypeColumn), 60);
    // The name column fills the rest of the width, and keeps 120 in the narrowest pane, which scrolls instead.
    const QHeaderView *columns = table()->horizontalHeader();
    QCOMPARE(columns->length(), table()->viewport()->width());
    m_view->resize(340, m_view->height());
    QCOMPARE(m_view->width(), 340);
    QCOMPARE(columns->sectionSize(FileTableModel::NameColumn), 120);
    QVERIFY(table()->horizontalScrollBar()->maximum() > 0);
}

void TestFileListView::onlyToggleTurnsTheOtherOff_data()
{
    QTest::addColumn<QString>("turnedOn");
    QTest::addColumn<QString>("turnedOff");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("files only turns folders only off")
        << u"filesOnlyAction"_s << u"foldersOnlyAction"_s << QStringList{u"file.txt"_s};
    QTest::newRow("folders only turns files only off")
        << u"foldersOnlyAction"_s << u"filesOnlyAction"_s << QStringList{u"folder"_s};
}

void TestFileListView::onlyToggleTurnsTheOtherOff()
{
    QFETCH(QString, turnedOn);
    QFETCH(QString, turnedOff);
    QFETCH(QStringList, shown);
    m_vm->addFiles({create(*m_dir, u"file.txt"_s), create(*m_dir, u"folder/"_s)});
    auto *on = child<QAction>(m_view.get(), turnedOn);
    auto *off = child<QAction>(m_view.get(), turnedOff);
    off->trigger();
    QVERIFY(off->isChecked());
    on->trigger();
    QVERIFY(on->isChecked());
    QVERIFY(!off->isChecked());
    QCOMPARE(m_vm->showOnlyFiles(), turnedOn == u"filesOnlyAction"_s);
    QCOMPARE(m_vm->showOnlyFolders(), turnedOn == u"foldersOnlyAction"_s);
    // The preview follows the table.
    QStringList previewed;
    for (const PreviewEntry &entry : m_vm->previews())
        previewed << entry.original;
    QCOMPARE(previewed, shown);
    QCOMPARE(table()->model()->rowCount(), 1);

    on->trigger();
    QVERIFY(!m_vm->showOnlyFiles() && !m_vm->showOnlyFolders());
    QCOMPARE(m_vm->previews().size(), 2);
}

void TestFileListView::optionsMenuHoldsItsCommandsInOrder()
{
    const auto *menu = child<QToolButton>(m_view.get(), u"optionsButton"_s)->menu();
    QCOMPARE(actionTexts(menu),
        (QStringList{u"Include Subfolders"_s,
            u"---"_s,
            u"Files Only"_s,
            u"Folders Only"_s,
            u"---"_s,
            u"Select All"_s,
            u"Deselect All"_s,
            u"Invert Selection"_s,
            u"---"_s,
            u"Clear List"_s}));
    for (const QAction *action : menu->actions())
        QCOMPARE(ActionMenu::isDestructive(action), action->text() == u"Clear List"_s);
}

void TestFileListView::optionsMenuCommandsAct_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("status");
    QTest::newRow("select all selects every file") << u"selectAllAction"_s << u"3 files · 3 selected"_s;
    QTest::newRow("deselect all clears every flag") << u"deselectAllAction"_s << u"3 files · 0 selected"_s;
    QTest::newRow("invert selection flips every flag") << u"invertSelectionAction"_s << u"3 files · 2 selected"_s;
    QTest::newRow("clear list empties the list") << u"clearListAction"_s << u"0 files · 0 selected"_s;
}

void TestFileListView::optionsMenuCommandsAct()
{
    QFETCH(QString, action);
    QFETCH(QString, status);
    addFiles({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s});
    m_vm->setFileSelected(m_vm->files().at(0).id, false);
    m_vm->setFileSelected(m_vm->files().at(1).id, false);
    child<QAction>(m_view.get(), action)->trigger();
    QCOMPARE(statusText(), status);
}

void TestFileListView::includeSubfoldersToggleIsBound()
{
    auto *toggle = child<QAction>(m_view.get(), u"includeSubfoldersAction"_s);
    toggle->trigger();
    QVERIFY(m_vm->includeSubfolders());
    m_vm->setIncludeSubfolders(false);
    QVERIFY(!toggle->isChecked());
}

void TestFileListView::filterFieldIsBoundAndClearable()
{
    addFiles({u"apple.txt"_s, u"banana.txt"_s});
    auto *field = child<QLineEdit>(m_view.get(), u"filterField"_s);
    auto *clear = child<QToolButton>(m_view.get(), u"clearFilterButton"_s);
    QCOMPARE(field->placeholderText(), u"Filter files..."_s);
    QVERIFY(!clear->isVisible());

    QTest::keyClicks(field, u"ban"_s);
    QCOMPARE(m_vm->filterText(), u"ban"_s);
    QVERIFY(clear->isVisible());
    QCOMPARE(m_vm->previews().size(), 1);

    QTest::mouseClick(clear, Qt::LeftButton);
    QCOMPARE(m_vm->filterText(), QString());
    QCOMPARE(field->text(), QString());
    QVERIFY(!clear->isVisible());
    QCOMPARE(m_vm->previews().size(), 2);

    m_vm->setFilterText(u"app"_s);
    QCOMPARE(field->text(), u"app"_s);
    QCOMPARE(table()->model()->rowCount(), 1);
}

void TestFileListView::sortPickerOffersEveryOrder()
{
    // Each file holds its own name: by name "a.txt" comes first, by size the longer name does.
    addFiles({u"a.txt"_s, u"bigger-file.txt"_s});
    auto *picker = child<QComboBox>(m_view.get(), u"sortPicker"_s);
    QStringList entries;
    for (int index = 0; index < picker->count(); ++index)
        entries << picker->itemText(index);
    QCOMPARE(entries, (QStringList{u"Name"_s, u"Date Modified"_s, u"Size"_s, u"Type"_s}));
    QCOMPARE(picker->width(), 110);

    picker->setCurrentIndex(2);
    Q_EMIT picker->activated(2);
    QCOMPARE(m_vm->sortOrder(), AppViewModel::SortOrder::Size);
    QCOMPARE(m_vm->previews().first().original, u"bigger-file.txt"_s);
    QCOMPARE(table()->model()->index(0, FileTableModel::NameColumn).data().toString(), u"bigger-file.txt"_s);

    m_vm->setSortOrder(AppViewModel::SortOrder::Type);
    QCOMPARE(picker->currentText(), u"Type"_s);
}

void TestFileListView::importAndBrowseOpenThePanel_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("the toolbar's import button") << u"importButton"_s;
    QTest::newRow("the drop zone's browse button") << u"browseButton"_s;
}

void TestFileListView::importAndBrowseOpenThePanel()
{
    QFETCH(QString, button);
    FakePanelProvider panels;
    panels.openAnswer = QList<NativePath>{create(*m_dir, u"chosen.txt"_s)};
    m_vm->setPanelProvider(&panels);
    QTest::mouseClick(child<QPushButton>(m_view.get(), button), Qt::LeftButton);
    QCOMPARE(panels.openTitles, QStringList{u"Add Files & Folders"_s});
    QCOMPARE(m_vm->files().size(), 1);
    m_vm->setPanelProvider(nullptr);
}

void TestFileListView::dropZoneShowsOnlyWhileListIsEmpty()
{
    auto *dropZone = child<DropZoneView>(m_view.get(), u"dropZone"_s);
    QVERIFY(dropZone->isVisible());
    QVERIFY(!table()->isVisible());
    addFiles({u"a.txt"_s});
    QVERIFY(!dropZone->isVisible());
    QVERIFY(table()->isVisible());
    child<QAction>(m_view.get(), u"clearListAction"_s)->trigger();
    QVERIFY(dropZone->isVisible());
    QVERIFY(!table()->isVisible());
}

void TestFileListView::droppedFilesAreAdded_data()
{
    QTest::addColumn<bool>("ontoTable");
    QTest::newRow("onto the drop zone of an empty list") << false;
    QTest::newRow("onto the table of a list with files") << true;
}

void TestFileListView::droppedFilesAreAdded()
{
    QFETCH(bool, ontoTable);
    if (ontoTable)
        addFiles({u"existing.txt"_s});
    const NativePath file = create(*m_dir, u"dropped file.txt"_s);
    const NativePath folder = create(*m_dir, u"dropped folder/"_s);
    std::unique_ptr<QMimeData> data(
        urlData({QUrl::fromLocalFile(file.toText()), QUrl::fromLocalFile(folder.toText())}));
    QWidget *target = ontoTable ? table()->viewport() : child<DropZoneView>(m_view.get(), u"dropZone"_s);
    drop(target, data.get());

    QStringList names;
    for (const FileItem &item : m_vm->files())
        names << item.originalName();
    QStringList expected{u"dropped file.txt"_s, u"dropped folder"_s};
    if (ontoTable)
        expected.prepend(u"existing.txt"_s);
    QCOMPARE(names, expected);
    QVERIFY(m_vm->files().last().isDirectory);
    QVERIFY(!m_view->isDropTargeted());
    QVERIFY(table()->isVisible());
}

void TestFileListView::droppedNameThatIsNotUtf8KeepsItsBytes()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    const std::string folder = QFile::encodeName(m_dir->path()).toStdString();
    std::ofstream(folder + "/caf\xe9.txt") << "x";
    const QByteArray encodedFolder = QUrl::fromLocalFile(m_dir->path()).toEncoded();
    std::unique_ptr<QMimeData> data(urlData({QUrl::fromEncoded(encodedFolder + "/caf%E9.txt")}));
    drop(child<DropZoneView>(m_view.get(), u"dropZone"_s), data.get());
    QCOMPARE(m_vm->files().size(), 1);
    QCOMPARE(m_vm->files().first().url.native().toStdString(), folder + "/caf\xe9.txt");
    QVERIFY(fs::exists(m_vm->files().first().url.toStdPath()));
    // QTemporaryDir cannot remove a name it cannot decode.
    fs::remove(m_vm->files().first().url.toStdPath());
#endif
}

void TestFileListView::dropWithoutUsableUrlAddsNothing_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QString>("text");
    QTest::newRow("a web address is not a file") << QList<QUrl>{QUrl(u"https://example.com/a.txt"_s)} << QString();
    QTest::newRow("plain text carries no file URL") << QList<QUrl>() << u"/tmp/a.txt"_s;
}

void TestFileListView::dropWithoutUsableUrlAddsNothing()
{
    QFETCH(QList<QUrl>, urls);
    QFETCH(QString, text);
    // Setting even an empty URL list would announce URLs, so a text-only drag gets none.
    auto data = std::make_unique<QMimeData>();
    if (!urls.isEmpty())
        data->setUrls(urls);
    if (!text.isEmpty())
        data->setText(text);
    QSignalSpy filesChanged(m_vm.get(), &AppViewModel::filesChanged);
    drop(child<DropZoneView>(m_view.get(), u"dropZone"_s), data.get());
    QVERIFY(m_vm->files().isEmpty());
    QCOMPARE(filesChanged.size(), 0);
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    QVERIFY(!m_view->isDropTargeted());
}

void TestFileListView::dragHighlightsUntilItLeaves()
{
    auto *dropZone = child<DropZoneView>(m_view.get(), u"dropZone"_s);
    std::unique_ptr<QMimeData> data(urlData({QUrl::fromLocalFile(m_dir->filePath(u"x"_s))}));
    QDragEnterEvent enter(dropZone->rect().center(), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(dropZone, &enter);
    QVERIFY(enter.isAccepted());
    QVERIFY(m_view->isDropTargeted());
    QVERIFY(dropZone->isTargeted());
    QTRY_COMPARE(dropZone->highlight(), 1.0);

    QDragLeaveEvent leave;
    QApplication::sendEvent(dropZone, &leave);
    QVERIFY(!m_view->isDropTargeted());
    QVERIFY(!dropZone->isTargeted());
    QTRY_COMPARE(dropZone->highlight(), 0.0);
    QVERIFY(m_vm->files().isEmpty());
}

void TestFileListView::checkboxTogglesIsSelected()
{
    addFiles({u"a.txt"_s, u"b.txt"_s});
    const QModelIndex box = table()->model()->index(rowNamed(u"b.txt"_s), FileTableModel::SelectedColumn);
    QCOMPARE(box.data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Checked);

    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, table()->visualRect(box).center());
    QVERIFY(!m_vm->files().at(1).isSelected);
    QVERIFY(m_vm->files().at(0).isSelected);
    QCOMPARE(box.data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Unchecked);
    QCOMPARE(statusText(), u"2 files · 1 selected"_s);

    table()->setCurrentIndex(box);
    QTest::keyClick(table(), Qt::Key_Space);
    QVERIFY(m_vm->files().at(1).isSelected);

    // The state object's own operations show in the boxes.
    m_vm->deselectAll();
    QCOMPARE(box.data(Qt::CheckStateRole).value<Qt::CheckState>(), Qt::Unchecked);
}

void TestFileListView::tableSelectionIsBoundToSelectedFileIDs()
{
    addFiles({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s});
    const QUuid a = m_vm->filteredFiles().at(0).id;
    const QUuid c = m_vm->filteredFiles().at(2).id;
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, rowCenter(0));
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::ControlModifier, rowCenter(2));
    QCOMPARE(m_vm->selectedFileIDs(), (QSet<QUuid>{a, c}));
    // The row highlight is not the selection flag.
    QCOMPARE(m_vm->selectedCount(), 3);

    m_vm->setSelectedFileIDs({m_vm->filteredFiles().at(1).id});
    QCOMPARE(table()->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(table()->selectionModel()->selectedRows().first().row(), 1);

    // A new filter rebuilds the rows; the highlight stays on the same file.
    m_vm->setFilterText(u"b"_s);
    QCOMPARE(table()->selectionModel()->selectedRows().size(), 1);
    QCOMPARE(table()->selectionModel()->selectedRows().first().row(), 0);
}

void TestFileListView::contextMenuWorksOnClickedRowOrSelection_data()
{
    QTest::addColumn<QString>("clicked");
    QTest::addColumn<QStringList>("remaining");
    QTest::newRow("a row outside the selection is removed alone") << u"c.txt"_s << QStringList{u"a.txt"_s, u"b.txt"_s};
    QTest::newRow("a row inside the selection removes the whole selection") << u"b.txt"_s << QStringList{u"c.txt"_s};
}

void TestFileListView::contextMenuWorksOnClickedRowOrSelection()
{
    QFETCH(QString, clicked);
    QFETCH(QStringList, remaining);
    addFiles({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s});
    m_vm->setSelectedFileIDs({m_vm->files().at(0).id, m_vm->files().at(1).id});
    QMenu *menu = openContextMenuAt(rowNamed(clicked));
    QVERIFY(menu);
    QCOMPARE(actionTexts(menu), (QStringList{u"Remove from List"_s, u"---"_s, FileManagerReveal::actionTitle()}));
    child<QAction>(menu, u"removeFromListAction"_s)->trigger();
    menu->close();

    QStringList names;
    for (const FileItem &item : m_vm->files())
        names << item.originalName();
    QCOMPARE(names, remaining);
    QCOMPARE(m_vm->previews().size(), remaining.size());
}

void TestFileListView::contextMenuRevealsFiles()
{
    const QList<NativePath> locations = addFiles({u"a.txt"_s, u"b.txt"_s, u"c.txt"_s});
    QList<NativePath> revealed;
    m_view->setRevealFunction([&](const QList<NativePath> &shown) { revealed = shown; });
    m_vm->setSelectedFileIDs({m_vm->files().at(0).id, m_vm->files().at(2).id});
    QMenu *menu = openContextMenuAt(rowNamed(u"c.txt"_s));
    QVERIFY(menu);
    child<QAction>(menu, u"revealAction"_s)->trigger();
    menu->close();
    QCOMPARE(revealed, (QList<NativePath>{locations[0], locations[2]}));
    QCOMPARE(m_vm->files().size(), 3);
}

void TestFileListView::contextMenuOutsideRowsShowsNothing()
{
    addFiles({u"a.txt"_s});
    QVERIFY(!table()->indexAt(QPoint(5, table()->viewport()->height() - 5)).isValid());
    QCOMPARE(openContextMenuAt(-1), nullptr);
}

void TestFileListView::everyNameHasAnIconAndLinesUp_data()
{
    QTest::addColumn<QStringList>("gone");
    QTest::addColumn<bool>("goneByRename");
    QTest::addColumn<QStringList>("onDisk");
    QTest::newRow("a mistyped file before real files of its kind")
        << QStringList{u"a-ghost.txt"_s} << false << QStringList{u"b-notes.txt"_s, u"c-todo.txt"_s};
    QTest::newRow("mistyped files of two kinds among real ones")
        << QStringList{u"a.jpeg"_s, u"b.pdf"_s} << false << QStringList{u"c.jpeg"_s, u"d.pdf"_s, u"e.txt"_s};
    QTest::newRow("the list after an undo, then a real file and folder of the same kinds")
        << QStringList{u"a-album/"_s, u"a-notes.txt"_s} << true << QStringList{u"b-album/"_s, u"b-notes.txt"_s};
}

void TestFileListView::everyNameHasAnIconAndLinesUp()
{
    QFETCH(QStringList, gone);
    QFETCH(bool, goneByRename);
    QFETCH(QStringList, onDisk);
    // Items whose locations are not on disk come first, as a mistyped path or the list after an undo brings them.
    if (goneByRename) {
        // Hidden, so the table looks up no icon before the undo.
        m_view->hide();
        for (const QString &name : gone)
            m_vm->addFiles({create(*m_dir, name)});
        RenameRule prefix(RuleType::Insert);
        prefix.insertText = u"renamed_"_s;
        m_vm->addRule(prefix);
        m_vm->performRename();
        QTRY_VERIFY(!m_vm->isRenaming());
        m_vm->undoRename();
        m_vm->removeRule({0});
        m_view->show();
    } else {
        QList<NativePath> locations;
        for (const QString &name : gone)
            locations.append(NativePath::fromText(m_dir->filePath(name)));
        m_vm->addFiles(locations);
    }
    for (const FileItem &item : m_vm->files())
        QVERIFY(!QFileInfo::exists(item.url.toText()));
    for (const QString &name : onDisk)
        m_vm->addFiles({create(*m_dir, name)});
    QCOMPARE(table()->model()->rowCount(), gone.size() + onDisk.size());

    // Where the table's delegate puts each name: after the icon, at the same place in every row.
    struct Delegate : QStyledItemDelegate
    {
        using QStyledItemDelegate::initStyleOption;
    } delegate;
    QList<int> textStarts;
    for (int row = 0; row < table()->model()->rowCount(); ++row) {
        const QModelIndex name = table()->model()->index(row, FileTableModel::NameColumn);
        const auto icon = name.data(Qt::DecorationRole).value<QIcon>();
        QVERIFY2(!icon.isNull(), qPrintable(name.data().toString()));
        QCOMPARE(icon.actualSize(table()->iconSize()), table()->iconSize());
        QStyleOptionViewItem option;
        option.initFrom(table()->viewport());
        option.rect = table()->visualRect(name);
        option.decorationSize = table()->iconSize();
        option.features |= QStyleOptionViewItem::HasDisplay;
        delegate.initStyleOption(&option, name);
        textStarts.append(table()->style()->subElementRect(QStyle::SE_ItemViewItemText, &option, table()).left());
    }
    QCOMPARE(textStarts.count(textStarts.constFirst()), textStarts.size());
    uitest::saveScreenshot(m_view.get(), u"filelist-missing-files"_s);
}

void TestFileListView::modelStaysConsistent()
{
    QAbstractItemModelTester tester(table()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    addFiles({u"a.txt"_s, u"b.jpeg"_s, u"c"_s});
    m_vm->addFiles({create(*m_dir, u"folder/"_s)});
    m_vm->setFilterText(u"b"_s);
    m_vm->setFilterText({});
    m_vm->setSortOrder(AppViewModel::SortOrder::Type);
    m_vm->invertSelection();
    m_vm->setShowOnlyFolders(true);
    m_vm->setShowOnlyFolders(false);
    m_vm->removeFiles({m_vm->files().first()});
    QCOMPARE(table()->model()->rowCount(), 3);
    m_vm->clearFiles();
    QCOMPARE(table()->model()->rowCount(), 0);
}

void TestFileListView::screenshots()
{
    const QString folder = qEnvironmentVariable("QUILLFERN_SCREENSHOTS");
    if (folder.isEmpty())
        QSKIP("set QUILLFERN_SCREENSHOTS to a folder to save screenshots");
    QDir().mkpath(folder);
    const QPalette light = QApplication::palette();
    const QPalette dark = uitest::darkPalette();

    for (const auto &[appearance, palette] : {std::pair{u"light"_s, light}, {u"dark"_s, dark}}) {
        QApplication::setPalette(palette);
        cleanup();
        init();
        auto save = [&](const QString &name) {
            QVERIFY(m_view->grab().save(folder + u"/filelist-"_s + name + u'-' + appearance + u".png"_s));
        };
        save(u"empty"_s);

        auto *dropZone = child<DropZoneView>(m_view.get(), u"dropZone"_s);
        std::unique_ptr<QMimeData> data(urlData({QUrl::fromLocalFile(m_dir->filePath(u"x"_s))}));
        QDragEnterEvent enter(dropZone->rect().center(), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(dropZone, &enter);
        QTRY_COMPARE(dropZone->highlight(), 1.0);
        save(u"drop-highlighted"_s);
        QDragLeaveEvent leave;
        QApplication::sendEvent(dropZone, &leave);

        m_vm->addFiles({create(*m_dir, u"Holiday Photos/"_s),
            create(*m_dir, u"Scans 2024/"_s),
            create(*m_dir, u"report1.pdf"_s, QByteArray(48'000, 'x')),
            create(*m_dir, u"report2.pdf"_s, QByteArray(1'500'000, 'x')),
            create(*m_dir, u"photo_001.jpeg"_s, QByteArray(2'400'000, 'x')),
            create(*m_dir, u"photo_002.jpeg"_s, QByteArray(2'100'000, 'x')),
            create(*m_dir, u"README"_s),
            create(*m_dir, u"notes.txt"_s, QByteArray(900, 'x'))});
        m_vm->addRule(removeDigits());
        m_vm->setFileSelected(m_vm->files().at(6).id, false);
        m_vm->setSelectedFileIDs({m_vm->filteredFiles().at(2).id, m_vm->filteredFiles().at(3).id});
        save(u"mixed-conflicts"_s);

        child<QComboBox>(m_view.get(), u"sortPicker"_s)->setCurrentIndex(2);
        Q_EMIT child<QComboBox>(m_view.get(), u"sortPicker"_s)->activated(2);
        QTest::keyClicks(child<QLineEdit>(m_view.get(), u"filterField"_s), u"PHOTO"_s);
        save(u"filtered-sorted"_s);
        m_view->resize(m_view->minimumSizeHint().width(), m_view->height());
        QTRY_VERIFY(table()->horizontalScrollBar()->isVisible());
        save(u"narrowest"_s);

        QMenu *options = child<QToolButton>(m_view.get(), u"optionsButton"_s)->menu();
        options->popup(m_view->mapToGlobal(QPoint(400, 40)));
        QVERIFY(options->grab().save(folder + u"/filelist-options-menu-"_s + appearance + u".png"_s));
        options->close();
        QMenu *context = openContextMenuAt(0);
        QVERIFY(context);
        QVERIFY(context->grab().save(folder + u"/filelist-context-menu-"_s + appearance + u".png"_s));
        context->close();
    }
    QApplication::setPalette(light);
}

QTEST_MAIN(TestFileListView)
#include "tst_filelistview.moc"
