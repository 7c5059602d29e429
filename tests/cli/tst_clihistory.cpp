#include "clirun.h"
#include "model/renamerule.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <csignal>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// The command line's batches as transactions: chains and swaps, what would fail shown before, the history,
/// undo on disk, and recovery after the process was killed or stopped.
class TestCliHistory final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void shiftedNumbersAllSucceed();
    void previewMarksWhatWouldFail();
    void historyListsAndUndoRestores();
    void undoSkipsAFileEditedSince();
    void aKilledBatchIsReportedAndRecovered_data();
    void aKilledBatchIsReportedAndRecovered();
    void interruptStopsAfterTheMoveInFlight();

private:
    CliRun run(const QStringList &arguments, const QByteArray &input = {}) const;
    [[nodiscard]] QProcessEnvironment environment() const;
    void file(const QString &name, const QByteArray &content) const;
    QString writeRules(const QList<RenameRule> &rules) const;
    /// The names in the files folder with their contents, sorted.
    [[nodiscard]] QMap<QString, QByteArray> contents() const;
    /// Starts a rename and sends `signal` once it has reported its first moves; the exit code.
    int renameInterruptedBy(const QStringList &arguments, int signal, int extraDelayMicroseconds);

    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<QTemporaryDir> m_rules;
};

void TestCliHistory::init()
{
    m_files = std::make_unique<QTemporaryDir>();
    m_home = std::make_unique<QTemporaryDir>();
    m_rules = std::make_unique<QTemporaryDir>();
    QVERIFY(m_files->isValid() && m_home->isValid() && m_rules->isValid());
}

QProcessEnvironment TestCliHistory::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, m_home->filePath(u"data"_s));
    environment.insert(u"XDG_STATE_HOME"_s, m_home->filePath(u"state"_s));
    environment.insert(u"LANG"_s, u"en_US.UTF-8"_s);
    return environment;
}

CliRun TestCliHistory::run(const QStringList &arguments, const QByteArray &input) const
{
    return runCli(arguments, m_files->path(), environment(), input);
}

void TestCliHistory::file(const QString &name, const QByteArray &content) const
{
    QFile out(m_files->filePath(name));
    if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
        qFatal("cannot write test file");
}

QString TestCliHistory::writeRules(const QList<RenameRule> &rules) const
{
    QJsonArray array;
    for (const RenameRule &rule : rules)
        array.append(rule.toJson());
    const QString path = m_rules->filePath(u"rules.json"_s);
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly))
        qFatal("cannot write rules");
    out.write(QJsonDocument(array).toJson());
    return path;
}

QMap<QString, QByteArray> TestCliHistory::contents() const
{
    QMap<QString, QByteArray> contents;
    for (const QString &name : QDir(m_files->path()).entryList(QDir::Files | QDir::Hidden)) {
        QFile in(m_files->filePath(name));
        if (!in.open(QIODevice::ReadOnly))
            qFatal("cannot read test file");
        contents.insert(name, in.readAll());
    }
    return contents;
}

namespace {

RenameRule numberingFrom(qint64 start, qint64 padding)
{
    RenameRule rule(RuleType::Numbering);
    rule.numberingPosition = NumberingPosition::Replace;
    rule.numberingStart = start;
    rule.numberingPadding = padding;
    return rule;
}

RenameRule prefix(const QString &text)
{
    RenameRule rule(RuleType::Insert);
    rule.insertPosition = InsertPosition::Beginning;
    rule.insertText = text;
    return rule;
}

} // namespace

void TestCliHistory::shiftedNumbersAllSucceed()
{
    for (int i = 1; i <= 5; ++i)
        file(u"%1.txt"_s.arg(i), QByteArray::number(i));
    const QString rules = writeRules({numberingFrom(2, 1)});
    const CliRun preview = run({u"preview"_s, u"--rules"_s, rules, u"--recursive"_s, u"."_s});
    QVERIFY2(preview.out.endsWith(u"5 files, 5 changes, 0 conflicts\n"_s), qPrintable(preview.out));
    const CliRun renamed = run({u"rename"_s, u"--yes"_s, u"--rules"_s, rules, u"--recursive"_s, u"."_s});
    QCOMPARE(renamed.exitCode, 0);
    QVERIFY2(renamed.out.endsWith(u"5 renamed, 0 failed\n"_s), qPrintable(renamed.out));
    const QMap<QString, QByteArray> after{{u"2.txt"_s, "1"},
        {u"3.txt"_s, "2"},
        {u"4.txt"_s, "3"},
        {u"5.txt"_s, "4"},
        {u"6.txt"_s, "5"}};
    QCOMPARE(contents(), after);
}

