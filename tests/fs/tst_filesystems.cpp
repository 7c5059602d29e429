#include "clirun.h"
#include "filesystemkind.h"
#include "model/renamerule.h"
#include "scratchmount.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Paths under a folder with their contents; a folder is its path with a trailing '/' and no content.
using FileTree = QMap<QString, QByteArray>;

/// The command line's batches on real file systems, each mounted for the test: tmpfs; ext4, xfs and btrfs on loop
/// devices; exFAT, a bindfs mirror and NTFS (keeping and ignoring case) through FUSE. Every check runs once per
/// file system and reads the result back from the disk, contents included.
class TestFileSystems final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void initTestCase();
    void cleanupTestCase();
    void init();
    void chainsSwapsAndCyclesOfFiles_data();
    void chainsSwapsAndCyclesOfFiles();
    void foldersMoveWithTheirContents_data();
    void foldersMoveWithTheirContents();
    void caseOnlyRenames_data();
    void caseOnlyRenames();
    void anOccupiedNameIsNeverReplaced_data();
    void anOccupiedNameIsNeverReplaced();
    void undoRestoresTheNames_data();
    void undoRestoresTheNames();
    void aKilledPermutationLosesNoFile();

private:
    [[nodiscard]] QProcessEnvironment environment() const;
    CliRun run(const QStringList &arguments) const;
    QString writeRules(const QList<RenameRule> &rules);
    /// The tree as this file system lists it.
    [[nodiscard]] FileTree listed(const FileTree &tree) const;
    /// What is wrong with the marks of moves without atomic protection: empty when every result line carries one
    /// exactly when `isExpected`.
    [[nodiscard]] static QString checkProtectionMarks(const CliRun &renamed, bool isExpected);
    /// Writes 3,000 files named 0001 to 3000 whose random sizes put them in a random order; the folder, or empty
    /// when a file could not be written.
    QString writePermutation(int round, int attempt);
    /// Starts the batch, kills it with SIGKILL `delay` microseconds after its journal says its moves begin, and
    /// gives the exit status: -SIGKILL when it was killed, -1 when it did not start or end.
    int renameKilledAfter(const QString &folder, const QStringList &arguments, qint64 delay) const;

    std::unique_ptr<QTemporaryDir> m_work;
    /// Where the user folders of each check live.
    std::unique_ptr<ScratchMount> m_homes;
    std::map<FileSystemKind, std::unique_ptr<ScratchMount>> m_mounts;
    std::map<FileSystemKind, QString> m_whyNot;
    std::unique_ptr<QTemporaryDir> m_home;
    ScratchMount *m_mount = nullptr;
    /// The folder on the mounted file system where the current check renames.
    QString m_folder;
    int m_checkCount = 0;
    int m_rulesCount = 0;
};

Q_DECLARE_METATYPE(FileSystemKind)

namespace {

constexpr int permutationSize = 3000;
constexpr QStringView unprotectedMark = u" (no atomic protection on this file system)";

/// The kinds this run checks: all of them, or those QUILLFERN_FS_ONLY names (separated by commas).
QList<FileSystemKind> selectedKinds()
{
    const QStringList only = qEnvironmentVariable("QUILLFERN_FS_ONLY").split(u',', Qt::SkipEmptyParts);
    QList<FileSystemKind> kinds;
    for (const FileSystemTraits &traits : fileSystemKinds) {
        if (only.isEmpty() || only.contains(nameOf(traits.kind)))
            kinds.append(traits.kind);
    }
    return kinds;
}

RenameRule numberingFrom(qint64 start)
{
    RenameRule rule(RuleType::Numbering);
    rule.numberingPosition = NumberingPosition::Replace;
    rule.numberingStart = start;
    rule.numberingPadding = 1;
    return rule;
}

RenameRule replacing(const QString &text, const QString &replacement)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = text;
    rule.replaceText = replacement;
    rule.isCaseSensitive = true;
    return rule;
}

RenameRule extensionTo(const QString &extension)
{
    RenameRule rule(RuleType::ExtensionChange);
    rule.newExtension = extension;
    return rule;
}

RenameRule lowerCase()
{
    RenameRule rule(RuleType::CaseConversion);
    rule.caseType = CaseConversionType::Lowercase;
    return rule;
}

/// Three rules that give "a" the name "b" and "b" the name "a".
QList<RenameRule> swappingAAndB()
{
    return {replacing(u"a"_s, u"c"_s), replacing(u"b"_s, u"a"_s), replacing(u"c"_s, u"b"_s)};
}

