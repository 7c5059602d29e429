#include "engine/renameengine.h"
#include "model/nativepath.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

/// New names of a batch and the clashes among them, computed without touching the disk.
class TestPreview final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesAndMarksClashes_data();
    void namesAndMarksClashes();
    void largeBatchMatchesNameByName();
    void nameThatIsNotUtf8IsShownWithReplacementCharacters();
    void leadingByteOrderMarkIsKept();
    void clashesCompareTheBytesOfNames_data();
    void clashesCompareTheBytesOfNames();
};

namespace {

QList<FileItem> filesAt(const QStringList &paths)
{
    QList<FileItem> files;
    for (const QString &path : paths)
        files.append(FileItem(NativePath::fromText(path)));
    return files;
}

RenameRule extensionChange(const QString &extension, bool enabled = true)
{
    RenameRule rule(RuleType::ExtensionChange);
    rule.newExtension = extension;
    rule.isEnabled = enabled;
    return rule;
}

RenameRule replaceAll(const QString &find, const QString &with)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = find;
    rule.replaceText = with;
    return rule;
}

RenameRule caseRule(CaseConversionType type)
{
    RenameRule rule(RuleType::CaseConversion);
    rule.caseType = type;
    return rule;
}

} // namespace

void TestPreview::namesAndMarksClashes_data()
{
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QStringList>("previews");
    QTest::addColumn<QList<bool>>("conflicts");

    QTest::newRow("no rules keep every name, none clashing")
        << QList<RenameRule>{} << QStringList{u"/x/a.txt"_s, u"/x/b"_s} << QStringList{u"a.txt"_s, u"b"_s}
        << QList<bool>{false, false};
    QTest::newRow("the same name in another folder and case clashes with the first")
        << QList<RenameRule>{} << QStringList{u"/x/a.txt"_s, u"/y/A.TXT"_s} << QStringList{u"a.txt"_s, u"A.TXT"_s}
        << QList<bool>{false, true};
    QTest::newRow("a plain search does not read its text as a pattern")
        << QList{replaceAll(u"\\d"_s, QString())} << QStringList{u"/x/a1.txt"_s, u"/x/a2.txt"_s, u"/x/a3.txt"_s}
        << QStringList{u"a1.txt"_s, u"a2.txt"_s, u"a3.txt"_s} << QList<bool>{false, false, false};
    QTest::newRow("rules that give three files one name mark the second and third")
        << QList{[] {
               RenameRule rule(RuleType::Remove);
               rule.removeTarget = RemoveTarget::LastN;
               return rule;
           }()}
        << QStringList{u"/x/a1.txt"_s, u"/x/a2.txt"_s, u"/x/a3.txt"_s}
        << QStringList{u"a.txt"_s, u"a.txt"_s, u"a.txt"_s} << QList<bool>{false, true, true};
    QTest::newRow("non-ASCII names clash ignoring case")
        << QList<RenameRule>{} << QStringList{u"/x/Ärger.txt"_s, u"/y/äRGER.txt"_s}
        << QStringList{u"Ärger.txt"_s, u"äRGER.txt"_s} << QList<bool>{false, true};
    QTest::newRow("clashes compare lower-cased names, so sharp s and SS differ")
        << QList<RenameRule>{} << QStringList{u"/x/Straße"_s, u"/y/STRASSE"_s} << QStringList{u"Straße"_s, u"STRASSE"_s}
        << QList<bool>{false, false};
    QTest::newRow("the last enabled extension rule wins over a disabled later one")
        << QList{extensionChange(u"png"_s), extensionChange(u"gif"_s, false)} << QStringList{u"/x/photo.jpg"_s}
        << QStringList{u"photo.png"_s} << QList<bool>{false};
    QTest::newRow("of two enabled extension rules the later wins, wherever they stand")
        << QList{extensionChange(u"gif"_s), caseRule(CaseConversionType::Uppercase), extensionChange(u"png"_s)}
        << QStringList{u"/x/photo.jpg"_s} << QStringList{u"PHOTO.png"_s} << QList<bool>{false};
    QTest::newRow("an empty new extension removes it")
        << QList{extensionChange(QString())} << QStringList{u"/x/report.pdf"_s} << QStringList{u"report"_s}
        << QList<bool>{false};
    QTest::newRow("a new extension with a dot gives two dots")
        << QList{extensionChange(u".jpg"_s)} << QStringList{u"/x/photo.png"_s} << QStringList{u"photo..jpg"_s}
        << QList<bool>{false};
    QTest::newRow("a file without extension gets no trailing dot")
        << QList{caseRule(CaseConversionType::Uppercase)} << QStringList{u"/x/readme"_s} << QStringList{u"README"_s}
        << QList<bool>{false};
    QTest::newRow("a case rule leaves the extension's case")
        << QList{caseRule(CaseConversionType::Uppercase)} << QStringList{u"/x/a.txt"_s} << QStringList{u"A.txt"_s}
        << QList<bool>{false};
    QTest::newRow("a folder's extension is kept like a file's")
        << QList{caseRule(CaseConversionType::Uppercase)} << QStringList{u"/x/Photos.2024/"_s}
        << QStringList{u"PHOTOS.2024"_s} << QList<bool>{false};
    QTest::newRow("numbering follows the position in the batch")
        << QList{RenameRule(RuleType::Numbering)} << QStringList{u"/x/a.txt"_s, u"/x/b.txt"_s, u"/x/c"_s}
        << QStringList{u"a_001.txt"_s, u"b_002.txt"_s, u"c_003"_s} << QList<bool>{false, false, false};
}

