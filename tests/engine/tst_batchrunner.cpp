#include "engine/batchjournal.h"
#include "engine/batchrunner.h"
#include "engine/renameengine.h"
#include "engine/systemfilemover.h"
#include "fakefilemover.h"
#include "testfolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Batches as transactions on disk: chains and cycles that all succeed, failures that leave no item under a
/// temporary name, and the journal written before the first move.
class TestBatchRunner final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void everyFileGetsItsNewNameWithItsContent_data();
    void everyFileGetsItsNewNameWithItsContent();
    void numbersShiftedByOneAllSucceed();
    void aNameTakenByAFileThatStaysFailsAndTheCycleStillRuns();
    void twoFilesForOneNameTheFirstGetsIt();
    void failureInsideACycleMovesTheCycleBack_data();
    void failureInsideACycleMovesTheCycleBack();
    void failedMovesOutsideCyclesStopNothing();
    void aDestinationThatAppearsAfterPlanningIsNotReplaced();
    void theJournalHoldsThePlanAndTheOutcomes();
    void aStoppedBatchSaysWhatWasNotAttempted();
    void anUnwritableJournalMovesNothing();
    void forecastNamesWhatWouldFail_data();
    void forecastNamesWhatWouldFail();
    void forecastOfRulesNamesInvalidNames();

private:
    void create(const QString &listing) const { m_dir->create(listing); }
    [[nodiscard]] QList<MoveRequest> requestsFrom(const QString &text) const;
    [[nodiscard]] QString path(const QString &relative) const { return m_dir->path(relative); }
    [[nodiscard]] QString listing() const { return m_dir->listing(); }

    std::unique_ptr<TestFolder> m_dir;
    QTemporaryDir m_stateHome;
};

void TestBatchRunner::initTestCase()
{
    // Batches renamed through the standard history keep their journals here, never in a real home.
    QVERIFY(m_stateHome.isValid());
    qputenv("XDG_STATE_HOME", QFile::encodeName(m_stateHome.path()));
}

void TestBatchRunner::init()
{
    m_dir = std::make_unique<TestFolder>();
    QVERIFY(m_dir->isValid());
}

QList<MoveRequest> TestBatchRunner::requestsFrom(const QString &text) const
{
    QList<MoveRequest> requests;
    for (const QString &pair : text.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList names = pair.split(u'>');
        requests.append({NativePath::fromText(path(names[0])), NativePath::fromText(names[1])});
    }
    return requests;
}

void TestBatchRunner::everyFileGetsItsNewNameWithItsContent_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("requests");
    QTest::addColumn<QString>("after");

    QTest::newRow("a chain listed from its head") << u"1 2 3"_s << u"1>2 2>3 3>4"_s << u"2=1 3=2 4=3"_s;
    QTest::newRow("a chain listed from its free end") << u"1 2 3"_s << u"3>4 2>3 1>2"_s << u"2=1 3=2 4=3"_s;
    QTest::newRow("a swap") << u"a b"_s << u"a>b b>a"_s << u"a=b b=a"_s;
    QTest::newRow("a rotation of three") << u"a b c"_s << u"a>b b>c c>a"_s << u"a=c b=a c=b"_s;
    QTest::newRow("a case-only rename") << u"Photo.JPG"_s << u"Photo.JPG>photo.jpg"_s << u"photo.jpg=Photo.JPG"_s;
    QTest::newRow("folders in a chain keep their contents")
        << u"d1/ d1/x d2/ d2/y"_s << u"d1>d2 d2>d3"_s << u"d2/ d2/x=d1/x d3/ d3/y=d2/y"_s;
    QTest::newRow("a folder renamed with its own contents") << u"d/ d/x"_s << u"d>e d/x>y"_s << u"e/ e/y=d/x"_s;
    QTest::newRow("swapped folders with swapped contents")
        << u"p/ p/1 p/2 q/ q/1"_s << u"p>q q>p p/1>2 p/2>1"_s << u"p/ p/1=q/1 q/ q/1=p/2 q/2=p/1"_s;
}

