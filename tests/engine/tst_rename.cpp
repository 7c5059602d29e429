#include "engine/renameengine.h"
#include "fakefilemover.h"
#include "model/nativepath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

/// Batch renames on disk: which files move, where, and what each attempt reports.
class TestRename final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void emptyRulesMoveNothing();
    void unselectedFilesAreSkippedButCounted();
    void existingNameFailsAndTheBatchGoesOn();
    void caseOnlyRenameIsAttempted();
    void sameNameInTwoFoldersRenamesBoth();
    void renamesFolders();
    void renamesANameThatIsNotUtf8();
    void bytesNoRuleTouchedAreWrittenBack();
    void unchangedNameThatIsNotUtf8IsLeftAlone();
    void leadingByteOrderMarkStaysInTheNewName();
    void invalidNewNamesFailWithTheReason_data();
    void invalidNewNamesFailWithTheReason();
    void failedMoveInTheMiddleStopsNothing();
    void largeBatchNamesEveryFileByItsPosition();
    void caseOnlyRenameOnACaseInsensitiveDiskGoesThroughATemporaryName();
    void failedSecondStepMovesTheItemBack();
    void failedMoveBackSaysWhereTheItemIs();

private:
    NativePath createFile(const QString &relativePath, const QByteArray &content = "data");
    [[nodiscard]] QString read(const QString &relativePath) const;
    [[nodiscard]] bool existsInDir(const QString &relativePath) const;

    std::unique_ptr<QTemporaryDir> m_dir;
};

namespace {

RenameRule replaceAll(const QString &find, const QString &with)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = find;
    rule.replaceText = with;
    rule.isCaseSensitive = true;
    return rule;
}

QList<FileItem> itemsFor(const QList<NativePath> &paths)
{
    QList<FileItem> files;
    for (const NativePath &path : paths)
        files.append(FileItem(path));
    return files;
}

} // namespace

void TestRename::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestRename::cleanup()
{
    // QTemporaryDir removes entries by their text names, which loses the bytes of a name that is not UTF-8.
    std::error_code ignored;
    fs::remove_all(NativePath::fromText(m_dir->path()).toStdPath(), ignored);
}

NativePath TestRename::createFile(const QString &relativePath, const QByteArray &content)
{
    QFile file(m_dir->filePath(relativePath));
    QDir().mkpath(QFileInfo(file).absolutePath());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot create a test file");
    return NativePath::fromText(file.fileName());
}