void TestPreview::namesAndMarksClashes()
{
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QStringList, paths);
    QFETCH(QStringList, previews);
    QFETCH(QList<bool>, conflicts);
    const QList<FileItem> files = filesAt(paths);
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, files);
    QCOMPARE(entries.size(), files.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        QCOMPARE(entries[i].original, files[i].originalName());
        QCOMPARE(entries[i].preview, previews[i]);
        QCOMPARE(entries[i].hasConflict, conflicts[i]);
    }
}

void TestPreview::largeBatchMatchesNameByName()
{
    // Large batches are named on several threads; the result must be that of a plain pass in order.
    RenameRule numbering(RuleType::Numbering);
    numbering.numberingPosition = NumberingPosition::Replace;
    numbering.numberingStart = 0;
    RenameRule everyThousand(RuleType::Regex);
    everyThousand.findText = u"\\d\\d\\d$"_s;
    const QList<RenameRule> rules{numbering, everyThousand, caseRule(CaseConversionType::TitleCase)};
    QStringList paths;
    for (int i = 0; i < 9999; ++i)
        paths.append(u"/x/file %1.txt"_s.arg(i));
    const QList<FileItem> files = filesAt(paths);
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, files);
    QCOMPARE(entries.size(), files.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString expected =
            RenameEngine::applyRules(rules, files[i].nameWithoutExtension(), i, u"txt"_s) + u".txt"_s;
        QCOMPARE(entries[i].preview, expected);
        // Numbers 0 to 999 drop all three digits, 1000 to 1999 keep "1", and so on: the first of each clashes
        // with nothing before it.
        QCOMPARE(entries[i].hasConflict, i % 1000 != 0);
    }
}

void TestPreview::nameThatIsNotUtf8IsShownWithReplacementCharacters()
{
    const FileItem file(fs::path("/x") / fs::path(std::string("caf\xe9.txt")));
    const QList<PreviewEntry> entries = RenameEngine::preview({caseRule(CaseConversionType::Uppercase)}, {file});
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].original, u"caf\ufffd.txt"_s);
    QCOMPARE(entries[0].preview, u"CAF\ufffd.txt"_s);
}

void TestPreview::leadingByteOrderMarkIsKept()
{
    const FileItem file(fs::path("/x") / fs::path(std::string("\xEF\xBB\xBFnote.txt")));
    const QList<PreviewEntry> entries = RenameEngine::preview({caseRule(CaseConversionType::Uppercase)}, {file});
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].original, u"\uFEFFnote.txt"_s);
    QCOMPARE(entries[0].preview, u"\uFEFFNOTE.txt"_s);
}

void TestPreview::clashesCompareTheBytesOfNames_data()
{
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QByteArrayList>("paths");
    QTest::addColumn<QStringList>("previews");
    QTest::addColumn<QList<bool>>("conflicts");
    const QList<RenameRule> upper{caseRule(CaseConversionType::Uppercase)};
    QTest::newRow("names that differ only in a byte that is not UTF-8 do not clash, though shown alike")
        << upper << QByteArrayList{"/x/caf\xE9.txt", "/x/caf\xE8.txt"}
        << QStringList{u"CAF\uFFFD.txt"_s, u"CAF\uFFFD.txt"_s} << QList<bool>{false, false};
    QTest::newRow("a byte that is not UTF-8 does not clash with a valid U+FFFD")
        << upper << QByteArrayList{"/x/caf\xE9.txt", "/y/caf\xEF\xBF\xBD.txt"}
        << QStringList{u"CAF\uFFFD.txt"_s, u"CAF\uFFFD.txt"_s} << QList<bool>{false, false};
    QTest::newRow("the same byte in names that differ in case clashes")
        << QList<RenameRule>{} << QByteArrayList{"/x/caf\xE9.txt", "/y/CAF\xE9.TXT"}
        << QStringList{u"caf\uFFFD.txt"_s, u"CAF\uFFFD.TXT"_s} << QList<bool>{false, true};
    QTest::newRow("rules that leave two names the same bytes make them clash")
        << QList{replaceAll(u"b"_s, u"a"_s)} << QByteArrayList{"/x/a\xE9.txt", "/x/b\xE9.txt"}
        << QStringList{u"a\uFFFD.txt"_s, u"a\uFFFD.txt"_s} << QList<bool>{false, true};
}

void TestPreview::clashesCompareTheBytesOfNames()
{
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QByteArrayList, paths);
    QFETCH(QStringList, previews);
    QFETCH(QList<bool>, conflicts);
    QList<FileItem> files;
    for (const QByteArray &path : std::as_const(paths))
        files.append(FileItem(NativePath(path), false));
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, files);
    QCOMPARE(entries.size(), files.size());
    for (qsizetype i = 0; i < files.size(); ++i) {
        QCOMPARE(entries[i].original, files[i].originalName());
        QCOMPARE(entries[i].preview, previews[i]);
        QCOMPARE(entries[i].hasConflict, conflicts[i]);
    }
}

QTEST_APPLESS_MAIN(TestPreview)
#include "tst_preview.moc"