bool write(const QString &folder, const FileTree &tree)
{
    for (auto item = tree.cbegin(); item != tree.cend(); ++item) {
        const QString path = QDir(folder).filePath(item.key());
        if (item.key().endsWith(u'/')) {
            if (!QDir().mkpath(path))
                return false;
            continue;
        }
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(item.value()) != item.value().size())
            return false;
    }
    return true;
}

/// Everything under the folder, hidden items (a temporary name left behind) included.
FileTree treeOf(const QString &folder)
{
    FileTree tree;
    const QDir base(folder);
    QDirIterator items(folder,
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (items.hasNext()) {
        const QString path = items.next();
        const QFileInfo info = items.fileInfo();
        const QString relative = base.relativeFilePath(path);
        if (info.isDir()) {
            tree.insert(relative + u'/', {});
            continue;
        }
        QFile file(path);
        tree.insert(relative, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)"));
    }
    return tree;
}

/// The tree with one path given its new name, the items under it following a folder.
FileTree withNewName(const FileTree &tree, const QString &from, const QString &to)
{
    FileTree result;
    for (auto item = tree.cbegin(); item != tree.cend(); ++item) {
        const QString &path = item.key();
        const bool isMoved = path == from || path == from + u'/' || path.startsWith(from + u'/');
        result.insert(isMoved ? to + path.mid(from.size()) : path, item.value());
    }
    return result;
}

/// The names at the top of a tree, sorted.
QStringList topNames(const FileTree &tree)
{
    QStringList names;
    for (const QString &path : tree.keys()) {
        if (const qsizetype slash = path.indexOf(u'/'); slash < 0 || slash == path.size() - 1)
            names.append(slash < 0 ? path : path.chopped(1));
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// A number the CLI printed on a line matching `pattern`, whose first group is the number; -1 when none.
int numberIn(const QString &text, const QString &pattern)
{
    const QRegularExpressionMatch match = QRegularExpression(pattern).match(text);
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

} // namespace

void TestFileSystems::initTestCase_data()
{
    QTest::addColumn<FileSystemKind>("kind");
    for (const FileSystemKind kind : selectedKinds())
        QTest::newRow(qPrintable(nameOf(kind))) << kind;
}

void TestFileSystems::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("Mounting file systems needs root: run this test as root to check the batch on them.");
    // In a mount namespace of its own, the mounts are seen only by this process and its children, and they go
    // when all of those have ended: a crashed run leaves no mount behind.
    if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        QSKIP(qPrintable(u"No right to mount file systems here: %1."_s.arg(QString::fromLocal8Bit(strerror(errno)))));
    m_work = std::make_unique<QTemporaryDir>();
    QVERIFY(m_work->isValid());
    // The journals live in memory: written at once, the moves begin right after the plan, which is where the kill
    // is timed from.
    QString noHomes;
    m_homes = ScratchMount::make(FileSystemKind::Tmpfs, m_work->filePath(u"homes"_s), noHomes);
    if (!m_homes)
        QSKIP(qPrintable(u"Cannot mount a tmpfs: %1."_s.arg(noHomes)));
    for (const FileSystemKind kind : selectedKinds()) {
        QString whyNot;
        if (auto mounted = ScratchMount::make(kind, m_work->path(), whyNot))
            m_mounts.emplace(kind, std::move(mounted));
        else
            m_whyNot.emplace(kind, whyNot);
    }
}

void TestFileSystems::cleanupTestCase()
{
    m_mounts.clear();
    m_homes.reset();
    m_work.reset();
}

void TestFileSystems::init()
{
    QFETCH_GLOBAL(FileSystemKind, kind);
    const auto mounted = m_mounts.find(kind);
    if (mounted == m_mounts.end())
        QSKIP(qPrintable(nameOf(kind) + u" cannot be set up here: "_s + m_whyNot[kind]));
    m_mount = mounted->second.get();
    m_folder = QDir(m_mount->root()).filePath(u"check-%1"_s.arg(++m_checkCount));
    QVERIFY(QDir().mkpath(m_folder));
    m_home = std::make_unique<QTemporaryDir>(QDir(m_homes->root()).filePath(u"home-XXXXXX"_s));
    QVERIFY(m_home->isValid());
}

QProcessEnvironment TestFileSystems::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, m_home->filePath(u"data"_s));
    environment.insert(u"XDG_STATE_HOME"_s, m_home->filePath(u"state"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, m_home->filePath(u"config"_s));
    environment.insert(u"XDG_CACHE_HOME"_s, m_home->filePath(u"cache"_s));
    environment.insert(u"LANG"_s, u"en_US.UTF-8"_s);
    return environment;
}

CliRun TestFileSystems::run(const QStringList &arguments) const
{
    return runCli(arguments, m_folder, environment());
}

QString TestFileSystems::writeRules(const QList<RenameRule> &rules)
{
    QJsonArray array;
    for (const RenameRule &rule : rules)
        array.append(rule.toJson());
    const QString path = m_home->filePath(u"rules-%1.json"_s.arg(++m_rulesCount));
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(QJsonDocument(array).toJson()) < 0)
        qFatal("cannot write the rules file");
    return path;
}

