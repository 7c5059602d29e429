#include "engine/filemover.h"
#include "engine/systemfilemover.h"
#include "state/appviewmodel.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <fstream>
#include <mutex>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

QStringList previewNames(const AppViewModel &vm)
{
    QStringList result;
    for (const PreviewEntry &entry : vm.previews())
        result << entry.preview;
    return result;
}

RenameRule insertAtEnd(const QString &text)
{
    RenameRule rule(RuleType::Insert);
    rule.insertPosition = InsertPosition::End;
    rule.insertText = text;
    return rule;
}

/// Moves for real and records the thread of each move.
class RecordingMover final : public FileMover
{
public:
    std::optional<MoveError> move(const NativePath &from, const NativePath &to) override
    {
        {
            const std::lock_guard lock(m_mutex);
            threads.append(QThread::currentThread());
        }
        return m_system.move(from, to);
    }
    bool isSameItem(const NativePath &first, const NativePath &second) override
    {
        return m_system.isSameItem(first, second);
    }
    bool exists(const NativePath &path) override { return m_system.exists(path); }
    std::optional<ItemIdentity> identity(const NativePath &path) override { return m_system.identity(path); }

    QList<QThread *> threads;

private:
    SystemFileMover m_system;
    std::mutex m_mutex;
};

} // namespace

class TestRenameFlow final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void addRuleAppendsAndRefreshesPreviews();
    void removeRuleAtOffsets();
    void moveRuleExamples_data();
    void moveRuleExamples();
    void updateRuleReplacesByIdOrDoesNothing();
    void disabledRuleHasNoEffect();
    void previewsFollowFilterAndSort();
    void renameRunsOnAWorkerAndFinishesOnTheMainThread();
    void secondRenameWhileRunningIsDropped();
    void largeBatchIsNamedOnEveryCoreFromTheWorker();
    void renameWithNothingSelected();
    void hiddenSelectedItemIsRenamed();
    void renamedItemsAreFreshAndFailedOnesKeepTheirIds();
    void onlyTheFirstOfTwoItemsWithOneUrlIsReplaced();
    void undoRestoresTheListAndLeavesTheDisk();
    void newRenameAfterUndoEmptiesRedo();
    void undoAndRedoOnEmptyStacksDoNothing();
    void folderAndItsContentsAreRenamedTogether();
    void swappedNamesAreRenamed();
    void eachRenameIsJournaledInTheHistoryFolder();
    void anUnwritableHistoryRenamesNothing();

private:
    QTemporaryDir m_stateHome;
};

void TestRenameFlow::initTestCase()
{
    // Renames keep their journals in the standard history folder: here, never in a real home.
    QVERIFY(m_stateHome.isValid());
    qputenv("XDG_STATE_HOME", QFile::encodeName(m_stateHome.path()));
}

void TestRenameFlow::addRuleAppendsAndRefreshesPreviews()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    QSignalSpy rulesSpy(&vm, &AppViewModel::rulesChanged);
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.addRule(insertAtEnd(u"1"_s));
    vm.addRule(insertAtEnd(u"2"_s));
    QCOMPARE(vm.rules().size(), 2);
    QCOMPARE(vm.rules().last().insertText, u"2"_s);
    QCOMPARE(previewNames(vm), QStringList{u"a12.txt"_s});
    QCOMPARE(rulesSpy.count(), 2);
    QCOMPARE(previewsSpy.count(), 2);
}

void TestRenameFlow::removeRuleAtOffsets()
{
    AppViewModel vm;
    for (const QString &text : {u"A"_s, u"B"_s, u"C"_s, u"D"_s})
        vm.addRule(insertAtEnd(text));
    vm.removeRule({0, 2});
    QCOMPARE(vm.rules().size(), 2);
    QCOMPARE(vm.rules()[0].insertText, u"B"_s);
    QCOMPARE(vm.rules()[1].insertText, u"D"_s);
}

void TestRenameFlow::moveRuleExamples_data()
{
    QTest::addColumn<QList<qsizetype>>("offsets");
    QTest::addColumn<qsizetype>("destination");
    QTest::addColumn<QString>("order");
    QTest::newRow("first to before the last") << QList<qsizetype>{0} << qsizetype(3) << u"BCAD"_s;
    QTest::newRow("last to the front") << QList<qsizetype>{3} << qsizetype(0) << u"DABC"_s;
    QTest::newRow("onto itself") << QList<qsizetype>{1} << qsizetype(1) << u"ABCD"_s;
    QTest::newRow("just after itself") << QList<qsizetype>{1} << qsizetype(2) << u"ABCD"_s;
    QTest::newRow("to the end") << QList<qsizetype>{0} << qsizetype(4) << u"BCDA"_s;
    QTest::newRow("two keep their order") << QList<qsizetype>{2, 0} << qsizetype(4) << u"BDAC"_s;
}

