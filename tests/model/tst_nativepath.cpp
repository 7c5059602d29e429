#include "model/nativepath.h"

#include <QHash>
#include <QTest>

#include <unordered_set>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestNativePath final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsLikeTheStandardLibrary_data();
    void splitsLikeTheStandardLibrary();
    void dropsTrailingSeparators_data();
    void dropsTrailingSeparators();
    void joinsAndReplacesNames();
    void tellsWhatLiesWithinAFolder_data();
    void tellsWhatLiesWithinAFolder();
    void keepsBytesThatAreNotUtf8();
    void decodesEveryCharacter_data();
    void decodesEveryCharacter();
    void comparesAndHashesBySpelling();
};

void TestNativePath::splitsLikeTheStandardLibrary_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("parent");
    QTest::newRow("a file in a folder") << u"/a/b/c.txt"_s << u"c.txt"_s << u"/a/b"_s;
    QTest::newRow("an entry of the root") << u"/a"_s << u"a"_s << u"/"_s;
    QTest::newRow("the root") << u"/"_s << u""_s << u"/"_s;
    QTest::newRow("a bare name") << u"a.txt"_s << u"a.txt"_s << u""_s;
    QTest::newRow("a relative path") << u"a/b"_s << u"b"_s << u"a"_s;
    QTest::newRow("doubled separators before the name") << u"/a//b"_s << u"b"_s << u"/a"_s;
    QTest::newRow("a trailing separator names nothing") << u"/a/b/"_s << u""_s << u"/a/b"_s;
    QTest::newRow("a hidden file") << u"/home/.bashrc"_s << u".bashrc"_s << u"/home"_s;
    QTest::newRow("spaces and non-ASCII")
        << u"/t/caf\u00e9 menu/\u00e9t\u00e9 1.jpg"_s << u"\u00e9t\u00e9 1.jpg"_s << u"/t/caf\u00e9 menu"_s;
    QTest::newRow("empty") << u""_s << u""_s << u""_s;
}

void TestNativePath::splitsLikeTheStandardLibrary()
{
    QFETCH(QString, path);
    QFETCH(QString, fileName);
    QFETCH(QString, parent);
    const NativePath location = NativePath::fromText(path);
    QCOMPARE(location.fileName().toText(), fileName);
    QCOMPARE(location.fileNameText(), fileName);
    QCOMPARE(location.parent().toText(), parent);
    // The same answers as std::filesystem::path gives, without its list of components.
    QCOMPARE(NativePath(location.toStdPath().filename()), location.fileName());
    QCOMPARE(NativePath(location.toStdPath().parent_path()), location.parent());
}

void TestNativePath::dropsTrailingSeparators_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none to drop") << u"/a/b"_s << u"/a/b"_s;
    QTest::newRow("one") << u"/a/b/"_s << u"/a/b"_s;
    QTest::newRow("several") << u"a///"_s << u"a"_s;
    QTest::newRow("the root stays") << u"/"_s << u"/"_s;
    QTest::newRow("a doubled root becomes the root") << u"//"_s << u"/"_s;
}

void TestNativePath::dropsTrailingSeparators()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(NativePath::fromText(path).withoutTrailingSeparator().toText(), expected);
}

void TestNativePath::joinsAndReplacesNames()
{
    QCOMPARE((NativePath("/a") / NativePath("b.txt")).toText(), u"/a/b.txt"_s);
    QCOMPARE((NativePath("/") / NativePath("b.txt")).toText(), u"/b.txt"_s);
    QCOMPARE((NativePath("") / NativePath("b.txt")).toText(), u"b.txt"_s);
    QCOMPARE(NativePath("/a/b.txt").withFileName(NativePath("c.txt")).toText(), u"/a/c.txt"_s);
    QCOMPARE(NativePath("b.txt").withFileName(NativePath("c.txt")).toText(), u"c.txt"_s);
    QCOMPARE(NativePath("/b.txt").withFileName(NativePath("c.txt")).toText(), u"/c.txt"_s);
}