FileTree TestFileSystems::listed(const FileTree &tree) const
{
    if (!traitsOf(m_mount->kind()).listsInLowerCase)
        return tree;
    FileTree lower;
    for (auto item = tree.cbegin(); item != tree.cend(); ++item)
        lower.insert(item.key().toLower(), item.value());
    return lower;
}

QString TestFileSystems::checkProtectionMarks(const CliRun &renamed, bool isExpected)
{
    for (const QString &line : renamed.out.split(u'\n')) {
        if (line.startsWith(u"renamed: "_s) && line.endsWith(unprotectedMark) != isExpected)
            return (isExpected ? u"no mark of a move without atomic protection: "_s : u"a wrong mark: "_s) + line;
    }
    return {};
}

void TestFileSystems::chainsSwapsAndCyclesOfFiles_data()
{
    QTest::addColumn<FileTree>("before");
    QTest::addColumn<QString>("sort");
    QTest::addColumn<qint64>("start");
    QTest::addColumn<FileTree>("after");

    QTest::newRow("five numbers shifted up move from the free end")
        << FileTree{{u"1.txt"_s, "1"}, {u"2.txt"_s, "2"}, {u"3.txt"_s, "3"}, {u"4.txt"_s, "4"}, {u"5.txt"_s, "5"}}
        << u"name"_s << qint64(2)
        << FileTree{{u"2.txt"_s, "1"}, {u"3.txt"_s, "2"}, {u"4.txt"_s, "3"}, {u"5.txt"_s, "4"}, {u"6.txt"_s, "5"}};
    // Sorted by size, largest first, and numbered in that order.
    QTest::newRow("two files swap names") << FileTree{{u"1.txt"_s, "1"}, {u"2.txt"_s, "22"}} << u"size"_s << qint64(1)
                                          << FileTree{{u"1.txt"_s, "22"}, {u"2.txt"_s, "1"}};
    QTest::newRow("three files turn in a cycle")
        << FileTree{{u"1.txt"_s, "11"}, {u"2.txt"_s, "2"}, {u"3.txt"_s, "333"}} << u"size"_s << qint64(1)
        << FileTree{{u"1.txt"_s, "333"}, {u"2.txt"_s, "11"}, {u"3.txt"_s, "2"}};
}

void TestFileSystems::chainsSwapsAndCyclesOfFiles()
{
    QFETCH(FileTree, before);
    QFETCH(QString, sort);
    QFETCH(qint64, start);
    QFETCH(FileTree, after);
    QVERIFY(write(m_folder, before));
    const QStringList selection{u"--rules"_s,
        writeRules({numberingFrom(start)}),
        u"--sort"_s,
        sort,
        u"--recursive"_s,
        u"."_s};

    const CliRun preview = run(QStringList{u"preview"_s} + selection);
    const QString count = QString::number(before.size());
    QVERIFY2(preview.out.endsWith(u"%1 files, %1 changes, 0 conflicts\n"_s.arg(count)), qPrintable(preview.out));
    const CliRun renamed = run(QStringList{u"rename"_s, u"--yes"_s} + selection);
    QVERIFY2(renamed.exitCode == 0, qPrintable(renamed.out + renamed.err));
    QVERIFY2(renamed.out.endsWith(u"%1 renamed, 0 failed\n"_s.arg(count)), qPrintable(renamed.out));
    QCOMPARE(treeOf(m_folder), after);
    const QString marks = checkProtectionMarks(renamed, !traitsOf(m_mount->kind()).hasHardLinks);
    QVERIFY2(marks.isEmpty(), qPrintable(marks));
}