QString TestRename::read(const QString &relativePath) const
{
    QFile file(m_dir->filePath(relativePath));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool TestRename::existsInDir(const QString &relativePath) const
{
    return QFileInfo::exists(m_dir->filePath(relativePath));
}

void TestRename::emptyRulesMoveNothing()
{
    const QList<FileItem> files = itemsFor({createFile(u"a.txt"_s), createFile(u"b.txt"_s)});
    QVERIFY(RenameEngine::rename(files, {}).isEmpty());
    QVERIFY(existsInDir(u"a.txt"_s));
}

void TestRename::unselectedFilesAreSkippedButCounted()
{
    QList<FileItem> files = itemsFor({createFile(u"x.txt"_s), createFile(u"y.txt"_s), createFile(u"z.txt"_s)});
    files[1].isSelected = false;
    const QList<RenameResult> results = RenameEngine::rename(files, {RenameRule(RuleType::Numbering)});
    QCOMPARE(results.size(), 2);
    QVERIFY(results[0].success);
    QCOMPARE(results[0].newURL.toText(), m_dir->filePath(u"x_001.txt"_s));
    QCOMPARE(results[1].originalURL.toText(), m_dir->filePath(u"z.txt"_s));
    QCOMPARE(results[1].newURL.toText(), m_dir->filePath(u"z_003.txt"_s));
    QVERIFY(existsInDir(u"x_001.txt"_s));
    QVERIFY(existsInDir(u"y.txt"_s));
    QVERIFY(existsInDir(u"z_003.txt"_s));
}

void TestRename::existingNameFailsAndTheBatchGoesOn()
{
    createFile(u"b.txt"_s, "precious");
    const QList<FileItem> files = itemsFor({createFile(u"a.txt"_s, "a"), createFile(u"c.txt"_s, "c")});
    // a becomes b, which exists; c becomes d.
    const QList<RenameResult> results =
        RenameEngine::rename(files, {replaceAll(u"a"_s, u"b"_s), replaceAll(u"c"_s, u"d"_s)});
    QCOMPARE(results.size(), 2);
    QVERIFY(!results[0].success);
    QCOMPARE(results[0].error, u"A file named “b.txt” already exists."_s);
    QVERIFY(results[1].success);
    QVERIFY(!results[1].error);
    QCOMPARE(read(u"b.txt"_s), u"precious"_s);
    QCOMPARE(read(u"a.txt"_s), u"a"_s);
    QCOMPARE(read(u"d.txt"_s), u"c"_s);
}

void TestRename::caseOnlyRenameIsAttempted()
{
    const QList<FileItem> files = itemsFor({createFile(u"notes.txt"_s)});
    RenameRule title(RuleType::CaseConversion);
    const QList<RenameResult> results = RenameEngine::rename(files, {title});
    QCOMPARE(results.size(), 1);
    QVERIFY2(results[0].success, qPrintable(results[0].error.value_or(QString())));
    QVERIFY(QDir(m_dir->path()).entryList(QDir::Files).contains(u"Notes.txt"_s));
}

void TestRename::sameNameInTwoFoldersRenamesBoth()
{
    const QList<FileItem> files = itemsFor({createFile(u"one/a1.txt"_s), createFile(u"two/a2.txt"_s)});
    RenameRule lastCharacter(RuleType::Remove);
    lastCharacter.removeTarget = RemoveTarget::LastN;
    QVERIFY(RenameEngine::preview({lastCharacter}, files)[1].hasConflict);
    const QList<RenameResult> results = RenameEngine::rename(files, {lastCharacter});
    QCOMPARE(results.size(), 2);
    QVERIFY(results[0].success && results[1].success);
    QVERIFY(existsInDir(u"one/a.txt"_s));
    QVERIFY(existsInDir(u"two/a.txt"_s));
}

void TestRename::renamesFolders()
{
    QVERIFY(QDir(m_dir->path()).mkpath(u"Photos.2024/inner"_s));
    const FileItem folder(NativePath::fromText(m_dir->filePath(u"Photos.2024"_s)));
    QVERIFY(folder.isDirectory);
    RenameRule upper(RuleType::CaseConversion);
    upper.caseType = CaseConversionType::Uppercase;
    const QList<RenameResult> results = RenameEngine::rename({folder}, {upper});
    QCOMPARE(results.size(), 1);
    QVERIFY(results[0].success);
    QVERIFY(QFileInfo(m_dir->filePath(u"PHOTOS.2024/inner"_s)).isDir());
}

void TestRename::renamesANameThatIsNotUtf8()
{
    const NativePath raw = NativePath::fromText(m_dir->path()) / fs::path(std::string("caf\xe9 1.txt"));
    {
        std::ofstream(raw.toStdPath()) << "bytes";
    }
    QVERIFY(fs::exists(raw.toStdPath()));
    const QList<RenameResult> results = RenameEngine::rename(itemsFor({raw}), {replaceAll(u"\ufffd"_s, u"e"_s)});
    QCOMPARE(results.size(), 1);
    QVERIFY2(results[0].success, qPrintable(results[0].error.value_or(QString())));
    QCOMPARE(results[0].originalURL, raw);
    QVERIFY(!fs::exists(raw.toStdPath()));
    QCOMPARE(read(u"cafe 1.txt"_s), u"bytes"_s);
}

void TestRename::bytesNoRuleTouchedAreWrittenBack()
{
    const NativePath raw = NativePath::fromText(m_dir->path()) / fs::path(std::string("caf\xe9.txt"));
    const NativePath other = NativePath::fromText(m_dir->path()) / fs::path(std::string("caf\xe8.txt"));
    std::ofstream(raw.toStdPath()) << "e9";
    std::ofstream(other.toStdPath()) << "e8";
    RenameRule prefix(RuleType::Insert);
    prefix.insertText = u"x_"_s;
    const QList<RenameResult> results = RenameEngine::rename(itemsFor({raw, other}), {prefix});
    QCOMPARE(results.size(), 2);
    for (const RenameResult &result : results)
        QVERIFY2(result.success, qPrintable(result.error.value_or(QString())));
    // Two names that read alike stay two names, each with its own byte.
    const fs::path renamed = fs::path(m_dir->path().toStdString()) / std::string("x_caf\xe9.txt");
    const fs::path renamedOther = fs::path(m_dir->path().toStdString()) / std::string("x_caf\xe8.txt");
    QVERIFY(fs::exists(renamed));
    QVERIFY(fs::exists(renamedOther));
    QCOMPARE(results[0].newURL, NativePath(renamed));
    fs::remove(renamed);
    fs::remove(renamedOther);
}

void TestRename::unchangedNameThatIsNotUtf8IsLeftAlone()
{
    // Its text has U+FFFD where the bytes were; writing that text back would change the name.
    const NativePath raw = NativePath::fromText(m_dir->path()) / fs::path(std::string("caf\xe9.txt"));
    {
        std::ofstream(raw.toStdPath()) << "bytes";
    }
    QVERIFY(RenameEngine::rename(itemsFor({raw}), {replaceAll(u"zzz"_s, u"y"_s)}).isEmpty());
    QVERIFY(fs::exists(raw.toStdPath()));
    // QTemporaryDir cannot remove a name it cannot decode.
    fs::remove(raw.toStdPath());
}

void TestRename::leadingByteOrderMarkStaysInTheNewName()
{
    const NativePath marked = NativePath::fromText(m_dir->path()) / fs::path(std::string("\xEF\xBB\xBFnote.txt"));
    {
        std::ofstream(marked.toStdPath()) << "bytes";
    }
    RenameRule upper(RuleType::CaseConversion);
    upper.caseType = CaseConversionType::Uppercase;
    const QList<RenameResult> results = RenameEngine::rename(itemsFor({marked}), {upper});
    QCOMPARE(results.size(), 1);
    QVERIFY2(results[0].success, qPrintable(results[0].error.value_or(QString())));
    QCOMPARE(results[0].newURL.fileName().native(), QByteArray("\xEF\xBB\xBFNOTE.txt"));
    QVERIFY(fs::exists(results[0].newURL.toStdPath()));
    QVERIFY(!fs::exists(marked.toStdPath()));
    QVERIFY(!fs::exists((NativePath::fromText(m_dir->path()) / NativePath("NOTE.txt")).toStdPath()));
}

void TestRename::invalidNewNamesFailWithTheReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("error");
    QTest::newRow("an empty name") << u"x"_s << QString() << u"The new name is empty."_s;
    QTest::newRow("a single dot") << u"x"_s << u"."_s << u"The name “.” is reserved by the file system."_s;
    QTest::newRow("two dots") << u"x"_s << u".."_s << u"The name “..” is reserved by the file system."_s;
    QTest::newRow("a slash would move the file into another folder")
        << u"x.txt"_s << u"../x"_s << u"The new name contains “/”, which a file name cannot contain."_s;
    QTest::newRow("a NUL character")
        << u"x.txt"_s << u"a\0b"_s
        << u"The new name contains the control character U+0000, which a file name cannot contain."_s;
    QTest::newRow("exactly 255 bytes of UTF-8 with an emoji is allowed")
        << u"x.txt"_s << QString(123, u'é') + u"🎉a"_s << QString();
    QTest::newRow("more than 255 bytes of UTF-8")
        << u"x.txt"_s << QString(126, u'é') << u"The new name is 256 bytes long; a file name can have at most 255."_s;
}

