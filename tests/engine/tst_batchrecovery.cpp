#include "engine/batchhistory.h"
#include "engine/batchjournal.h"
#include "engine/batchrecovery.h"
#include "engine/batchrunner.h"
#include "engine/systemfilemover.h"
#include "testfolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

#include <cstdio>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Finishing and reverting interrupted batches, undoing ended ones, and how long the history keeps them.
class TestBatchRecovery final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void interruptedAnywhereFinishesAndReverts_data();
    void interruptedAnywhereFinishesAndReverts();
    void anItemLeftUnderBothNamesKeepsOne_data();
    void anItemLeftUnderBothNamesKeepsOne();
    void aSecondLinkUnderTheTemporaryNameGoes();
    void undoGivesBackTheOldNames();
    void undoSkipsWhatChangedSince();
    void undoOfAFolderAndItsContents();
    void historyKeepsTheLastHundredOrThirtyDays();
    void interruptedJournalsAreFoundButNotRunningOnes();

private:
    void create(const QString &listing) const { m_dir->create(listing); }
    [[nodiscard]] QString listing() const { return m_dir->listing(); }
    [[nodiscard]] QList<MoveRequest> requestsFrom(const QList<std::pair<QString, QString>> &pairs) const;
    /// Runs the batch, letting only the first `moves` moves happen as if the process were killed then, and
    /// returns the journal it left.
    [[nodiscard]] BatchRecord interruptedBatch(const QList<MoveRequest> &requests, int moves);
    /// Runs the batch to its end and returns its journal.
    [[nodiscard]] BatchRecord endedBatch(const QList<MoveRequest> &requests);
    /// Runs the recovery's plan as its own batch.
    void runPlan(const BatchRecovery::Plan &plan);

    std::unique_ptr<TestFolder> m_dir;
    std::unique_ptr<QTemporaryDir> m_history;
};

namespace {

/// Thrown by the mover below to end a batch as a killed process would: nothing after it runs.
struct Killed
{};

/// Moves on the real disk until its budget is spent, then "dies".
class DyingMover final : public FileMover
{
public:
    explicit DyingMover(int moves)
        : m_movesLeft(moves)
    {
    }
    std::optional<MoveError> move(const NativePath &from, const NativePath &to) override
    {
        if (m_movesLeft-- <= 0)
            throw Killed{};
        return m_disk.move(from, to);
    }
    bool isSameItem(const NativePath &first, const NativePath &second) override
    {
        return m_disk.isSameItem(first, second);
    }
    bool exists(const NativePath &path) override { return m_disk.exists(path); }
    std::optional<ItemIdentity> identity(const NativePath &path) override { return m_disk.identity(path); }

private:
    SystemFileMover m_disk;
    int m_movesLeft;
};

} // namespace

void TestBatchRecovery::init()
{
    m_dir = std::make_unique<TestFolder>();
    m_history = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid() && m_history->isValid());
}

QList<MoveRequest> TestBatchRecovery::requestsFrom(const QList<std::pair<QString, QString>> &pairs) const
{
    QList<MoveRequest> requests;
    for (const auto &[from, to] : pairs)
        requests.append({NativePath::fromText(m_dir->path(from)), NativePath::fromText(to)});
    return requests;
}

BatchRecord TestBatchRecovery::interruptedBatch(const QList<MoveRequest> &requests, int moves)
{
    DyingMover mover(moves);
    BatchRunner runner(mover);
    runner.setHistoryFolder(m_history->path());
    bool wasKilled = false;
    try {
        (void)runner.run(requests);
    } catch (const Killed &) {
        wasKilled = true;
    }
    const QString journal = BatchHistory(m_history->path()).journalOf(runner.batchId());
    QString error;
    auto record = BatchJournal::read(journal, error);
    if (!record)
        qFatal("%s", qPrintable(error));
    if (wasKilled && record->state != BatchRecord::State::Unfinished)
        qFatal("a killed batch left an ended journal");
    return *record;
}

BatchRecord TestBatchRecovery::endedBatch(const QList<MoveRequest> &requests)
{
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(m_history->path());
    if (!runner.run(requests))
        qFatal("the batch did not start: %s", qPrintable(runner.error()));
    QString error;
    const auto record = BatchJournal::read(BatchHistory(m_history->path()).journalOf(runner.batchId()), error);
    if (!record)
        qFatal("%s", qPrintable(error));
    return *record;
}

void TestBatchRecovery::runPlan(const BatchRecovery::Plan &plan)
{
    SystemFileMover mover;
    const std::vector<MoveOutcome> outcomes = BatchRunner(mover).run(plan.requests, MovePlan::make(plan.requests));
    for (const MoveOutcome &outcome : outcomes)
        QVERIFY2(outcome.state == MoveOutcome::State::Moved, qPrintable(outcome.error));
}