void TestFileSystems::foldersMoveWithTheirContents_data()
{
    QTest::addColumn<FileTree>("before");
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<FileTree>("after");

    QTest::newRow("a folder takes the name of one that moves on") << FileTree{{u"1/"_s, {}},
        {u"1/a.txt"_s, "in one"},
        {u"2/"_s, {}},
        {u"2/b.txt"_s, "in two"},
        {u"2/deep/"_s, {}},
        {u"2/deep/c.txt"_s, "deep in two"}} << QList<RenameRule>{numberingFrom(2)}
                                                                  << FileTree{{u"2/"_s, {}},
                                                                         {u"2/a.txt"_s, "in one"},
                                                                         {u"3/"_s, {}},
                                                                         {u"3/b.txt"_s, "in two"},
                                                                         {u"3/deep/"_s, {}},
                                                                         {u"3/deep/c.txt"_s, "deep in two"}};
    QTest::newRow("two folders swap names")
        << FileTree{{u"a/"_s, {}}, {u"a/x.txt"_s, "from a"}, {u"b/"_s, {}}, {u"b/y.txt"_s, "from b"}} << swappingAAndB()
        << FileTree{{u"b/"_s, {}}, {u"b/x.txt"_s, "from a"}, {u"a/"_s, {}}, {u"a/y.txt"_s, "from b"}};
}

void TestFileSystems::foldersMoveWithTheirContents()
{
    QFETCH(FileTree, before);
    QFETCH(QList<RenameRule>, rules);
    QFETCH(FileTree, after);
    QVERIFY(write(m_folder, before));
    const QStringList folders = topNames(before);
    const CliRun renamed = run(QStringList{u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules(rules)} + folders);
    QVERIFY2(renamed.exitCode == 0, qPrintable(renamed.out + renamed.err));
    QVERIFY2(renamed.out.endsWith(u"%1 renamed, 0 failed\n"_s.arg(folders.size())), qPrintable(renamed.out));
    QCOMPARE(treeOf(m_folder), after);
    // A folder moves onto an empty folder that claims its name, which nothing can replace unnoticed.
    const QString marks = checkProtectionMarks(renamed, false);
    QVERIFY2(marks.isEmpty(), qPrintable(marks));
}

void TestFileSystems::caseOnlyRenames_data()
{
    QTest::addColumn<FileTree>("before");
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");

    QTest::newRow("a file's extension in lower case")
        << FileTree{{u"photo.JPG"_s, "jpeg bytes"}} << QList<RenameRule>{extensionTo(u"jpg"_s)} << u"photo.JPG"_s
        << u"photo.jpg"_s;
    QTest::newRow("a folder's name in lower case") << FileTree{{u"Album/"_s, {}}, {u"Album/Beach.jpg"_s, "sand"}}
                                                   << QList<RenameRule>{lowerCase()} << u"Album"_s << u"album"_s;
}

void TestFileSystems::caseOnlyRenames()
{
    QFETCH(FileTree, before);
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QVERIFY(write(m_folder, before));
    const QStringList selection{u"--rules"_s, writeRules(rules), from};

    const CliRun preview = run(QStringList{u"preview"_s} + selection);
    QVERIFY2(preview.out.endsWith(u"1 file, 1 change, 0 conflicts\n"_s), qPrintable(preview.out));
    const CliRun renamed = run(QStringList{u"rename"_s, u"--yes"_s} + selection);
    QVERIFY2(renamed.exitCode == 0, qPrintable(renamed.out + renamed.err));
    QVERIFY2(renamed.out.endsWith(u"1 renamed, 0 failed\n"_s), qPrintable(renamed.out));
    const FileTree after = withNewName(before, from, to);
    QCOMPARE(treeOf(m_folder), listed(after));
    QString error;
    const std::optional<QStringList> stored =
        m_mount->storedNames(QDir(m_mount->root()).relativeFilePath(m_folder), error);
    QVERIFY2(stored, qPrintable(error));
    QCOMPARE(*stored, QStringList{to});
    const bool isFile = !before.contains(from + u'/');
    const QString marks = checkProtectionMarks(renamed, isFile && !traitsOf(m_mount->kind()).hasHardLinks);
    QVERIFY2(marks.isEmpty(), qPrintable(marks));
}

