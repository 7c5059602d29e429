#include "model/fileattributes.h"
#include "model/nativepath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <optional>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr time_t someSecond = 1'700'000'000;

/// Sets the modification time to the nanosecond; the access time is left as it is.
bool setModificationTime(const NativePath &path, long nanoseconds)
{
    const timespec times[2] = {{0, UTIME_OMIT}, {someSecond, nanoseconds}};
    return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

} // namespace

class TestFileAttributes final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void onlyRegularFilesHaveASize_data();
    void onlyRegularFilesHaveASize();
    void modificationTimeKeepsMicroseconds();
    void modificationDateIsToTheMillisecond();
    void missingItemHasNoTime();

private:
    [[nodiscard]] NativePath path(const QString &relative) const
    {
        return NativePath::fromText(m_dir.filePath(relative));
    }
    void writeFile(const QString &relative, const QByteArray &content) const
    {
        QFile file(m_dir.filePath(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    QTemporaryDir m_dir;
};

void TestFileAttributes::initTestCase()
{
    QVERIFY(m_dir.isValid());
    writeFile(u"three.txt"_s, "abc");
    writeFile(u"empty.txt"_s, {});
    QVERIFY(QDir(m_dir.path()).mkdir(u"folder"_s));
    fs::create_symlink("three.txt", path(u"link to file"_s).toStdPath());
    fs::create_symlink("folder", path(u"link to folder"_s).toStdPath());
    fs::create_symlink("nowhere", path(u"dangling link"_s).toStdPath());
    QCOMPARE(mkfifo(path(u"pipe"_s).c_str(), 0600), 0);
}

void TestFileAttributes::onlyRegularFilesHaveASize_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<std::optional<qint64>>("size");
    QTest::newRow("a file has the size of its content") << u"three.txt"_s << std::optional<qint64>(3);
    QTest::newRow("an empty file has size zero") << u"empty.txt"_s << std::optional<qint64>(0);
    QTest::newRow("a link to a file has the file's size") << u"link to file"_s << std::optional<qint64>(3);
    QTest::newRow("a folder has none") << u"folder"_s << std::optional<qint64>();
    QTest::newRow("a link to a folder has none") << u"link to folder"_s << std::optional<qint64>();
    QTest::newRow("a link to nothing has none") << u"dangling link"_s << std::optional<qint64>();
    QTest::newRow("a named pipe has none") << u"pipe"_s << std::optional<qint64>();
    QTest::newRow("a missing item has none") << u"missing"_s << std::optional<qint64>();
}

void TestFileAttributes::onlyRegularFilesHaveASize()
{
    QFETCH(QString, name);
    QFETCH(std::optional<qint64>, size);
    QCOMPARE(fileattributes::fileSize(path(name)), size);
}

void TestFileAttributes::modificationTimeKeepsMicroseconds()
{
    writeFile(u"earlier"_s, {});
    writeFile(u"later"_s, {});
    QVERIFY(setModificationTime(path(u"earlier"_s), 500'001'000));
    QVERIFY(setModificationTime(path(u"later"_s), 500'004'000));
    const auto earlier = fileattributes::modificationTime(path(u"earlier"_s));
    const auto later = fileattributes::modificationTime(path(u"later"_s));
    QVERIFY(earlier && later);
    QCOMPARE(std::chrono::duration_cast<std::chrono::nanoseconds>(*later - *earlier).count(), 3'000);
}

void TestFileAttributes::modificationDateIsToTheMillisecond()
{
    writeFile(u"dated"_s, {});
    QVERIFY(setModificationTime(path(u"dated"_s), 123'456'789));
    QCOMPARE(fileattributes::modificationDate(path(u"dated"_s)),
        std::optional(QDateTime::fromMSecsSinceEpoch(someSecond * 1000 + 123, Qt::UTC)));
}

void TestFileAttributes::missingItemHasNoTime()
{
    QCOMPARE(fileattributes::modificationTime(path(u"missing"_s)), std::nullopt);
    QCOMPARE(fileattributes::modificationDate(path(u"missing"_s)), std::nullopt);
}

QTEST_APPLESS_MAIN(TestFileAttributes)
#include "tst_fileattributes.moc"