void TestBatchRecovery::interruptedAnywhereFinishesAndReverts_data()
{
    QTest::addColumn<bool>("finish");
    QTest::newRow("finished") << true;
    QTest::newRow("reverted") << false;
}

void TestBatchRecovery::interruptedAnywhereFinishesAndReverts()
{
    QFETCH(bool, finish);
    // A rotation of three, a swap, a chain and a case-only rename: cut after every possible move.
    const QList<std::pair<QString, QString>> pairs{{u"a"_s, u"b"_s},
        {u"b"_s, u"c"_s},
        {u"c"_s, u"a"_s},
        {u"x"_s, u"y"_s},
        {u"y"_s, u"x"_s},
        {u"1"_s, u"2"_s},
        {u"2"_s, u"3"_s},
        {u"Up"_s, u"up"_s}};
    const QString before = u"1=1 2=2 Up=Up a=a b=b c=c x=x y=y"_s;
    const QString after = u"2=1 3=2 a=c b=a c=b up=Up x=y y=x"_s;
    for (int cut = 0; cut <= 11; ++cut) {
        init();
        create(u"a b c x y 1 2 Up"_s);
        const BatchRecord record = interruptedBatch(requestsFrom(pairs), cut);
        SystemFileMover mover;
        BatchRecovery recovery(record, mover);
        const BatchRecovery::Plan plan = finish ? recovery.finish() : recovery.revert();
        for (const QString &skipped : plan.skipped)
            QVERIFY2(skipped.isEmpty(), qPrintable(skipped));
        runPlan(plan);
        QVERIFY2(listing() == (finish ? after : before),
            qPrintable(u"cut after %1 moves: %2"_s.arg(cut).arg(listing())));
    }
}

void TestBatchRecovery::anItemLeftUnderBothNamesKeepsOne_data()
{
    QTest::addColumn<bool>("finish");
    QTest::newRow("finished: the new name stays") << true;
    QTest::newRow("reverted: the old name stays") << false;
}

void TestBatchRecovery::anItemLeftUnderBothNamesKeepsOne()
{
    QFETCH(bool, finish);
    create(u"old"_s);
    const BatchRecord record = interruptedBatch(requestsFrom({{u"old"_s, u"new"_s}}), 0);
    // A link-and-unlink move killed between its two steps.
    QCOMPARE(link(QFile::encodeName(m_dir->path(u"old"_s)).constData(),
                 QFile::encodeName(m_dir->path(u"new"_s)).constData()),
        0);
    SystemFileMover mover;
    BatchRecovery recovery(record, mover);
    const BatchRecovery::Plan plan = finish ? recovery.finish() : recovery.revert();
    QCOMPARE(plan.requests.size(), 0);
    QCOMPARE(plan.inPlace, 1);
    QCOMPARE(listing(), finish ? u"new=old"_s : u"old=old"_s);
}

void TestBatchRecovery::aSecondLinkUnderTheTemporaryNameGoes()
{
    create(u"a b"_s);
    const BatchRecord record = interruptedBatch(requestsFrom({{u"a"_s, u"b"_s}, {u"b"_s, u"a"_s}}), 0);
    // The first step of the swap, a link to the temporary name, killed before its unlink.
    const QString temporary = BatchRunner::temporaryName(record.id, 0).toText();
    QCOMPARE(
        link(QFile::encodeName(m_dir->path(u"a"_s)).constData(), QFile::encodeName(m_dir->path(temporary)).constData()),
        0);
    SystemFileMover mover;
    const BatchRecovery::Plan plan = BatchRecovery(record, mover).revert();
    QCOMPARE(plan.inPlace, 2);
    QCOMPARE(listing(), u"a=a b=b"_s);
}

void TestBatchRecovery::undoGivesBackTheOldNames()
{
    create(u"a b c taken"_s);
    SystemFileMover mover;
    const BatchRecord record = endedBatch(requestsFrom({{u"a"_s, u"b"_s}, {u"b"_s, u"a"_s}, {u"c"_s, u"taken"_s}}));
    QCOMPARE(listing(), u"a=b b=a c=c taken=taken"_s);
    BatchRecovery recovery(record, mover);
    const BatchRecovery::Plan plan = recovery.undo();
    // The failed move is not undone.
    QCOMPARE(plan.requests.size(), 2);
    runPlan(plan);
    QCOMPARE(listing(), u"a=a b=b c=c taken=taken"_s);
}