void TestBatchRunner::everyFileGetsItsNewNameWithItsContent()
{
    QFETCH(QString, files);
    QFETCH(QString, requests);
    QFETCH(QString, after);
    create(files);
    SystemFileMover mover;
    const std::vector<MoveOutcome> outcomes =
        BatchRunner(mover).run(requestsFrom(requests), MovePlan::make(requestsFrom(requests)));
    for (const MoveOutcome &outcome : outcomes)
        QVERIFY2(outcome.state == MoveOutcome::State::Moved, qPrintable(outcome.error));
    QCOMPARE(listing(), after);
}

void TestBatchRunner::numbersShiftedByOneAllSucceed()
{
    create(u"1.txt 2.txt 3.txt 4.txt 5.txt"_s);
    QList<FileItem> files;
    for (int i = 1; i <= 5; ++i)
        files.append(FileItem(NativePath::fromText(path(u"%1.txt"_s.arg(i)))));
    RenameRule numbering(RuleType::Numbering);
    numbering.numberingPosition = NumberingPosition::Replace;
    numbering.numberingStart = 2;
    numbering.numberingPadding = 1;
    const QList<RenameResult> results = RenameEngine::rename(files, {numbering});
    QCOMPARE(QDir(m_stateHome.filePath(u"Quillfern/history"_s)).entryList({u"*.journal"_s}).size(), 1);
    QCOMPARE(results.size(), 5);
    for (const RenameResult &result : results)
        QVERIFY2(result.success, qPrintable(result.error.value_or(QString())));
    QCOMPARE(listing(), u"2.txt=1.txt 3.txt=2.txt 4.txt=3.txt 5.txt=4.txt 6.txt=5.txt"_s);
}

void TestBatchRunner::aNameTakenByAFileThatStaysFailsAndTheCycleStillRuns()
{
    create(u"a b c x"_s);
    SystemFileMover mover;
    const QList<MoveRequest> requests = requestsFrom(u"a>b b>a c>x"_s);
    const std::vector<MoveOutcome> outcomes = BatchRunner(mover).run(requests, MovePlan::make(requests));
    QCOMPARE(outcomes[0].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[1].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[2].state, MoveOutcome::State::Failed);
    QCOMPARE(outcomes[2].error, u"A file named “x” already exists."_s);
    QCOMPARE(listing(), u"a=b b=a c=c x=x"_s);
}

void TestBatchRunner::twoFilesForOneNameTheFirstGetsIt()
{
    create(u"a b"_s);
    SystemFileMover mover;
    const QList<MoveRequest> requests = requestsFrom(u"a>n b>n"_s);
    const std::vector<MoveOutcome> outcomes = BatchRunner(mover).run(requests, MovePlan::make(requests));
    QCOMPARE(outcomes[0].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[1].state, MoveOutcome::State::Failed);
    QCOMPARE(listing(), u"b=b n=a"_s);
}

void TestBatchRunner::failureInsideACycleMovesTheCycleBack_data()
{
    QTest::addColumn<int>("failingCall");
    QTest::addColumn<QString>("message");
    // The moves of a rotation a>b b>c c>a: a aside (0), c to a (1), b to c (2), a from aside to b (3).
    QTest::newRow("stepping aside fails") << 0 << u"Permission denied"_s;
    QTest::newRow("a move in the middle fails") << 2 << u"No space left on device"_s;
    QTest::newRow("the last move, from the temporary name, fails") << 3 << u"Invalid cross-device link"_s;
}

void TestBatchRunner::failureInsideACycleMovesTheCycleBack()
{
    QFETCH(int, failingCall);
    QFETCH(QString, message);
    FakeFileMover mover({"/f/a", "/f/b", "/f/c"});
    mover.failMove(failingCall, message);
    QList<MoveRequest> requests;
    for (const auto &[from, to] : {std::pair{"a", "b"}, std::pair{"b", "c"}, std::pair{"c", "a"}})
        requests.append({NativePath(QByteArray("/f/") + from), NativePath(to)});
    const std::vector<MoveOutcome> outcomes = BatchRunner(mover).run(requests, MovePlan::make(requests));
    for (const MoveOutcome &outcome : outcomes)
        QCOMPARE(outcome.state, MoveOutcome::State::Failed);
    const qsizetype failed = std::count_if(outcomes.cbegin(), outcomes.cend(), [&](const MoveOutcome &outcome) {
        return outcome.error == message;
    });
    QCOMPARE(failed, 1);
    // Every item is back under its own name, and nothing is left under a temporary one.
    QCOMPARE(mover.items(), (QStringList{u"/f/a"_s, u"/f/b"_s, u"/f/c"_s}));
}