void TestRenameFlow::moveRuleExamples()
{
    QFETCH(QList<qsizetype>, offsets);
    QFETCH(qsizetype, destination);
    QFETCH(QString, order);
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"x"_s)});
    for (const QString &text : {u"A"_s, u"B"_s, u"C"_s, u"D"_s})
        vm.addRule(insertAtEnd(text));
    vm.moveRule(QSet<qsizetype>(offsets.cbegin(), offsets.cend()), destination);
    QString actual;
    for (const RenameRule &rule : vm.rules())
        actual += rule.insertText;
    QCOMPARE(actual, order);
    QCOMPARE(previewNames(vm), QStringList{u"x"_s + order});
}

void TestRenameFlow::updateRuleReplacesByIdOrDoesNothing()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"1"_s));
    RenameRule edited = vm.rules().first();
    edited.insertText = u"-edited"_s;
    vm.updateRule(edited);
    QCOMPARE(previewNames(vm), QStringList{u"a-edited.txt"_s});

    QSignalSpy rulesSpy(&vm, &AppViewModel::rulesChanged);
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.updateRule(insertAtEnd(u"unknown"_s));
    QCOMPARE(rulesSpy.count(), 0);
    QCOMPARE(previewsSpy.count(), 0);
    QCOMPARE(vm.rules().size(), 1);
}

void TestRenameFlow::disabledRuleHasNoEffect()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    RenameRule rule = insertAtEnd(u"X"_s);
    rule.isEnabled = false;
    vm.addRule(rule);
    QCOMPARE(previewNames(vm), QStringList{u"a.txt"_s});
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QVERIFY(vm.lastRenameResults().isEmpty());
    QVERIFY(files.exists(u"a.txt"_s));
}

void TestRenameFlow::largeBatchIsNamedOnEveryCoreFromTheWorker()
{
    // Enough files for the new names to be computed on several threads, started from the pool's own worker.
    constexpr int count = 6000;
    TestFiles files;
    const NativePath folder = files.folder(u"many"_s);
    for (int i = 0; i < count; ++i)
        std::ofstream((folder / NativePath::fromText(u"f%1.txt"_s.arg(i, 4, 10, QChar(u'0')))).toStdPath());
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    vm.addFiles({folder});
    vm.addRule(insertAtEnd(u"_new"_s));
    vm.performRename();
    QTRY_VERIFY_WITH_TIMEOUT(!vm.isRenaming(), 30000);
    QCOMPARE(vm.lastRenameResults().size(), count);
    QVERIFY(std::all_of(vm.lastRenameResults().cbegin(), vm.lastRenameResults().cend(), [](const RenameResult &r) {
        return r.success;
    }));
    QVERIFY(files.exists(u"many/f0000_new.txt"_s));
    QVERIFY(files.exists(u"many/f5999_new.txt"_s));
    QVERIFY(!files.exists(u"many/f5999.txt"_s));
}

void TestRenameFlow::previewsFollowFilterAndSort()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"b.txt"_s), files.file(u"a.txt"_s), files.file(u"c.jpg"_s)});
    vm.setFilterText(u"txt"_s);
    vm.updatePreviews();
    QCOMPARE(previewNames(vm), (QStringList{u"a.txt"_s, u"b.txt"_s}));
}

void TestRenameFlow::renameRunsOnAWorkerAndFinishesOnTheMainThread()
{
    TestFiles files;
    auto mover = std::make_shared<RecordingMover>();
    AppViewModel vm;
    vm.setFileMover(mover);
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s)});
    vm.addRule(insertAtEnd(u"_new"_s));
    QThread *completionThread = nullptr;
    connect(&vm, &AppViewModel::showRenameResultChanged, this, [&] { completionThread = QThread::currentThread(); });
    QSignalSpy renamingSpy(&vm, &AppViewModel::isRenamingChanged);

    vm.performRename();
    QVERIFY(vm.isRenaming());
    QCOMPARE(vm.undoStack().size(), 1);
    QTRY_VERIFY(vm.showRenameResult());
    QVERIFY(!vm.isRenaming());
    QCOMPARE(renamingSpy.count(), 2);
    QCOMPARE(mover->threads.size(), 2);
    QVERIFY(mover->threads.first() != QThread::currentThread());
    QCOMPARE(completionThread, QThread::currentThread());
    QCOMPARE(vm.lastRenameResults().size(), 2);
    QVERIFY(files.exists(u"a_new.txt"_s));
    QVERIFY(files.exists(u"b_new.txt"_s));
    QCOMPARE(names(vm.files()), (QStringList{u"a_new.txt"_s, u"b_new.txt"_s}));
    QCOMPARE(previewNames(vm), (QStringList{u"a_new_new.txt"_s, u"b_new_new.txt"_s}));
}

