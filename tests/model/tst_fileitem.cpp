#include "model/bytecount.h"
#include "model/fileattributes.h"
#include "model/fileitem.h"
#include "model/nativepath.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

class TestFileItem final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsNameAndExtension_data();
    void splitsNameAndExtension();
    void folderNamesSplitLikeFiles();
    void creationProbesTheFileSystem();
    void itemsForOneUrlAreDistinct();
    void keepsNamesThatAreNotUtf8();
    void keepsALeadingByteOrderMark();
    void fileUrlsKeepTheirBytes();
    void formatsByteCounts_data();
    void formatsByteCounts();
    void showsSizeAndDateOrADash();
    void attributesOfAFolderHaveNoSize();

private:
    QTemporaryDir m_dir;
};

void TestFileItem::splitsNameAndExtension_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("extension");
    QTest::newRow("only the last extension splits")
        << u"/tmp/x/archive.tar.gz"_s << u"archive.tar.gz"_s << u"archive.tar"_s << u"gz"_s;
    QTest::newRow("no dot, no extension") << u"/tmp/x/README"_s << u"README"_s << u"README"_s << QString();
    QTest::newRow("a hidden file has no extension") << u"/tmp/.bashrc"_s << u".bashrc"_s << u".bashrc"_s << QString();
    QTest::newRow("a hidden file with an extension")
        << u"/tmp/.config.json"_s << u".config.json"_s << u".config"_s << u"json"_s;
    QTest::newRow("a trailing dot is no extension") << u"/tmp/file."_s << u"file."_s << u"file."_s << QString();
    QTest::newRow("a trailing slash names the folder")
        << u"/tmp/Photos.2024/"_s << u"Photos.2024"_s << u"Photos"_s << u"2024"_s;
    QTest::newRow("non-ASCII names") << u"/tmp/Ünïcödé 🎉.txt"_s << u"Ünïcödé 🎉.txt"_s << u"Ünïcödé 🎉"_s << u"txt"_s;
}

void TestFileItem::splitsNameAndExtension()
{
    QFETCH(QString, path);
    QFETCH(QString, name);
    QFETCH(QString, base);
    QFETCH(QString, extension);
    const FileItem item(NativePath::fromText(path));
    QCOMPARE(item.originalName(), name);
    QCOMPARE(item.nameWithoutExtension(), base);
    QCOMPARE(item.fileExtension(), extension);
    QCOMPARE(item.previewName, name);
}

void TestFileItem::folderNamesSplitLikeFiles()
{
    const QString folder = m_dir.filePath(u"Photos.2024"_s);
    QVERIFY(QDir().mkpath(folder));
    const FileItem item(NativePath::fromText(folder));
    QVERIFY(item.isDirectory);
    QCOMPARE(item.nameWithoutExtension(), u"Photos"_s);
    QCOMPARE(item.fileExtension(), u"2024"_s);
    QCOMPARE(item.parentURL().toText(), m_dir.path());
}

void TestFileItem::creationProbesTheFileSystem()
{
    const QString filePath = m_dir.filePath(u"plain.txt"_s);
    QFile file(filePath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const FileItem plain(NativePath::fromText(filePath));
    QVERIFY(!plain.isDirectory);
    QVERIFY(plain.isSelected);
    QVERIFY(!plain.hasConflict);
    QVERIFY(!plain.id.isNull());

    const FileItem missing(NativePath::fromText(m_dir.filePath(u"missing"_s)));
    QVERIFY(!missing.isDirectory);
    QCOMPARE(missing.fileSizeString(), u"—"_s);
    QCOMPARE(missing.modifiedDateString(), u"—"_s);
}

void TestFileItem::itemsForOneUrlAreDistinct()
{
    const NativePath location = NativePath::fromText(m_dir.filePath(u"same.txt"_s));
    const FileItem first(location);
    const FileItem second(location);
    QVERIFY(first != second);
    FileItem copy = first;
    copy.previewName = u"changed"_s;
    copy.url = location.parent();
    QVERIFY(copy == first);
    QCOMPARE(qHash(copy), qHash(first));
    QCOMPARE(QSet<FileItem>({first, second, copy}).size(), 2);
}

void TestFileItem::keepsNamesThatAreNotUtf8()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    const NativePath location = fs::path(QFile::encodeName(m_dir.path()).toStdString()) / "caf\xe9 menu.txt";
    std::ofstream(location.toStdPath()) << "x";
    const FileItem item(location);
    QCOMPARE(item.originalName(), u"caf\uFFFD menu.txt"_s);
    QCOMPARE(item.previewName, u"caf\uFFFD menu.txt"_s);
    QCOMPARE(item.nameWithoutExtension(), u"caf\uFFFD menu"_s);
    QCOMPARE(item.escapedName(), u"caf\xDCE9 menu.txt"_s);
    QCOMPARE(item.url.withFileName(NativePath::fromEscapedText(item.escapedName())), item.url);
    QCOMPARE(item.url.fileName().native(), QByteArray("caf\xe9 menu.txt"));
    QCOMPARE(item.fileSizeString(), u"1 byte"_s);
    QVERIFY(fs::exists(item.url.toStdPath()));
    // QTemporaryDir cannot remove a name it cannot decode.
    fs::remove(location.toStdPath());
#endif
}