void TestCliHistory::previewMarksWhatWouldFail()
{
    file(u"a.txt"_s, "a");
    file(u"keep.txt"_s, "keep");
    RenameRule toKeep(RuleType::Replace);
    toKeep.findText = u"a"_s;
    toKeep.replaceText = u"keep"_s;
    const QString rules = writeRules({toKeep});
    const QString reason = u"A file named “keep.txt” already exists."_s;
    const CliRun table = run({u"preview"_s, u"--rules"_s, rules, u"a.txt"_s});
    QVERIFY2(table.out.contains(u"keep.txt  (will fail: "_s + reason + u')'), qPrintable(table.out));
    QVERIFY2(table.out.endsWith(u"1 file, 1 change, 0 conflicts, 1 would fail\n"_s), qPrintable(table.out));
    const CliRun json = run({u"preview"_s, u"--format"_s, u"json"_s, u"--rules"_s, rules, u"a.txt"_s, u"keep.txt"_s});
    const QJsonArray entries = QJsonDocument::fromJson(json.outBytes).array();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0].toObject()[u"failureReason"_s].toString(), reason);
    QVERIFY(entries[1].toObject()[u"failureReason"_s].isNull());
    // The conflict marks and counts keep their meaning: a name taken on disk is no conflict.
    QCOMPARE(entries[0].toObject()[u"hasConflict"_s].toBool(), false);
}

void TestCliHistory::historyListsAndUndoRestores()
{
    file(u"a.txt"_s, "a");
    file(u"b.txt"_s, "b");
    QCOMPARE(run({u"history"_s}).out, u"No batches yet.\n"_s);
    QCOMPARE(
        run({u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules({prefix(u"x_"_s)}), u"--recursive"_s, u"."_s}).exitCode,
        0);
    QCOMPARE(contents().keys(), (QStringList{u"x_a.txt"_s, u"x_b.txt"_s}));

    const QJsonArray history = QJsonDocument::fromJson(run({u"history"_s, u"--json"_s}).outBytes).array();
    QCOMPARE(history.size(), 1);
    const QJsonObject batch = history[0].toObject();
    QCOMPARE(batch[u"kind"_s].toString(), u"rename"_s);
    QCOMPARE(batch[u"files"_s].toInt(), 2);
    QCOMPARE(batch[u"moved"_s].toInt(), 2);
    QCOMPARE(batch[u"state"_s].toString(), u"complete"_s);
    QCOMPARE(batch[u"folder"_s].toString(), QDir(m_files->path()).canonicalPath());
    const QString id = batch[u"id"_s].toString();
    QVERIFY(run({u"history"_s}).out.contains(id));

    const CliRun unconfirmed = run({u"undo"_s});
    QCOMPARE(unconfirmed.exitCode, 2);
    QVERIFY2(unconfirmed.err.contains(u"pass --yes when not on a terminal"_s), qPrintable(unconfirmed.err));
    QCOMPARE(contents().keys(), (QStringList{u"x_a.txt"_s, u"x_b.txt"_s}));

    const CliRun undone = run({u"undo"_s, u"--yes"_s});
    QCOMPARE(undone.exitCode, 0);
    QCOMPARE(contents(), (QMap<QString, QByteArray>{{u"a.txt"_s, "a"}, {u"b.txt"_s, "b"}}));
    const QJsonArray after = QJsonDocument::fromJson(run({u"history"_s, u"--json"_s}).outBytes).array();
    QCOMPARE(after.size(), 2);
    QCOMPARE(after[0].toObject()[u"kind"_s].toString(), u"undo"_s);
    QCOMPARE(after[1].toObject()[u"undoneBy"_s].toString(), after[0].toObject()[u"id"_s].toString());

    const CliRun again = run({u"undo"_s, u"--yes"_s, id});
    QCOMPARE(again.exitCode, 2);
    QVERIFY2(again.err.contains(u"was undone already"_s), qPrintable(again.err));
}

void TestCliHistory::undoSkipsAFileEditedSince()
{
    file(u"a.txt"_s, "a");
    file(u"b.txt"_s, "b");
    QCOMPARE(
        run({u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules({prefix(u"x_"_s)}), u"--recursive"_s, u"."_s}).exitCode,
        0);
    file(u"x_b.txt"_s, "b, edited");
    const CliRun undone = run({u"undo"_s, u"--yes"_s});
    QCOMPARE(undone.exitCode, 1);
    QVERIFY2(undone.err.contains(u"“x_b.txt” was changed since the rename."_s), qPrintable(undone.err));
    QCOMPARE(contents(), (QMap<QString, QByteArray>{{u"a.txt"_s, "a"}, {u"x_b.txt"_s, "b, edited"}}));
}