void TestRenameFlow::secondRenameWhileRunningIsDropped()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.performRename();
    vm.performRename();
    QCOMPARE(vm.undoStack().size(), 1);
    QTRY_VERIFY(!vm.isRenaming());
    QVERIFY(files.exists(u"a_1.txt"_s));
    QVERIFY(!files.exists(u"a_1_1.txt"_s));
    QCOMPARE(vm.undoStack().size(), 1);
}

void TestRenameFlow::renameWithNothingSelected()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    vm.undoRename();
    QCOMPARE(vm.redoStack().size(), 1);
    vm.deselectAll();
    vm.setShowRenameResult(false);
    vm.performRename();
    QTRY_VERIFY(vm.showRenameResult());
    QVERIFY(vm.lastRenameResults().isEmpty());
    QCOMPARE(vm.undoStack().size(), 1);
    QVERIFY(vm.redoStack().isEmpty());
}

void TestRenameFlow::hiddenSelectedItemIsRenamed()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.jpg"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.setFilterText(u"txt"_s);
    vm.updatePreviews();
    QCOMPARE(vm.previews().size(), 1);
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QVERIFY(files.exists(u"b_1.jpg"_s));
    QVERIFY(files.exists(u"a_1.txt"_s));
}

void TestRenameFlow::renamedItemsAreFreshAndFailedOnesKeepTheirIds()
{
    TestFiles files;
    files.file(u"b_1.txt"_s, "keep me");
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    const QUuid oldA = vm.files()[0].id;
    const QUuid oldB = vm.files()[1].id;
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QCOMPARE(vm.lastRenameResults().size(), 2);
    QVERIFY(vm.lastRenameResults()[0].success);
    QVERIFY(!vm.lastRenameResults()[1].success);
    QVERIFY(vm.files()[0].id != oldA);
    QVERIFY(vm.files()[0].isSelected);
    QCOMPARE(vm.files()[0].previewName, u"a_1.txt"_s);
    QCOMPARE(vm.files()[1].id, oldB);
    QCOMPARE(vm.files()[1].originalName(), u"b.txt"_s);
    QFile kept(files.path(u"b_1.txt"_s).toText());
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("keep me"));
}

void TestRenameFlow::onlyTheFirstOfTwoItemsWithOneUrlIsReplaced()
{
    TestFiles files;
    const NativePath a = files.file(u"a.txt"_s);
    AppViewModel vm;
    vm.addFiles({a, a});
    vm.setFileSelected(vm.files()[1].id, false);
    vm.addRule(insertAtEnd(u"_1"_s));
    const QUuid second = vm.files()[1].id;
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QCOMPARE(names(vm.files()), (QStringList{u"a_1.txt"_s, u"a.txt"_s}));
    QCOMPARE(vm.files()[1].id, second);
}

void TestRenameFlow::undoRestoresTheListAndLeavesTheDisk()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s)});
    vm.setFileSelected(vm.files()[1].id, false);
    vm.addRule(insertAtEnd(u"_1"_s));
    const QList<FileItem> before = vm.files();
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());

    QSignalSpy filesSpy(&vm, &AppViewModel::filesChanged);
    vm.undoRename();
    QCOMPARE(filesSpy.count(), 1);
    QCOMPARE(vm.files().size(), before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        QCOMPARE(vm.files()[i].id, before[i].id);
        QCOMPARE(vm.files()[i].url, before[i].url);
        QCOMPARE(vm.files()[i].isSelected, before[i].isSelected);
    }
    QVERIFY(files.exists(u"a_1.txt"_s));
    QVERIFY(!files.exists(u"a.txt"_s));
    QVERIFY(vm.undoStack().isEmpty());
    QCOMPARE(vm.redoStack().size(), 1);

    vm.redoRename();
    QCOMPARE(names(vm.files()), (QStringList{u"a_1.txt"_s, u"b.txt"_s}));
    QCOMPARE(vm.undoStack().size(), 1);
    QVERIFY(vm.redoStack().isEmpty());
}

