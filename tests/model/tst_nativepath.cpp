#include "model/nativepath.h"

#include <QHash>
#include <QRandomGenerator>
#include <QStringDecoder>
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
    void escapesBytesThatAreNotUtf8_data();
    void escapesBytesThatAreNotUtf8();
    void writesOtherLoneSurrogatesAsTextDoes_data();
    void writesOtherLoneSurrogatesAsTextDoes();
    void escapedTextGivesBackAnyBytes();
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

void TestNativePath::escapesBytesThatAreNotUtf8_data()
{
    QTest::addColumn<QByteArray>("native");
    QTest::addColumn<QString>("escaped");
    QTest::addColumn<QString>("shown");
    QTest::newRow("valid UTF-8 is its own text") << QByteArray("caf\xC3\xA9.txt") << u"café.txt"_s << u"café.txt"_s;
    QTest::newRow("a Latin-1 byte becomes its escape")
        << QByteArray("caf\xE9.txt") << u"caf\xDCE9.txt"_s << u"caf\uFFFD.txt"_s;
    QTest::newRow("two different bytes become two different escapes")
        << QByteArray("\xE8\xE9") << u"\xDCE8\xDCE9"_s << u"\uFFFD\uFFFD"_s;
    QTest::newRow("a valid U+FFFD is not an escape") << QByteArray("\xEF\xBF\xBD") << u"\uFFFD"_s << u"\uFFFD"_s;
    QTest::newRow("each byte of a sequence cut short is escaped") << QByteArray("a\xE2\x82"
                                                                                "b")
                                                                  << u"a\xDCE2\xDC82"
                                                                     u"b"_s
                                                                  << u"a\uFFFD\uFFFDb"_s;
    QTest::newRow("a sequence cut short by the end is escaped")
        << QByteArray("a\xF0\x9F\x92") << u"a\xDCF0\xDC9F\xDC92"_s << u"a\uFFFD\uFFFD\uFFFD"_s;
    QTest::newRow("an overlong encoding is escaped byte by byte")
        << QByteArray("\xC0\xAF") << u"\xDCC0\xDCAF"_s << u"\uFFFD\uFFFD"_s;
    QTest::newRow("the UTF-8 form of a surrogate is escaped byte by byte")
        << QByteArray("\xED\xB3\xA9") << u"\xDCED\xDCB3\xDCA9"_s << u"\uFFFD\uFFFD\uFFFD"_s;
    QTest::newRow("a code point above U+10FFFF is escaped byte by byte")
        << QByteArray("\xF4\x90\x80\x80") << u"\xDCF4\xDC90\xDC80\xDC80"_s << u"\uFFFD\uFFFD\uFFFD\uFFFD"_s;
    QTest::newRow("the lowest escape is a stray continuation byte") << QByteArray("\x80") << u"\xDC80"_s << u"\uFFFD"_s;
    QTest::newRow("the highest escape is the byte 0xFF") << QByteArray("\xFF") << u"\xDCFF"_s << u"\uFFFD"_s;
    QTest::newRow("a character whose second UTF-16 unit lies among the escapes is kept whole")
        << QByteArray("\xF0\x9F\x92\x80") << u"\U0001F480"_s << u"\U0001F480"_s;
    QTest::newRow("an escape right after a four-byte character")
        << QByteArray("\xF0\x9F\x92\x80\xE9") << u"\U0001F480\xDCE9"_s << u"\U0001F480\uFFFD"_s;
    QTest::newRow("a leading byte order mark is kept")
        << QByteArray("\xEF\xBB\xBFnote") << u"\uFEFFnote"_s << u"\uFEFFnote"_s;
    QTest::newRow("a byte order mark cut short is escaped")
        << QByteArray("\xEF\xBBnote") << u"\xDCEF\xDCBBnote"_s << u"\uFFFD\uFFFDnote"_s;
}

void TestNativePath::escapesBytesThatAreNotUtf8()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    QFETCH(QByteArray, native);
    QFETCH(QString, escaped);
    QFETCH(QString, shown);
    const NativePath name(native);
    QCOMPARE(name.toEscapedText(), escaped);
    QCOMPARE(name.toText(), shown);
    QCOMPARE(NativePath::displayText(escaped), shown);
    QCOMPARE(NativePath::fromEscapedText(escaped).native(), native);
    const NativePath inFolder(QByteArray("/t/caf\xE9/") + native);
    QCOMPARE(inFolder.fileNameEscapedText(), escaped);
    QCOMPARE(inFolder.fileNameText(), shown);
    QCOMPARE(inFolder.toEscapedText(), u"/t/caf\xDCE9/"_s + escaped);
    QCOMPARE(NativePath::fromEscapedText(inFolder.toEscapedText()), inFolder);
#endif
}

void TestNativePath::writesOtherLoneSurrogatesAsTextDoes_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a lone low surrogate below the escapes") << u"a\xDC7F"
                                                               u"b"_s;
    QTest::newRow("a lone high surrogate") << u"a\xD800"
                                              u"b"_s;
    QTest::newRow("a lone high surrogate at the end") << u"a\xDBFF"_s;
    QTest::newRow("a high surrogate before an escape makes one character with it") << u"\xD800\xDCE9"_s;
}

void TestNativePath::writesOtherLoneSurrogatesAsTextDoes()
{
    QFETCH(QString, text);
    QCOMPARE(NativePath::fromEscapedText(text), NativePath::fromText(text));
    QCOMPARE(NativePath::displayText(text), text);
}

void TestNativePath::escapedTextGivesBackAnyBytes()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    // Short byte strings drawn mostly from the bytes that start, continue or spoil a UTF-8 sequence.
    static const QByteArray interesting("\x00\x2F\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED"
                                        "\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFE\xFF\xBB\xBD",
        29);
    QRandomGenerator random(20250611);
    QStringDecoder qtDecoder(QStringDecoder::Utf8,
        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    for (int sample = 0; sample < 100'000; ++sample) {
        QByteArray bytes;
        const int length = random.bounded(0, 9);
        for (int i = 0; i < length; ++i) {
            bytes += random.bounded(4) == 0 ? char(random.bounded(256)) : interesting[random.bounded(29)];
        }
        const NativePath location(bytes);
        const QString escaped = location.toEscapedText();
        QCOMPARE(NativePath::fromEscapedText(escaped).native(), bytes);
        // Shown, each escaped byte is one U+FFFD, as Qt's own decoder shows it.
        QCOMPARE(NativePath::displayText(escaped), QString(qtDecoder.decode(bytes)));
        QCOMPARE(location.toText(), NativePath::displayText(escaped));
    }
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