void TestBatchRecovery::undoSkipsWhatChangedSince()
{
    create(u"edited replaced moved kept"_s);
    SystemFileMover mover;
    const BatchRecord record = endedBatch(requestsFrom({{u"edited"_s, u"edited2"_s},
        {u"replaced"_s, u"replaced2"_s},
        {u"moved"_s, u"moved2"_s},
        {u"kept"_s, u"kept2"_s}}));
    {
        QFile edited(m_dir->path(u"edited2"_s));
        QVERIFY(edited.open(QIODevice::Append));
        edited.write(" and more");
    }
    // Saved over by a program that writes a new file and renames it over the old one.
    create(u"replacement"_s);
    QCOMPARE(::rename(QFile::encodeName(m_dir->path(u"replacement"_s)).constData(),
                 QFile::encodeName(m_dir->path(u"replaced2"_s)).constData()),
        0);
    QVERIFY(QFile::rename(m_dir->path(u"moved2"_s), m_dir->path(u"elsewhere"_s)));

    const BatchRecovery::Plan plan = BatchRecovery(record, mover).undo();
    QCOMPARE(plan.skipped[0], u"“edited2” was changed since the rename."_s);
    QCOMPARE(plan.skipped[1], u"“replaced2” is another item now: it was replaced since the rename."_s);
    QCOMPARE(plan.skipped[2], u"“moved2” is no longer in “%1”."_s.arg(m_dir->path()));
    QCOMPARE(plan.skipped[3], QString());
    QCOMPARE(plan.requests.size(), 1);
    runPlan(plan);
    QCOMPARE(listing(), u"edited2=edited and more elsewhere=moved kept=kept replaced2=replacement"_s);
}

void TestBatchRecovery::undoOfAFolderAndItsContents()
{
    create(u"d/ d/x"_s);
    SystemFileMover mover;
    const BatchRecord record = endedBatch(requestsFrom({{u"d"_s, u"e"_s}, {u"d/x"_s, u"y"_s}}));
    QCOMPARE(listing(), u"e/ e/y=d/x"_s);
    runPlan(BatchRecovery(record, mover).undo());
    QCOMPARE(listing(), u"d/ d/x=d/x"_s);
}

void TestBatchRecovery::historyKeepsTheLastHundredOrThirtyDays()
{
    const QDateTime now = QDateTime::fromString(u"2026-06-30T12:00:00Z"_s, Qt::ISODate);
    const QDir history(m_history->path());
    // 150 ended batches, one every 6 hours back from now: the newest 100 span 25 days, the 120 newest 30.
    for (int age = 0; age < 150; ++age) {
        const QDateTime time = now.addSecs(-qint64(age) * 6 * 3600);
        QFile file(history.filePath(time.toString(u"yyyyMMdd-HHmmsszzz"_s) + u"-id%1.journal"_s.arg(age)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("quillfern-journal\t1\nplanned\nend\tcomplete\n");
    }
    // An old batch that never ended stays until it is recovered; one whose plan was never written goes.
    for (const char *name : {"20200101-000000000-unfinished.journal", "20200101-000000000-torn.journal"}) {
        QFile file(history.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            QByteArray(name).contains("torn") ? "quillfern-journal\t1\nmove\t0" : "quillfern-journal\t1\nplanned\n");
    }
    BatchHistory(m_history->path()).prune(now);
    const QStringList kept = history.entryList({u"*.journal"_s});
    QCOMPARE(kept.size(), 121 + 1);
    QVERIFY(kept.contains(u"20200101-000000000-unfinished.journal"_s));
    QVERIFY(!kept.contains(u"20200101-000000000-torn.journal"_s));
}

void TestBatchRecovery::interruptedJournalsAreFoundButNotRunningOnes()
{
    create(u"a b"_s);
    const BatchRecord interrupted = interruptedBatch(requestsFrom({{u"a"_s, u"c"_s}}), 0);
    const BatchHistory history(m_history->path());
    QCOMPARE(history.interruptedJournals(), QStringList{history.journalOf(interrupted.id)});

    // A batch that runs holds its journal: another process must not take it for an interrupted one.
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(m_history->path());
    QStringList seenWhileRunning;
    runner.setOutcomeHandler([&](qsizetype, const MoveOutcome &) { seenWhileRunning = history.interruptedJournals(); });
    QVERIFY(runner.run(requestsFrom({{u"b"_s, u"d"_s}})));
    QCOMPARE(seenWhileRunning, QStringList{history.journalOf(interrupted.id)});
    QVERIFY(BatchJournal::markResolved(history.journalOf(interrupted.id), BatchRecord::State::Reverted));
    QCOMPARE(history.interruptedJournals(), QStringList());
}

QTEST_APPLESS_MAIN(TestBatchRecovery)
#include "tst_batchrecovery.moc"