void TestRenameFlow::newRenameAfterUndoEmptiesRedo()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    vm.undoRename();
    QCOMPARE(vm.redoStack().size(), 1);
    vm.performRename();
    QVERIFY(vm.redoStack().isEmpty());
    QTRY_VERIFY(!vm.isRenaming());
}

void TestRenameFlow::undoAndRedoOnEmptyStacksDoNothing()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    QSignalSpy filesSpy(&vm, &AppViewModel::filesChanged);
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.undoRename();
    vm.redoRename();
    QCOMPARE(filesSpy.count(), 0);
    QCOMPARE(previewsSpy.count(), 0);
}

void TestRenameFlow::folderAndItsContentsAreRenamedTogether()
{
    TestFiles files;
    files.file(u"top/sub/a.txt"_s);
    files.file(u"top/sub/keep.md"_s);
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    vm.addFiles({files.path(u"top"_s)});
    RenameRule rule(RuleType::Replace);
    rule.findText = u"a"_s;
    rule.replaceText = u"A"_s;
    RenameRule sub(RuleType::Replace);
    sub.findText = u"sub"_s;
    sub.replaceText = u"Sub"_s;
    sub.isCaseSensitive = true;
    rule.isCaseSensitive = true;
    vm.addRule(rule);
    vm.addRule(sub);
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    for (const RenameResult &result : vm.lastRenameResults())
        QVERIFY2(result.success, qPrintable(result.error.value_or(QString())));
    QCOMPARE(vm.lastRenameResults().size(), 2);
    QVERIFY(files.exists(u"top/Sub/A.txt"_s));
    QVERIFY(files.exists(u"top/Sub/keep.md"_s));
    // The unchanged item moved with its folder and is still the same item.
    for (const FileItem &item : vm.files())
        QVERIFY2(fs::exists(item.url.toStdPath()), item.url.c_str());
}

void TestRenameFlow::swappedNamesAreRenamed()
{
    TestFiles files;
    files.file(u"a.txt"_s, "first");
    files.file(u"b.txt"_s, "second");
    AppViewModel vm;
    vm.addFiles({files.path(u"a.txt"_s), files.path(u"b.txt"_s)});
    // a becomes x, b becomes a, x becomes b: the two names swap.
    for (const auto &[find, with] : {std::pair{u"a"_s, u"x"_s}, std::pair{u"b"_s, u"a"_s}, std::pair{u"x"_s, u"b"_s}}) {
        RenameRule rule(RuleType::Replace);
        rule.findText = find;
        rule.replaceText = with;
        rule.isCaseSensitive = true;
        vm.addRule(rule);
    }
    QCOMPARE(previewNames(vm), (QStringList{u"b.txt"_s, u"a.txt"_s}));
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QCOMPARE(vm.lastRenameResults().size(), 2);
    for (const RenameResult &result : vm.lastRenameResults())
        QVERIFY2(result.success, qPrintable(result.error.value_or(QString())));
    QFile a(files.path(u"a.txt"_s).toText());
    QVERIFY(a.open(QIODevice::ReadOnly));
    QCOMPARE(a.readAll(), QByteArray("second"));
}

void TestRenameFlow::eachRenameIsJournaledInTheHistoryFolder()
{
    TestFiles files;
    QTemporaryDir history;
    AppViewModel vm;
    vm.setHistoryFolder(history.path());
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QVERIFY(files.exists(u"a_1.txt"_s));
    QCOMPARE(QDir(history.path()).entryList({u"*.journal"_s}).size(), 1);
}

void TestRenameFlow::anUnwritableHistoryRenamesNothing()
{
    TestFiles files;
    AppViewModel vm;
    // A file stands where the history folder would be made.
    vm.setHistoryFolder(files.file(u"history"_s).toText() + u"/inner"_s);
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(insertAtEnd(u"_1"_s));
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QCOMPARE(vm.lastRenameResults().size(), 1);
    QVERIFY(!vm.lastRenameResults()[0].success);
    QVERIFY(vm.lastRenameResults()[0].error->startsWith(u"Nothing was renamed: the journal"_s));
    QVERIFY(files.exists(u"a.txt"_s));
    QVERIFY(!files.exists(u"a_1.txt"_s));
}

QTEST_GUILESS_MAIN(TestRenameFlow)
#include "tst_renameflow.moc"