int TestCliHistory::renameInterruptedBy(const QStringList &arguments, int signal, int extraDelayMicroseconds)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setWorkingDirectory(m_files->path());
    process.start(QStringLiteral(QUILLFERN_CLI), arguments);
    if (!process.waitForStarted())
        return -1;
    // The first result lines show that the moves have begun.
    process.waitForReadyRead(30000);
    QThread::usleep(ulong(extraDelayMicroseconds));
    ::kill(pid_t(process.processId()), signal);
    if (!process.waitForFinished(60000))
        return -1;
    return process.exitStatus() == QProcess::CrashExit ? -signal : process.exitCode();
}

void TestCliHistory::aKilledBatchIsReportedAndRecovered_data()
{
    QTest::addColumn<bool>("finish");
    QTest::addColumn<int>("delay");
    QTest::newRow("finished, killed at once") << true << 0;
    QTest::newRow("reverted, killed at once") << false << 0;
    QTest::newRow("finished, killed a little later") << true << 3000;
    QTest::newRow("reverted, killed a little later") << false << 3000;
}

void TestCliHistory::aKilledBatchIsReportedAndRecovered()
{
    QFETCH(bool, finish);
    QFETCH(int, delay);
    // 5,000 files numbered anew in order of their random sizes: a random permutation of their names, full of
    // cycles.
    constexpr int count = 5000;
    QRandomGenerator random(quint32(delay + (finish ? 1 : 0)));
    for (int i = 1; i <= count; ++i) {
        const QString name = u"%1"_s.arg(i, 4, 10, QChar(u'0'));
        file(name, name.toUtf8() + QByteArray(random.bounded(count * 4), '.'));
    }
    const QString rules = writeRules({numberingFrom(1, 4)});
    const QStringList selection{u"--rules"_s, rules, u"--sort"_s, u"size"_s, u"--recursive"_s, u"."_s};
    const QJsonArray plan =
        QJsonDocument::fromJson(run(QStringList{u"preview"_s, u"--format"_s, u"json"_s} + selection).outBytes).array();
    QCOMPARE(plan.size(), count);
    QHash<QString, QString> newNameOf;
    for (const QJsonValue &entry : plan)
        newNameOf.insert(entry[u"original"_s].toString(), entry[u"preview"_s].toString());

    const int status = renameInterruptedBy(QStringList{u"rename"_s, u"--yes"_s} + selection, SIGKILL, delay);
    QVERIFY2(status == -SIGKILL, qPrintable(u"the batch was not killed: %1"_s.arg(status)));

    const CliRun next = run({u"history"_s});
    QVERIFY2(next.err.contains(u"was interrupted"_s) && next.err.contains(u"quillfern-cli recover"_s),
        qPrintable(next.err));
    const CliRun recovered = run({u"recover"_s, finish ? u"--finish"_s : u"--revert"_s});
    QVERIFY2(recovered.exitCode == 0, qPrintable(recovered.out + recovered.err));
    QVERIFY2(run({u"history"_s}).err.isEmpty(), "recovery left the batch interrupted");

    // No file lost, none doubled, each under the name it should have, with its own content.
    const QMap<QString, QByteArray> after = contents();
    QCOMPARE(after.size(), count);
    for (auto item = after.cbegin(); item != after.cend(); ++item) {
        const QString original = QString::fromUtf8(item.value().left(4));
        const QString expected = finish ? newNameOf.value(original) : original;
        QVERIFY2(item.key() == expected, qPrintable(item.key() + u" holds "_s + original));
    }
}

void TestCliHistory::interruptStopsAfterTheMoveInFlight()
{
    constexpr int count = 20000;
    for (int i = 0; i < count; ++i)
        file(u"f%1"_s.arg(i), "x");
    const int status = renameInterruptedBy(
        {u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules({prefix(u"g_"_s)}), u"--recursive"_s, u"."_s},
        SIGINT,
        0);
    QCOMPARE(status, 130);
    const QJsonArray history = QJsonDocument::fromJson(run({u"history"_s, u"--json"_s}).outBytes).array();
    QCOMPARE(history.size(), 1);
    QCOMPARE(history[0].toObject()[u"state"_s].toString(), u"stopped"_s);
    const int moved = history[0].toObject()[u"moved"_s].toInt();
    QVERIFY2(moved > 0 && moved < count, qPrintable(QString::number(moved)));
    const QStringList names = contents().keys();
    QCOMPARE(names.size(), count);
    const auto renamed =
        std::count_if(names.cbegin(), names.cend(), [](const QString &name) { return name.startsWith(u"g_"_s); });
    QCOMPARE(int(renamed), moved);
}

QTEST_GUILESS_MAIN(TestCliHistory)
#include "tst_clihistory.moc"