void TestFileSystems::anOccupiedNameIsNeverReplaced_data()
{
    QTest::addColumn<FileTree>("before");
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("isTakenOnlyIgnoringCase");

    const FileTree twoFiles{{u"a.txt"_s, "a"}, {u"keep.txt"_s, "keep"}};
    QTest::newRow("a file onto a file outside the batch")
        << twoFiles << QList<RenameRule>{replacing(u"a"_s, u"keep"_s)} << u"a.txt"_s << u"keep.txt"_s << false;
    QTest::newRow("a folder onto an empty folder outside the batch")
        << FileTree{{u"d1/"_s, {}}, {u"d1/in.txt"_s, "in"}, {u"d2/"_s, {}}}
        << QList<RenameRule>{replacing(u"d1"_s, u"d2"_s)} << u"d1"_s << u"d2"_s << false;
    QTest::newRow("a file onto an empty folder outside the batch")
        << FileTree{{u"a.txt"_s, "a"}, {u"b.txt/"_s, {}}} << QList<RenameRule>{replacing(u"a"_s, u"b"_s)} << u"a.txt"_s
        << u"b.txt"_s << false;
    QTest::newRow("a file onto another spelling of a file outside the batch")
        << twoFiles << QList<RenameRule>{replacing(u"a"_s, u"KEEP"_s)} << u"a.txt"_s << u"KEEP.txt"_s << true;
}

void TestFileSystems::anOccupiedNameIsNeverReplaced()
{
    QFETCH(FileTree, before);
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, isTakenOnlyIgnoringCase);
    QVERIFY(write(m_folder, before));
    const QStringList selection{u"--rules"_s, writeRules(rules), from};
    const CliRun preview = run(QStringList{u"preview"_s} + selection);
    const CliRun renamed = run(QStringList{u"rename"_s, u"--yes"_s} + selection);

    if (isTakenOnlyIgnoringCase && !traitsOf(m_mount->kind()).ignoresCase) {
        // Where case counts, the other spelling is a free name.
        QVERIFY2(preview.out.endsWith(u"1 file, 1 change, 0 conflicts\n"_s), qPrintable(preview.out));
        QVERIFY2(renamed.exitCode == 0, qPrintable(renamed.out + renamed.err));
        QCOMPARE(treeOf(m_folder), withNewName(before, from, to));
        return;
    }
    const QString reason = u"A file named “%1” already exists."_s.arg(to);
    QVERIFY2(preview.out.contains(to + u"  (will fail: "_s + reason + u')'), qPrintable(preview.out));
    QVERIFY2(preview.out.endsWith(u"1 file, 1 change, 0 conflicts, 1 would fail\n"_s), qPrintable(preview.out));
    QVERIFY2(renamed.exitCode == 1, qPrintable(renamed.out + renamed.err));
    QVERIFY2(renamed.out.contains(u"failed: %1 -> %2: %3\n"_s.arg(from, to, reason)), qPrintable(renamed.out));
    QVERIFY2(renamed.out.endsWith(u"0 renamed, 1 failed\n"_s), qPrintable(renamed.out));
    // Nothing replaced, nothing left behind: no claim, no temporary name.
    QCOMPARE(treeOf(m_folder), listed(before));
}

void TestFileSystems::undoRestoresTheNames_data()
{
    QTest::addColumn<FileTree>("before");
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QStringList>("selection");

    const QStringList everything{u"--sort"_s, u"size"_s, u"--recursive"_s, u"."_s};
    QTest::newRow("a chain of five") << FileTree{{u"1.txt"_s, "1"},
        {u"2.txt"_s, "22"},
        {u"3.txt"_s, "333"},
        {u"4.txt"_s, "4444"},
        {u"5.txt"_s, "55555"}} << QList<RenameRule>{numberingFrom(2)}
                                     << QStringList{u"--recursive"_s, u"."_s};
    QTest::newRow("a cycle of three") << FileTree{{u"1.txt"_s, "11"}, {u"2.txt"_s, "2"}, {u"3.txt"_s, "333"}}
                                      << QList<RenameRule>{numberingFrom(1)} << everything;
    QTest::newRow("two folders swapped") << FileTree{{u"a/"_s, {}},
        {u"a/x.txt"_s, "from a"},
        {u"b/"_s, {}},
        {u"b/y.txt"_s, "from b"}} << swappingAAndB()
                                         << QStringList{u"a"_s, u"b"_s};
    QTest::newRow("a case-only rename") << FileTree{{u"photo.JPG"_s, "jpeg bytes"}}
                                        << QList<RenameRule>{extensionTo(u"jpg"_s)} << QStringList{u"photo.JPG"_s};
}