void TestBatchRunner::failedMovesOutsideCyclesStopNothing()
{
    FakeFileMover mover({"/f/a", "/f/c", "/f/d"});
    mover.failMove(1, u"Permission denied"_s);
    QList<MoveRequest> requests;
    for (const char *name : {"a", "b", "c", "d"})
        requests.append({NativePath(QByteArray("/f/") + name), NativePath(QByteArray("new_") + name)});
    const std::vector<MoveOutcome> outcomes = BatchRunner(mover).run(requests, MovePlan::make(requests));
    QCOMPARE(outcomes[0].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[1].error, u"Permission denied"_s);
    QCOMPARE(outcomes[2].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[3].state, MoveOutcome::State::Moved);
    QCOMPARE(mover.items(), (QStringList{u"/f/new_a"_s, u"/f/new_c"_s, u"/f/new_d"_s}));
}

void TestBatchRunner::aDestinationThatAppearsAfterPlanningIsNotReplaced()
{
    create(u"a b"_s);
    SystemFileMover mover;
    BatchRunner runner(mover);
    const QList<MoveRequest> requests = requestsFrom(u"a>x b>y"_s);
    // Another program makes "y" while the batch runs.
    runner.setOutcomeHandler([&](qsizetype request, const MoveOutcome &) {
        if (request == 0)
            create(u"y"_s);
    });
    const std::vector<MoveOutcome> outcomes = runner.run(requests, MovePlan::make(requests));
    QCOMPARE(outcomes[0].state, MoveOutcome::State::Moved);
    QCOMPARE(outcomes[1].state, MoveOutcome::State::Failed);
    QCOMPARE(listing(), u"b=b x=a y=y"_s);
}

void TestBatchRunner::theJournalHoldsThePlanAndTheOutcomes()
{
    create(u"a b c x"_s);
    SystemFileMover mover;
    BatchRunner runner(mover);
    const QString history = path(u"history"_s);
    runner.setHistoryFolder(history);
    const QList<MoveRequest> requests = requestsFrom(u"a>b b>a c>x"_s);
    const auto identityOfA = mover.identity(NativePath::fromText(path(u"a"_s)));
    QVERIFY(runner.run(requests).has_value());

    const QStringList journals = QDir(history).entryList({u"*.journal"_s});
    QCOMPARE(journals.size(), 1);
    QVERIFY(journals.front().endsWith(u'-' + runner.batchId() + u".journal"_s));
    QString error;
    const auto record = BatchJournal::read(QDir(history).filePath(journals.front()), error);
    QVERIFY2(record, qPrintable(error));
    QCOMPARE(record->id, runner.batchId());
    QCOMPARE(record->kind, BatchRecord::Kind::Rename);
    QCOMPARE(record->state, BatchRecord::State::Complete);
    QCOMPARE(record->folders.size(), 1);
    QCOMPARE(record->folders.front().path, NativePath::fromText(m_dir->path()));
    QCOMPARE(record->moves.size(), 3);
    QCOMPARE(record->moves[0].from, NativePath("a"));
    QCOMPARE(record->moves[0].to, NativePath("b"));
    QCOMPARE(record->moves[0].identity, *identityOfA);
    QCOMPARE(record->outcomes.size(), std::size_t(3));
    QCOMPARE(record->outcomes[0].state, MoveOutcome::State::Moved);
    QCOMPARE(record->outcomes[2].state, MoveOutcome::State::Failed);
    QCOMPARE(record->outcomes[2].error, u"A file named “x” already exists."_s);
}

