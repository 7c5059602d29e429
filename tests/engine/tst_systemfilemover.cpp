#include "engine/posixmove_p.h"
#include "engine/systemfilemover.h"
#include "model/nativepath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

/// The move primitive on the real file system: it never replaces anything and explains each failure.
class TestSystemFileMover final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void movesAFile();
    void neverReplacesAnExistingItem_data();
    void neverReplacesAnExistingItem();
    void movesAFolder();
    void missingSourceFailsWithTheSystemMessage();
    void tellsWhetherTwoPathsAreOneItem();
    void danglingLinkExists();
    void fallbacksNeverReplace_data();
    void fallbacksNeverReplace();
    void linkingMovesASymbolicLinkItself();
    void aFolderClaimThatGainedContentsIsNotReplaced();
    void spellingsOfOneEntryAreOneItem();
    void removesOnlyASecondLink();
    void movesWithinAFolderItJustRenamed();
    void aFinishedBatchForgetsItsFolder();

private:
    fs::path path(const QString &name) const { return NativePath::fromText(m_dir->filePath(name)).toStdPath(); }
    /// An item of the test folder named relative to the folder's descriptor, as the mover names them.
    posixmove::Location inFolder(const char *name) const { return {m_folderDescriptor, name}; }
    NativePath write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;

    std::unique_ptr<QTemporaryDir> m_dir;
    int m_folderDescriptor = -1;
};