void TestFileItem::keepsALeadingByteOrderMark()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    const NativePath location = fs::path(QFile::encodeName(m_dir.path()).toStdString()) / "\xEF\xBB\xBFnote.txt";
    std::ofstream(location.toStdPath()) << "x";
    // QTemporaryDir reads names through a decoder that drops the mark, so it could not remove this one.
    const auto removeFile = qScopeGuard([&] { fs::remove(location.toStdPath()); });
    QVERIFY(fs::exists(location.toStdPath()));
    const FileItem item(location);
    QCOMPARE(item.originalName(), u"\uFEFFnote.txt"_s);
    QCOMPARE(item.nameWithoutExtension(), u"\uFEFFnote"_s);
    QCOMPARE(item.fileExtension(), u"txt"_s);
    QCOMPARE(item.previewName, u"\uFEFFnote.txt"_s);
    QCOMPARE(item.escapedName(), u"\uFEFFnote.txt"_s);
    QCOMPARE(item.url.fileName().native(), QByteArray("\xEF\xBB\xBFnote.txt"));
    QCOMPARE(item.fileSizeString(), u"1 byte"_s);
    // Written back from its text, the name is the same name on disk.
    QCOMPARE(item.url.withFileName(NativePath::fromText(item.originalName())), location);
#endif
}

void TestFileItem::fileUrlsKeepTheirBytes()
{
    QCOMPARE(NativePath::fromLocalFileUrl(QUrl(u"https://example.org/a.txt"_s)), std::nullopt);
    QCOMPARE(NativePath::fromLocalFileUrl(QUrl::fromLocalFile(u"/tmp/caf\u00e9 1.txt"_s)),
        std::optional(NativePath::fromText(u"/tmp/caf\u00e9 1.txt"_s)));
#ifndef Q_OS_WIN
    const auto raw = NativePath::fromLocalFileUrl(QUrl::fromEncoded("file:///tmp/caf%E9%20menu.txt"));
    QVERIFY(raw);
    QCOMPARE(raw->native(), QByteArray("/tmp/caf\xe9 menu.txt"));
#endif
}

void TestFileItem::formatsByteCounts_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing reads Zero KB") << qint64(0) << u"Zero KB"_s;
    QTest::newRow("one byte is singular") << qint64(1) << u"1 byte"_s;
    QTest::newRow("bytes below a kilobyte") << qint64(999) << u"999 bytes"_s;
    QTest::newRow("kilobytes are decimal") << qint64(1000) << u"1 KB"_s;
    QTest::newRow("kilobytes show no fraction") << qint64(1400) << u"1 KB"_s;
    QTest::newRow("megabytes show one decimal") << qint64(1'500'000) << u"1.5 MB"_s;
    QTest::newRow("a whole megabyte drops the zero") << qint64(1'000'000) << u"1 MB"_s;
    QTest::newRow("gigabytes show two decimals") << qint64(2'460'000'000) << u"2.46 GB"_s;
    QTest::newRow("terabytes") << qint64(3'000'000'000'000) << u"3 TB"_s;
}

void TestFileItem::formatsByteCounts()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, text);
    QLocale::setDefault(QLocale::c());
    QCOMPARE(formatByteCount(bytes), text);
}

void TestFileItem::showsSizeAndDateOrADash()
{
    QLocale::setDefault(QLocale::c());
    const QString filePath = m_dir.filePath(u"sized.bin"_s);
    QFile file(filePath);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(1'500'000));
    file.close();
    const FileItem item(NativePath::fromText(filePath));
    QCOMPARE(item.fileSizeString(), u"1.5 MB"_s);
    const QString date = item.modifiedDateString();
    QVERIFY2(date != u"—"_s && date.contains(QString::number(QDate::currentDate().year() % 100)), qPrintable(date));
}

void TestFileItem::attributesOfAFolderHaveNoSize()
{
    const NativePath folder = NativePath::fromText(m_dir.path());
    QCOMPARE(fileattributes::fileSize(folder), std::nullopt);
    QVERIFY(fileattributes::modificationDate(folder).has_value());
    QCOMPARE(FileItem(folder).fileSizeString(), u"—"_s);
    QCOMPARE(fileattributes::modificationDate(folder / "missing"), std::nullopt);
}

QTEST_APPLESS_MAIN(TestFileItem)
#include "tst_fileitem.moc"