void TestRename::invalidNewNamesFailWithTheReason()
{
    QFETCH(QString, name);
    QFETCH(QString, replacement);
    QFETCH(QString, error);
    const QList<FileItem> files = itemsFor({createFile(name), createFile(u"other.txt"_s)});
    const QList<RenameResult> results =
        RenameEngine::rename(files, {replaceAll(u"x"_s, replacement), replaceAll(u"other"_s, u"fine"_s)});
    QCOMPARE(results.size(), 2);
    QCOMPARE(results[0].success, error.isEmpty());
    QCOMPARE(results[0].error.value_or(QString()), error);
    QCOMPARE(existsInDir(name), !error.isEmpty());
    QVERIFY(results[1].success);
    QVERIFY(existsInDir(u"fine.txt"_s));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).size(), 2);
}

void TestRename::failedMoveInTheMiddleStopsNothing()
{
    const QList<NativePath> paths{"/f/a.txt", "/f/b.txt", "/f/c.txt", "/f/d.txt"};
    FakeFileMover mover({paths[0], paths[2], paths[3]});
    mover.failMove(2, u"Permission denied"_s);
    mover.failMove(3, u"No space left on device"_s);
    RenameRule prefix(RuleType::Insert);
    prefix.insertText = u"new_"_s;
    const QList<RenameResult> results = RenameEngine::rename(itemsFor(paths), {prefix}, mover);
    QCOMPARE(results.size(), 4);
    QVERIFY(results[0].success);
    QCOMPARE(results[1].error, u"No such file or directory"_s);
    QCOMPARE(results[2].error, u"Permission denied"_s);
    QCOMPARE(results[3].error, u"No space left on device"_s);
    QCOMPARE(results[3].newURL.toText(), u"/f/new_d.txt"_s);
    QVERIFY(mover.exists("/f/new_a.txt"));
    QCOMPARE(mover.moves().size(), 4);
    // The batch is over for the mover too, so it keeps nothing open for the next one.
    QCOMPARE(mover.finishedBatches(), 1);
}