void TestFileSystems::undoRestoresTheNames()
{
    QFETCH(FileTree, before);
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QStringList, selection);
    QVERIFY(write(m_folder, before));
    const CliRun renamed = run(QStringList{u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules(rules)} + selection);
    QVERIFY2(renamed.exitCode == 0, qPrintable(renamed.out + renamed.err));

    const CliRun undone = run({u"undo"_s, u"--yes"_s});
    QVERIFY2(undone.exitCode == 0, qPrintable(undone.out + undone.err));
    QVERIFY2(undone.out.endsWith(renamed.out.section(u'\n', -2)), qPrintable(undone.out));
    QCOMPARE(treeOf(m_folder), listed(before));
    QString error;
    const std::optional<QStringList> stored =
        m_mount->storedNames(QDir(m_mount->root()).relativeFilePath(m_folder), error);
    QVERIFY2(stored, qPrintable(error));
    QCOMPARE(*stored, topNames(before));
    const CliRun history = run({u"history"_s, u"--json"_s});
    const QJsonArray batches = QJsonDocument::fromJson(history.outBytes).array();
    QCOMPARE(batches.size(), 2);
    QCOMPARE(batches[0].toObject()[u"kind"_s].toString(), u"undo"_s);
    QCOMPARE(batches[0].toObject()[u"state"_s].toString(), u"complete"_s);
}

QString TestFileSystems::writePermutation(int round, int attempt)
{
    const QString folder = QDir(m_folder).filePath(u"round-%1-%2"_s.arg(round).arg(attempt));
    if (!QDir().mkpath(folder))
        return {};
    QRandomGenerator random(quint32(round * 100 + attempt));
    for (int i = 1; i <= permutationSize; ++i) {
        const QString name = u"%1"_s.arg(i, 4, 10, QChar(u'0'));
        QFile file(QDir(folder).filePath(name));
        const QByteArray content = name.toUtf8() + QByteArray(random.bounded(permutationSize * 2), '.');
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            return {};
    }
    return folder;
}

namespace {

/// Whether a journal not among `known` has its plan written: the batch's moves begin.
bool hasNewPlan(const QDir &history, const QStringList &known)
{
    for (const QString &name : history.entryList({u"*.journal"_s}, QDir::Files)) {
        if (known.contains(name))
            continue;
        QFile journal(history.filePath(name));
        constexpr QByteArrayView planned = "\nplanned\n";
        if (journal.open(QIODevice::ReadOnly) && journal.size() > planned.size()
            && journal.seek(journal.size() - planned.size()) && journal.read(planned.size()) == planned)
            return true;
    }
    return false;
}

/// The empty files in the folder, hidden ones included. The permutation's files never are: each is a claim that
/// a move killed between claiming its destination and renaming onto it left behind.
QStringList emptyFilesIn(const QString &folder)
{
    QStringList names;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QFileInfo &file : files) {
        if (file.size() == 0)
            names.append(file.fileName());
    }
    return names;
}

/// The names in the folder that share their file with another name, by file: a move by link and unlink was killed
/// between the two.
QList<QStringList> sharedFilesIn(const QString &folder)
{
    const QDir listed(folder);
    QHash<ino_t, QStringList> namesOf;
    for (const QString &name : listed.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        struct stat status = {};
        if (lstat(QFile::encodeName(listed.filePath(name)).constData(), &status) == 0)
            namesOf[status.st_ino].append(name);
    }
    QList<QStringList> shared;
    for (const QStringList &names : std::as_const(namesOf)) {
        if (names.size() > 1)
            shared.append(names);
    }
    return shared;
}