void TestNativePath::tellsWhatLiesWithinAFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("isWithin");
    QTest::newRow("the folder itself") << u"/a"_s << u"/a"_s << true;
    QTest::newRow("directly inside") << u"/a/b"_s << u"/a"_s << true;
    QTest::newRow("deep inside") << u"/a/b/c/d"_s << u"/a"_s << true;
    QTest::newRow("a sibling whose name starts alike") << u"/ab/c"_s << u"/a"_s << false;
    QTest::newRow("the folder above") << u"/a"_s << u"/a/b"_s << false;
    QTest::newRow("everything is within the root") << u"/a/b"_s << u"/"_s << true;
}

void TestNativePath::tellsWhatLiesWithinAFolder()
{
    QFETCH(QString, path);
    QFETCH(QString, folder);
    QFETCH(bool, isWithin);
    QCOMPARE(NativePath::fromText(path).isWithin(NativePath::fromText(folder)), isWithin);
}

void TestNativePath::keepsBytesThatAreNotUtf8()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    const NativePath location("/t/caf\xe9/r\xe9sum\xe9.doc");
    QCOMPARE(location.fileName().native(), QByteArray("r\xe9sum\xe9.doc"));
    QCOMPARE(location.parent().native(), QByteArray("/t/caf\xe9"));
    QCOMPARE(location.fileNameText(), u"r\uFFFDsum\uFFFD.doc"_s);
    QCOMPARE(location.withFileName(NativePath::fromText(u"cv.doc"_s)).native(), QByteArray("/t/caf\xe9/cv.doc"));
#endif
}

void TestNativePath::decodesEveryCharacter_data()
{
    QTest::addColumn<QByteArray>("native");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fileName");
    QTest::newRow("a byte order mark that starts a bare name is kept")
        << QByteArray("\xEF\xBB\xBFnote.txt") << u"\uFEFFnote.txt"_s << u"\uFEFFnote.txt"_s;
    QTest::newRow("a byte order mark that starts the name in a folder is kept")
        << QByteArray("/x/\xEF\xBB\xBFnote.txt") << u"/x/\uFEFFnote.txt"_s << u"\uFEFFnote.txt"_s;
    QTest::newRow("a byte order mark that starts a folder is kept")
        << QByteArray("\xEF\xBB\xBFx/a") << u"\uFEFFx/a"_s << u"a"_s;
    QTest::newRow("two byte order marks are both kept")
        << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF") << u"\uFEFF\uFEFF"_s << u"\uFEFF\uFEFF"_s;
    QTest::newRow("a byte order mark inside a name is kept")
        << QByteArray("a\xEF\xBB\xBF.txt") << u"a\uFEFF.txt"_s << u"a\uFEFF.txt"_s;
}

void TestNativePath::decodesEveryCharacter()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    QFETCH(QByteArray, native);
    QFETCH(QString, text);
    QFETCH(QString, fileName);
    const NativePath location(native);
    QCOMPARE(location.toText(), text);
    QCOMPARE(location.fileNameText(), fileName);
    QCOMPARE(location.fileName().toText(), fileName);
    QCOMPARE(NativePath::fromText(text), location);
#endif
}

void TestNativePath::comparesAndHashesBySpelling()
{
    const NativePath first("/a/b");
    const NativePath same = NativePath::fromText(u"/a/b"_s);
    const NativePath other("/a/B");
    QCOMPARE(first, same);
    QVERIFY(first != other);
    QCOMPARE(qHash(first), qHash(same));
    QCOMPARE(std::hash<NativePath>{}(first), std::hash<NativePath>{}(same));
    const std::unordered_set<NativePath> set{first, same, other};
    QCOMPARE(set.size(), std::size_t(2));
    QVERIFY(NativePath("/a") < NativePath("/b"));
}

QTEST_APPLESS_MAIN(TestNativePath)
#include "tst_nativepath.moc"