void TestSystemFileMover::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_folderDescriptor = open(QFile::encodeName(m_dir->path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QVERIFY(m_folderDescriptor >= 0);
}

void TestSystemFileMover::cleanup()
{
    close(m_folderDescriptor);
}

NativePath TestSystemFileMover::write(const QString &name, const QByteArray &content) const
{
    QFile file(m_dir->filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot create a test file");
    return path(name);
}

QByteArray TestSystemFileMover::read(const QString &name) const
{
    QFile file(m_dir->filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestSystemFileMover::movesAFile()
{
    SystemFileMover mover;
    write(u"a.txt"_s, "content");
    QCOMPARE(mover.move(path(u"a.txt"_s), path(u"b.txt"_s)), std::nullopt);
    QVERIFY(!mover.exists(path(u"a.txt"_s)));
    QCOMPARE(read(u"b.txt"_s), "content");
}

void TestSystemFileMover::neverReplacesAnExistingItem_data()
{
    QTest::addColumn<QString>("destinationKind");
    QTest::newRow("a file stays") << u"file"_s;
    QTest::newRow("an empty folder stays") << u"folder"_s;
    QTest::newRow("a dangling symbolic link stays") << u"link"_s;
}

void TestSystemFileMover::neverReplacesAnExistingItem()
{
    QFETCH(QString, destinationKind);
    SystemFileMover mover;
    write(u"a.txt"_s, "new");
    if (destinationKind == u"file")
        write(u"b.txt"_s, "precious");
    else if (destinationKind == u"folder")
        QVERIFY(QDir(m_dir->path()).mkdir(u"b.txt"_s));
    else
        fs::create_symlink("nowhere", path(u"b.txt"_s));

    const std::optional<MoveError> error = mover.move(path(u"a.txt"_s), path(u"b.txt"_s));
    QVERIFY(error);
    QCOMPARE(error->kind, MoveError::Kind::DestinationExists);
    QCOMPARE(error->message, u"A file named “b.txt” already exists."_s);
    QCOMPARE(read(u"a.txt"_s), "new");
    if (destinationKind == u"file")
        QCOMPARE(read(u"b.txt"_s), "precious");
    else if (destinationKind == u"folder")
        QVERIFY(fs::is_directory(path(u"b.txt"_s)));
    else
        QCOMPARE(fs::read_symlink(path(u"b.txt"_s)), fs::path("nowhere"));
}

void TestSystemFileMover::movesAFolder()
{
    SystemFileMover mover;
    QVERIFY(QDir(m_dir->path()).mkpath(u"old/inner"_s));
    QCOMPARE(mover.move(path(u"old"_s), path(u"new"_s)), std::nullopt);
    QVERIFY(fs::is_directory(path(u"new/inner"_s)));
    QVERIFY(!mover.exists(path(u"old"_s)));
}

void TestSystemFileMover::missingSourceFailsWithTheSystemMessage()
{
    SystemFileMover mover;
    const std::optional<MoveError> error = mover.move(path(u"gone.txt"_s), path(u"b.txt"_s));
    QVERIFY(error);
    QCOMPARE(error->kind, MoveError::Kind::Other);
    QCOMPARE(error->message, u"No such file or directory"_s);
}

void TestSystemFileMover::tellsWhetherTwoPathsAreOneItem()
{
    SystemFileMover mover;
    write(u"a.txt"_s, "a");
    write(u"b.txt"_s, "b");
    fs::create_hard_link(path(u"a.txt"_s), path(u"link.txt"_s));
    QVERIFY(mover.isSameItem(path(u"a.txt"_s), path(u"a.txt"_s)));
    QVERIFY(mover.isSameItem(path(u"a.txt"_s), path(u"link.txt"_s)));
    QVERIFY(!mover.isSameItem(path(u"a.txt"_s), path(u"b.txt"_s)));
    QVERIFY(!mover.isSameItem(path(u"a.txt"_s), path(u"missing.txt"_s)));
}

void TestSystemFileMover::danglingLinkExists()
{
    SystemFileMover mover;
    fs::create_symlink("nowhere", path(u"link"_s));
    QVERIFY(mover.exists(path(u"link"_s)));
    QVERIFY(!mover.exists(path(u"nowhere"_s)));
}

void TestSystemFileMover::fallbacksNeverReplace_data()
{
    // Where a file system refuses the no-replace flag, files are linked, or moved onto a claim where there are
    // no links either; folders are moved onto a claim.
    QTest::addColumn<bool>("isFolder");
    QTest::addColumn<bool>("isLinked");
    QTest::addColumn<bool>("isProtected");
    QTest::newRow("linking a file") << false << true << true;
    QTest::newRow("a file onto a claimed name") << false << false << false;
    QTest::newRow("a folder onto a claimed folder") << true << false << true;
}

void TestSystemFileMover::fallbacksNeverReplace()
{
    QFETCH(bool, isFolder);
    QFETCH(bool, isLinked);
    QFETCH(bool, isProtected);
    posixmove::Protection protection = posixmove::Protection::Unprotected;
    const auto fallback = [&](posixmove::Location from, posixmove::Location to) {
        return isLinked ? posixmove::moveByLinking(from, to, protection)
                        : posixmove::moveOntoClaim(from, to, isFolder, protection);
    };
    if (isFolder)
        QVERIFY(QDir(m_dir->path()).mkpath(u"a/inner"_s));
    else
        write(u"a"_s, "new");
    write(u"b"_s, "precious");

    const std::optional<MoveError> refused = fallback(inFolder("a"), inFolder("b"));
    QVERIFY(refused);
    QCOMPARE(refused->kind, MoveError::Kind::DestinationExists);
    QCOMPARE(refused->message, u"A file named “b” already exists."_s);
    QCOMPARE(read(u"b"_s), "precious");
    QVERIFY(fs::exists(path(u"a"_s)));

    QCOMPARE(fallback(inFolder("a"), inFolder("c")), std::nullopt);
    QCOMPARE(protection == posixmove::Protection::Atomic, isProtected);
    QVERIFY(!fs::exists(path(u"a"_s)));
    if (isFolder)
        QVERIFY(fs::is_directory(path(u"c/inner"_s)));
    else
        QCOMPARE(read(u"c"_s), "new");
}

void TestSystemFileMover::linkingMovesASymbolicLinkItself()
{
    write(u"target"_s, "data");
    fs::create_symlink("target", path(u"link"_s));
    posixmove::Protection protection = posixmove::Protection::Unprotected;
    QCOMPARE(posixmove::moveByLinking(inFolder("link"), inFolder("moved"), protection), std::nullopt);
    QVERIFY(fs::is_symlink(path(u"moved"_s)));
    QCOMPARE(fs::read_symlink(path(u"moved"_s)), fs::path("target"));
    QVERIFY(!fs::exists(fs::symlink_status(path(u"link"_s))));
}

void TestSystemFileMover::aFolderClaimThatGainedContentsIsNotReplaced()
{
    // Another program puts a file into the folder that claims the name: the rename onto it fails, and the
    // claim with that file stays.
    QVERIFY(QDir(m_dir->path()).mkpath(u"a"_s));
    QVERIFY(QDir(m_dir->path()).mkpath(u"b"_s));
    write(u"b/theirs"_s, "precious");
    QCOMPARE(renameat(AT_FDCWD, path(u"a"_s).c_str(), AT_FDCWD, path(u"b"_s).c_str()), -1);
    QCOMPARE(errno, ENOTEMPTY);
    QCOMPARE(read(u"b/theirs"_s), "precious");
}

void TestSystemFileMover::spellingsOfOneEntryAreOneItem()
{
    // Where the folder lists only one spelling of two that differ in case, both name that entry; here, on a
    // file system that tells case, two spellings are two items unless both are the same entry.
    write(u"Photo.JPG"_s, "data");
    write(u"other.jpg"_s, "data");
    SystemFileMover mover;
    QVERIFY(!mover.isSameItem(path(u"Photo.JPG"_s), path(u"photo.jpg"_s)));
    write(u"photo.jpg"_s, "data");
    QVERIFY(!mover.isSameItem(path(u"Photo.JPG"_s), path(u"photo.jpg"_s)));
    QVERIFY(mover.isSameItem(path(u"Photo.JPG"_s), path(u"Photo.JPG"_s)));
}

void TestSystemFileMover::removesOnlyASecondLink()
{
    write(u"a"_s, "data");
    write(u"b"_s, "data");
    SystemFileMover mover;
    QVERIFY(mover.removeSecondName(path(u"a"_s), path(u"b"_s)));
    QVERIFY(fs::exists(path(u"a"_s)));
    QVERIFY(mover.removeSecondName(path(u"a"_s), path(u"a"_s)));
    QVERIFY(fs::exists(path(u"a"_s)));
    fs::create_hard_link(path(u"a"_s), path(u"c"_s));
    QCOMPARE(mover.removeSecondName(path(u"c"_s), path(u"a"_s)), std::nullopt);
    QVERIFY(!fs::exists(path(u"c"_s)));
    QCOMPARE(read(u"a"_s), "data");
}

void TestSystemFileMover::movesWithinAFolderItJustRenamed()
{
    QVERIFY(QDir(m_dir->path()).mkpath(u"d"_s));
    write(u"d/a"_s, "data");
    SystemFileMover mover;
    QCOMPARE(mover.move(path(u"d/a"_s), path(u"d/b"_s)), std::nullopt);
    QCOMPARE(mover.move(path(u"d"_s), path(u"e"_s)), std::nullopt);
    QCOMPARE(mover.move(path(u"e/b"_s), path(u"e/c"_s)), std::nullopt);
    QCOMPARE(read(u"e/c"_s), "data");
    const std::optional<MoveError> gone = mover.move(path(u"d/c"_s), path(u"d/x"_s));
    QVERIFY(gone);
    QCOMPARE(gone->kind, MoveError::Kind::Other);
}

void TestSystemFileMover::aFinishedBatchForgetsItsFolder()
{
    // Between two batches the folder of the first moves away and another takes its name: the second batch
    // renames in the folder that has the name now.
    QVERIFY(QDir(m_dir->path()).mkpath(u"d"_s));
    write(u"d/a"_s, "first");
    SystemFileMover mover;
    QCOMPARE(mover.move(path(u"d/a"_s), path(u"d/b"_s)), std::nullopt);
    mover.finishBatch();
    QVERIFY(QDir(m_dir->path()).rename(u"d"_s, u"old"_s));
    QVERIFY(QDir(m_dir->path()).mkpath(u"d"_s));
    write(u"d/b"_s, "second");
    QCOMPARE(mover.move(path(u"d/b"_s), path(u"d/c"_s)), std::nullopt);
    QCOMPARE(read(u"d/c"_s), "second");
    QCOMPARE(read(u"old/b"_s), "first");
}

QTEST_APPLESS_MAIN(TestSystemFileMover)
#include "tst_systemfilemover.moc"