/// Waits until the file system counts every link of those files: through FUSE, the count a name shows can stay
/// as it was before the link until the kernel's copy of its attributes expires.
bool waitForLinkCounts(const QString &folder, const QList<QStringList> &shared)
{
    QElapsedTimer waited;
    waited.start();
    for (const QStringList &names : shared) {
        for (const QString &name : names) {
            const QByteArray path = QFile::encodeName(QDir(folder).filePath(name));
            struct stat status = {};
            while (lstat(path.constData(), &status) == 0 && status.st_nlink < nlink_t(names.size())) {
                if (waited.hasExpired(10'000))
                    return false;
                QThread::msleep(50);
            }
        }
    }
    return true;
}

} // namespace

int TestFileSystems::renameKilledAfter(const QString &folder, const QStringList &arguments, qint64 delay) const
{
    const QDir history(m_home->filePath(u"state/Quillfern/history"_s));
    const QStringList known = history.entryList({u"*.journal"_s}, QDir::Files);
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setWorkingDirectory(folder);
    // Nobody reads the result lines: a full pipe must not hold the batch up.
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral(QUILLFERN_CLI), arguments);
    if (!process.waitForStarted())
        return -1;
    QElapsedTimer waited;
    waited.start();
    while (!hasNewPlan(history, known)) {
        if (process.waitForFinished(0))
            break;
        if (waited.hasExpired(60'000))
            return -1;
        QThread::usleep(100);
    }
    QThread::usleep(ulong(delay));
    ::kill(pid_t(process.processId()), SIGKILL);
    if (!process.waitForFinished(60'000))
        return -1;
    return process.exitStatus() == QProcess::CrashExit ? -SIGKILL : process.exitCode();
}

namespace {

/// Searches the delay after the plan at which a kill lands amid the moves of a batch: longer after a kill before
/// the first move, shorter after one that came too late, halfway between once both are known.
class KillDelaySearch final
{
public:
    [[nodiscard]] qint64 delay() const { return m_delay; }

    void landedTooEarly()
    {
        m_tooEarly = m_delay;
        if (m_tooLate < 0)
            m_delay = std::max<qint64>(m_delay * 4, 500);
        else
            m_delay = (m_tooEarly + m_tooLate) / 2;
    }

    void landedTooLate()
    {
        m_tooLate = m_delay;
        m_delay = m_tooEarly < 0 ? m_delay / 4 : (m_tooEarly + m_tooLate) / 2;
    }

    /// Starts again from twice the delay that landed amid the moves, so that the next round lands later.
    void landedAmid()
    {
        m_delay *= 2;
        m_tooEarly = -1;
        m_tooLate = -1;
    }

private:
    qint64 m_delay = 0;
    qint64 m_tooEarly = -1;
    qint64 m_tooLate = -1;
};

/// What is wrong with the permutation's folder: empty when it holds the 3,000 files and nothing else, each under
/// its new name in `newNameOf`, or its old name when that is empty, with its own content.
QString checkPermutation(const QString &folder, const QHash<QString, QString> &newNameOf)
{
    const FileTree after = treeOf(folder);
    QStringList wrong;
    for (auto item = after.cbegin(); item != after.cend(); ++item) {
        const QString original = QString::fromUtf8(item.value().left(4));
        const QString expected = newNameOf.isEmpty() ? original : newNameOf.value(original);
        if (item.key() != expected)
            wrong.append(item.key() + u" holds "_s + (original.isEmpty() ? u"nothing"_s : original));
    }
    if (after.size() != permutationSize || !wrong.isEmpty())
        return u"%1 items instead of %2; %3"_s.arg(after.size()).arg(permutationSize).arg(wrong.join(u", "_s));
    return {};
}

} // namespace

void TestFileSystems::aKilledPermutationLosesNoFile()
{
    // One round reverts; a longer run (QUILLFERN_FS_KILL_ROUNDS) alternates reverting and finishing.
    const int rounds = std::max(1, qEnvironmentVariableIntValue("QUILLFERN_FS_KILL_ROUNDS"));
    constexpr int attempts = 8;
    RenameRule numbering = numberingFrom(1);
    numbering.numberingPadding = 4;
    const QStringList selection{u"--rules"_s,
        writeRules({numbering}),
        u"--sort"_s,
        u"size"_s,
        u"--recursive"_s,
        u"."_s};
    KillDelaySearch search;

    for (int round = 0; round < rounds; ++round) {
        const bool finish = round % 2 == 1;
        QString folder;
        QStringList tried;
        bool isKilledAmid = false;
        for (int attempt = 0; attempt < attempts && !isKilledAmid; ++attempt) {
            // A finished batch leaves the names in size order, where numbering by size changes nothing. The files
            // of the last attempt go first, so that long runs do not fill the volume.
            if (folder.isEmpty() || finish) {
                QVERIFY(folder.isEmpty() || QDir(folder).removeRecursively());
                folder = writePermutation(round, attempt);
                QVERIFY2(!folder.isEmpty(), "cannot write the files");
            }
            QHash<QString, QString> newNameOf;
            if (finish) {
                const CliRun plan =
                    runCli(QStringList{u"preview"_s, u"--format"_s, u"json"_s} + selection, folder, environment());
                for (const QJsonValue &entry : QJsonDocument::fromJson(plan.outBytes).array())
                    newNameOf.insert(entry[u"original"_s].toString(), entry[u"preview"_s].toString());
                QCOMPARE(newNameOf.size(), permutationSize);
            }

            const qint64 delay = search.delay();
            const int status = renameKilledAfter(folder, QStringList{u"rename"_s, u"--yes"_s} + selection, delay);
            QVERIFY2(status == -SIGKILL || status == 0, qPrintable(u"the batch ended with %1"_s.arg(status)));
            const QStringList claims = status == -SIGKILL ? emptyFilesIn(folder) : QStringList();
            const QList<QStringList> shared = status == -SIGKILL ? sharedFilesIn(folder) : QList<QStringList>();
            QStringList secondLinks;
            for (const QStringList &names : shared) {
                for (const QString &name : names) {
                    if (name.startsWith(u".quillfern-"_s))
                        secondLinks.append(name);
                }
            }
            // Recovery removes a second link only where the file system counts two; a user recovers after FUSE's
            // copy of the count has caught up (recovering at once fails, and the moves into that name with it).
            QVERIFY2(waitForLinkCounts(folder, shared), "the link counts did not catch up");
            const CliRun recovered =
                runCli({u"recover"_s, finish ? u"--finish"_s : u"--revert"_s}, folder, environment());
            if (!claims.isEmpty()) {
                // Recovery takes the claim for an item outside the batch: a move into its name fails, and the
                // claim stays.
                const FileTree after = treeOf(folder);
                QEXPECT_FAIL("", "recovery does not yet clear the claim of a killed move", Continue);
                QCOMPARE(after.size(), permutationSize);
                // Even so, no file is lost or doubled: every content is there once, whatever its name.
                QSet<QByteArray> originals;
                for (const QByteArray &content : after) {
                    if (!content.isEmpty())
                        originals.insert(content.left(4));
                }
                QCOMPARE(after.size() - claims.size(), permutationSize);
                QCOMPARE(originals.size(), permutationSize);
                tried.append(u"%1 µs: a claim was left (%2)"_s.arg(delay).arg(claims.join(u", "_s)));
                QVERIFY(QDir(folder).removeRecursively());
                folder.clear();
                continue;
            }
            QVERIFY2(recovered.exitCode == 0, qPrintable(recovered.out + recovered.err));
            if (!secondLinks.isEmpty()) {
                // The file was found under its old or new name too: recovery removes the temporary link.
                QCOMPARE(treeOf(folder).size(), permutationSize);
                tried.append(u"%1 µs: a second link was removed (%2)"_s.arg(delay).arg(secondLinks.join(u", "_s)));
            }

            if (recovered.out == u"No interrupted batch.\n"_s) {
                // The batch ended before the kill came: undone, the files are as they were for the next attempt.
                const CliRun undone = runCli({u"undo"_s, u"--yes"_s}, folder, environment());
                QVERIFY2(undone.exitCode == 0, qPrintable(undone.out + undone.err));
                const QString wrong = checkPermutation(folder, {});
                QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
                tried.append(u"%1 µs: ended first"_s.arg(delay));
                search.landedTooLate();
                continue;
            }
            QVERIFY2(status == -SIGKILL, qPrintable(recovered.out));
            const int batchSize = numberIn(recovered.out, u"was interrupted: (\\d+) files? in"_s);
            const int inPlace = numberIn(recovered.out, u"(\\d+) files? already in place"_s);
            QVERIFY2(batchSize > 0 && inPlace >= 0, qPrintable(recovered.out));
            QVERIFY2(runCli({u"history"_s}, folder, environment()).err.isEmpty(), "the batch is still interrupted");
            // No file lost, none doubled, none left under a temporary name, each with its own content.
            const QString wrong = checkPermutation(folder, newNameOf);
            QVERIFY2(wrong.isEmpty(), qPrintable(wrong));

            // An item under a temporary name counts as moved: it is in place neither before nor after.
            const int moved = finish ? inPlace : batchSize - inPlace;
            tried.append(u"%1 µs: %2 of %3 moved"_s.arg(delay).arg(moved).arg(batchSize));
            if (moved == 0) {
                search.landedTooEarly();
            } else if (moved == batchSize) {
                search.landedTooLate();
            } else {
                search.landedAmid();
                isKilledAmid = true;
            }
        }
        qInfo("%s round %d, %s: %s",
            qPrintable(nameOf(m_mount->kind())),
            round + 1,
            finish ? "finished" : "reverted",
            qPrintable(tried.join(u"; "_s)));
        QVERIFY2(isKilledAmid, qPrintable(u"no kill landed amid the moves: "_s + tried.join(u"; "_s)));
        if (round + 1 < rounds)
            QVERIFY(QDir(folder).removeRecursively());
    }
}

QTEST_GUILESS_MAIN(TestFileSystems)
#include "tst_filesystems.moc"