void TestRename::largeBatchNamesEveryFileByItsPosition()
{
    // Enough files for the names to be worked out on several threads while the first ones are moved.
    QList<NativePath> paths;
    for (int i = 0; i < 5000; ++i)
        paths.append(NativePath::fromText(u"/f/file %1.txt"_s.arg(i)));
    QList<FileItem> files = itemsFor(paths);
    for (qsizetype i = 0; i < files.size(); i += 7)
        files[i].isSelected = false;
    // Its new name would be too long: refused without a move, in its place in the batch.
    files[4321].url = NativePath::fromText(u"/f/"_s + QString(250, u'x') + u".txt"_s);
    FakeFileMover mover(paths);
    RenameRule numbering(RuleType::Numbering);
    numbering.numberingPadding = 4;
    const QList<RenameResult> results = RenameEngine::rename(files, {numbering}, mover);

    qsizetype next = 0;
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (!files[i].isSelected)
            continue;
        QVERIFY(next < results.size());
        const RenameResult &result = results[next++];
        QCOMPARE(result.originalURL, files[i].url);
        const QString expected = files[i].nameWithoutExtension() + u"_%1.txt"_s.arg(i + 1, 4, 10, QChar(u'0'));
        QCOMPARE(result.newURL.fileNameText(), expected);
        QCOMPARE(result.success, i != 4321);
    }
    QCOMPARE(next, results.size());
    QCOMPARE(mover.moves().size(), results.size() - 1);
}

void TestRename::caseOnlyRenameOnACaseInsensitiveDiskGoesThroughATemporaryName()
{
    FakeFileMover mover({"/f/notes.txt"}, true);
    const QList<RenameResult> results =
        RenameEngine::rename(itemsFor({"/f/notes.txt"}), {RenameRule(RuleType::CaseConversion)}, mover);
    QCOMPARE(results.size(), 1);
    QVERIFY2(results[0].success, qPrintable(results[0].error.value_or(QString())));
    QCOMPARE(mover.moves().size(), 3);
    QCOMPARE(mover.moves()[0], std::make_pair(u"/f/notes.txt"_s, u"/f/Notes.txt"_s));
    const QString temporary = mover.moves()[1].second;
    QVERIFY(temporary.startsWith(u"/f/."_s));
    QCOMPARE(mover.moves()[1].first, u"/f/notes.txt"_s);
    QCOMPARE(mover.moves()[2], std::make_pair(temporary, u"/f/Notes.txt"_s));
    QVERIFY(!mover.exists(NativePath::fromText(temporary)));
}

void TestRename::failedSecondStepMovesTheItemBack()
{
    FakeFileMover mover({"/f/notes.txt"}, true);
    mover.failMove(2, u"Read-only file system"_s);
    const QList<RenameResult> results =
        RenameEngine::rename(itemsFor({"/f/notes.txt"}), {RenameRule(RuleType::CaseConversion)}, mover);
    QCOMPARE(results.size(), 1);
    QVERIFY(!results[0].success);
    QCOMPARE(results[0].error, u"Read-only file system"_s);
    QCOMPARE(mover.moves().size(), 4);
    QCOMPARE(mover.moves()[3], std::make_pair(mover.moves()[1].second, u"/f/notes.txt"_s));
    QVERIFY(mover.exists("/f/notes.txt"));
}

void TestRename::failedMoveBackSaysWhereTheItemIs()
{
    FakeFileMover mover({"/f/notes.txt"}, true);
    mover.failMove(2, u"Read-only file system"_s);
    mover.failMove(3, u"Input/output error"_s);
    const QList<RenameResult> results =
        RenameEngine::rename(itemsFor({"/f/notes.txt"}), {RenameRule(RuleType::CaseConversion)}, mover);
    QCOMPARE(results.size(), 1);
    QVERIFY(!results[0].success);
    const QString temporaryName = NativePath(NativePath::fromText(mover.moves()[1].second)).fileNameText();
    QCOMPARE(results[0].error,
        u"Read-only file system; moving it back failed too (Input/output error), so “notes.txt” is now named “%1”."_s
            .arg(temporaryName));
}

QTEST_APPLESS_MAIN(TestRename)
#include "tst_rename.moc"