void TestBatchRunner::aStoppedBatchSaysWhatWasNotAttempted()
{
    create(u"a b c d"_s);
    QTemporaryDir history;
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(history.path());
    std::atomic<bool> stop = false;
    runner.setStopFlag(&stop);
    runner.setOutcomeHandler([&](qsizetype request, const MoveOutcome &) { stop = request == 1; });
    const auto outcomes = runner.run(requestsFrom(u"a>e b>f c>g d>h"_s));
    QVERIFY(outcomes);
    QVERIFY(runner.wasStopped());
    QCOMPARE((*outcomes)[1].state, MoveOutcome::State::Moved);
    QCOMPARE((*outcomes)[2].state, MoveOutcome::State::NotAttempted);
    QCOMPARE((*outcomes)[3].state, MoveOutcome::State::NotAttempted);
    QCOMPARE(listing(), u"c=c d=d e=a f=b"_s);
    const QStringList journals = QDir(history.path()).entryList({u"*.journal"_s});
    QCOMPARE(journals.size(), 1);
    QString error;
    const auto record = BatchJournal::read(QDir(history.path()).filePath(journals.front()), error);
    QVERIFY2(record, qPrintable(error));
    QCOMPARE(record->state, BatchRecord::State::Stopped);
    QCOMPARE(record->outcomes[1].state, MoveOutcome::State::Moved);
    QCOMPARE(record->outcomes[2].state, MoveOutcome::State::NotAttempted);
}

void TestBatchRunner::anUnwritableJournalMovesNothing()
{
    create(u"a history"_s);
    SystemFileMover mover;
    BatchRunner runner(mover);
    // The history folder cannot be made: a file has its name.
    runner.setHistoryFolder(path(u"history/inner"_s));
    QVERIFY(!runner.run(requestsFrom(u"a>b"_s)));
    QVERIFY(runner.error().startsWith(u"Nothing was renamed: the journal of the batch could not be written"_s));
    QCOMPARE(listing(), u"a=a history=history"_s);
}

void TestBatchRunner::forecastNamesWhatWouldFail_data()
{
    QTest::addColumn<QString>("files");
    QTest::addColumn<QString>("requests");
    QTest::addColumn<QString>("reasons");

    QTest::newRow("a chain and a cycle would all succeed") << u"1 2 a b"_s << u"1>2 2>3 a>b b>a"_s << u"|||"_s;
    QTest::newRow("a name that a file outside the batch holds")
        << u"a outside"_s << u"a>outside"_s << u"A file named “outside” already exists."_s;
    QTest::newRow("the second of two files for one name")
        << u"a b"_s << u"a>n b>n"_s << u"|An earlier file of the batch gets the name “n”."_s;
    QTest::newRow("a chain behind a file that cannot move")
        << u"a b x"_s << u"a>b b>x"_s << u"A file named “b” already exists.|A file named “x” already exists."_s;
    QTest::newRow("a file that is gone") << u"a"_s << u"gone>b"_s << u"“gone” is no longer there."_s;
}

void TestBatchRunner::forecastNamesWhatWouldFail()
{
    QFETCH(QString, files);
    QFETCH(QString, requests);
    QFETCH(QString, reasons);
    create(files);
    const QString before = listing();
    SystemFileMover disk;
    QStringList actual;
    for (const MoveOutcome &outcome : BatchRunner::forecast(requestsFrom(requests), disk))
        actual.append(outcome.error);
    QCOMPARE(actual.join(u'|'), reasons);
    QCOMPARE(listing(), before);
}

void TestBatchRunner::forecastOfRulesNamesInvalidNames()
{
    create(u"a.txt b.txt"_s);
    const QList<FileItem> files{FileItem(NativePath::fromText(path(u"a.txt"_s))),
        FileItem(NativePath::fromText(path(u"b.txt"_s)))};
    RenameRule toB(RuleType::Replace);
    toB.findText = u"a"_s;
    toB.replaceText = u"b"_s;
    RenameRule slash(RuleType::Insert);
    slash.insertText = u"x/"_s;
    SystemFileMover disk;
    QCOMPARE(RenameEngine::forecast(files, {toB}, disk),
        (QList<QString>{u"A file named “b.txt” already exists."_s, QString()}));
    QCOMPARE(RenameEngine::forecast(files, {slash}, disk),
        (QList<QString>{u"The new name contains “/”, which a file name cannot contain."_s,
            u"The new name contains “/”, which a file name cannot contain."_s}));
}

QTEST_APPLESS_MAIN(TestBatchRunner)
#include "tst_batchrunner.moc"
