#include "engine/renameengine.h"
#include "engine/rulepipeline_p.h"
#include "model/nativepath.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Names that are not valid UTF-8 through every kind of rule: the rules read each byte that is not UTF-8 as
/// an escape, so the bytes no rule touched are written back as they were, while the names are shown with
/// U+FFFD for those bytes.
class TestUndecodableBytes final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rulesKeepTheBytesTheyDoNotTouch_data();
    void rulesKeepTheBytesTheyDoNotTouch();
    void namesDifferingInOneByteStayApart();
};

namespace {

template<typename Edit>
RenameRule rule(RuleType type, Edit edit)
{
    RenameRule made(type);
    edit(made);
    return made;
}

RenameRule replace(const QString &find, const QString &with, bool caseSensitive)
{
    return rule(RuleType::Replace, [&](RenameRule &r) {
        r.findText = find;
        r.replaceText = with;
        r.isCaseSensitive = caseSensitive;
    });
}

RenameRule regexRule(const QString &pattern, const QString &replacement)
{
    return rule(RuleType::Regex, [&](RenameRule &r) {
        r.findText = pattern;
        r.replaceText = replacement;
    });
}

RenameRule caseRule(CaseConversionType type)
{
    return rule(RuleType::CaseConversion, [&](RenameRule &r) { r.caseType = type; });
}

RenameRule removeCount(RemoveTarget target, qint64 count)
{
    return rule(RuleType::Remove, [&](RenameRule &r) {
        r.removeTarget = target;
        r.removeCount = count;
    });
}

RenameRule cleanup(bool trim, bool duplicates, bool underscores, bool special)
{
    return rule(RuleType::Cleanup, [&](RenameRule &r) {
        r.trimWhitespace = trim;
        r.removeDuplicateSpaces = duplicates;
        r.replaceSpacesWithUnderscores = underscores;
        r.removeSpecialChars = special;
    });
}

/// The item for a name in a folder that does not exist, so nothing is probed on disk.
FileItem itemNamed(const QByteArray &name)
{
    return FileItem(NativePath(QByteArray("/nonexistent/") + name), false);
}

/// The bytes the rules give the item's name, as a batch rename writes them.
QByteArray newNameBytes(const QList<RenameRule> &rules, const FileItem &item)
{
    RulePipeline pipeline(rules);
    return NativePath::fromEscapedText(pipeline.newName(item.escapedName(), 0)).native();
}

} // namespace

void TestUndecodableBytes::rulesKeepTheBytesTheyDoNotTouch_data()
{
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("newName");

    QTest::newRow("no rules keep every byte")
        << QList<RenameRule>{} << QByteArray("\xFF\xFE.txt") << QByteArray("\xFF\xFE.txt");
    QTest::newRow("replacing ASCII text keeps the byte")
        << QList{replace(u"caf"_s, u"bar"_s, true)} << QByteArray("caf\xE9.txt") << QByteArray("bar\xE9.txt");
    QTest::newRow("a replace that ignores case keeps the byte")
        << QList{replace(u"CAF"_s, u"bar"_s, false)} << QByteArray("caf\xE9.txt") << QByteArray("bar\xE9.txt");
    QTest::newRow("upper case keeps the byte")
        << QList{caseRule(CaseConversionType::Uppercase)} << QByteArray("caf\xE9.txt") << QByteArray("CAF\xE9.txt");
    QTest::newRow("lower case keeps the byte")
        << QList{caseRule(CaseConversionType::Lowercase)} << QByteArray("CAF\xC9.TXT") << QByteArray("caf\xC9.TXT");
    QTest::newRow("title case keeps the bytes, each a word of its own")
        << QList{caseRule(CaseConversionType::TitleCase)} << QByteArray("\xE9t\xE9 caf\xE9 menu.txt")
        << QByteArray("\xE9T\xE9 Caf\xE9 Menu.txt");
    QTest::newRow("camel case keeps the byte")
        << QList{caseRule(CaseConversionType::CamelCase)} << QByteArray("my caf\xE9 file.txt")
        << QByteArray("myCaf\xE9"
                      "File.txt");
    QTest::newRow("snake case keeps the byte") << QList{caseRule(CaseConversionType::SnakeCase)}
                                               << QByteArray("Caf\xE9 Menu.txt") << QByteArray("caf\xE9_menu.txt");
    QTest::newRow("sentence case keeps a leading byte") << QList{caseRule(CaseConversionType::SentenceCase)}
                                                        << QByteArray("\xE9T\xC9.txt") << QByteArray("\xE9t\xC9.txt");
    QTest::newRow("a pattern of letters passes over the byte")
        << QList{regexRule(u"[a-z]+"_s, u"X"_s)} << QByteArray("caf\xE9menu.txt") << QByteArray("X\xE9X.txt");
    QTest::newRow("a pattern's dot matches a byte, and a group carries it")
        << QList{regexRule(u"(f.)"_s, u"[$1]"_s)} << QByteArray("caf\xE9.txt") << QByteArray("ca[f\xE9].txt");
    QTest::newRow("removing the last character removes the byte whole")
        << QList{removeCount(RemoveTarget::LastN, 1)} << QByteArray("caf\xE9.txt") << QByteArray("caf.txt");
    QTest::newRow("each byte of a sequence cut short counts as one character")
        << QList{removeCount(RemoveTarget::FirstN, 1)} << QByteArray("\xE2\x82x.txt") << QByteArray("\x82x.txt");
    QTest::newRow("inserting at a position counts a byte as one character") << QList{
        rule(RuleType::Insert, [](RenameRule &r) {
            r.insertText = u"-"_s;
            r.insertPosition = InsertPosition::AtIndex;
            r.insertIndex = 4;
        })} << QByteArray("caf\xE9menu.txt") << QByteArray("caf\xE9-menu.txt");
    QTest::newRow("inserting after an anchor keeps the byte") << QList{rule(RuleType::Insert, [](RenameRule &r) {
        r.insertText = u"!"_s;
        r.insertPosition = InsertPosition::AfterText;
        r.insertAnchorText = u"caf"_s;
    })} << QByteArray("caf\xE9.txt") << QByteArray("caf!\xE9.txt");
    QTest::newRow("removing text keeps the byte")
        << QList{rule(RuleType::Remove, [](RenameRule &r) { r.removeText = u"menu"_s; })}
        << QByteArray("caf\xE9 menu.txt") << QByteArray("caf\xE9 .txt");
    QTest::newRow("removing between markers keeps the bytes around them") << QList{
        rule(RuleType::Remove, [](RenameRule &r) {
            r.removeTarget = RemoveTarget::BetweenText;
            r.removeBetweenStart = u"("_s;
            r.removeBetweenEnd = u")"_s;
        })} << QByteArray("\xE9(x)\xE8.txt") << QByteArray("\xE9()\xE8.txt");
    QTest::newRow("cleaning up spaces keeps the byte")
        << QList{cleanup(true, true, true, false)} << QByteArray(" caf\xE9  menu .txt")
        << QByteArray("caf\xE9_menu.txt");
    QTest::newRow("removing special characters drops a byte, as it drops the U+FFFD shown for it")
        << QList{cleanup(false, false, false, true)} << QByteArray("caf\xE9 (1)!.txt") << QByteArray("caf (1).txt");
    QTest::newRow("trimming keeps the byte")
        << QList{rule(RuleType::Trim, [](RenameRule &) {})} << QByteArray(" \xE9 .txt") << QByteArray("\xE9.txt");
    QTest::newRow("numbering keeps the byte")
        << QList{RenameRule(RuleType::Numbering)} << QByteArray("caf\xE9.txt") << QByteArray("caf\xE9_001.txt");
    QTest::newRow("a new extension keeps the byte in the base name")
        << QList{rule(RuleType::ExtensionChange, [](RenameRule &r) { r.newExtension = u"png"_s; })}
        << QByteArray("caf\xE9.txt") << QByteArray("caf\xE9.png");
    QTest::newRow("a byte in the extension is kept")
        << QList{caseRule(CaseConversionType::Uppercase)} << QByteArray("a.t\xE9xt") << QByteArray("A.t\xE9xt");
    QTest::newRow("a valid U+FFFD stays its three bytes")
        << QList{caseRule(CaseConversionType::Uppercase)} << QByteArray("caf\xEF\xBF\xBD.txt")
        << QByteArray("CAF\xEF\xBF\xBD.txt");
    QTest::newRow("the UTF-8 form of a surrogate keeps its three bytes")
        << QList{caseRule(CaseConversionType::Uppercase)} << QByteArray("\xED\xB3\xA9x.txt")
        << QByteArray("\xED\xB3\xA9X.txt");
    QTest::newRow("a character whose second UTF-16 unit lies among the escapes is no byte")
        << QList{removeCount(RemoveTarget::LastN, 1)}
        << QByteArray("a\xF0\x9F\x92\x80"
                      "b.txt")
        << QByteArray("a\xF0\x9F\x92\x80.txt");
    QTest::newRow("a valid name is unaffected") << QList{caseRule(CaseConversionType::Uppercase)}
                                                << QByteArray("caf\xC3\xA9.txt") << QByteArray("CAF\xC3\x89.txt");
    // A user who sees U+FFFD in a name types U+FFFD to find it.
    QTest::newRow("a U+FFFD in a search text matches a byte shown as U+FFFD")
        << QList{replace(u"\uFFFD"_s, u"e"_s, true)} << QByteArray("caf\xE9 1.txt") << QByteArray("cafe 1.txt");
    QTest::newRow("a U+FFFD in a search text that ignores case matches a byte shown as U+FFFD")
        << QList{replace(u"CAF\uFFFD"_s, u"x"_s, false)} << QByteArray("caf\xE9.txt") << QByteArray("x.txt");
    QTest::newRow("a U+FFFD in a search text still matches a valid U+FFFD")
        << QList{replace(u"\uFFFD"_s, u"e"_s, true)} << QByteArray("caf\xEF\xBF\xBD.txt") << QByteArray("cafe.txt");
    QTest::newRow("a U+FFFD in a search text matches one byte at a time")
        << QList{replace(u"\uFFFD"_s, u"_"_s, true)} << QByteArray("\xE2\x82x.txt") << QByteArray("__x.txt");
    QTest::newRow("a search text with U+FFFD that ignores case matches sharp s against SS")
        << QList{replace(u"straße\uFFFD"_s, u"x"_s, false)} << QByteArray("STRASSE\xE9.txt") << QByteArray("x.txt");
    QTest::newRow("a search text with U+FFFD reads pattern characters literally")
        << QList{replace(u"(.)\uFFFD"_s, u"x"_s, true)} << QByteArray("a(.)\xE9z.txt") << QByteArray("axz.txt");
    QTest::newRow("a search text with U+FFFD finds a character beyond the basic plane")
        << QList{replace(u"\U0001F480\uFFFD"_s, u"x"_s, true)} << QByteArray("a\xF0\x9F\x92\x80\xE9.txt")
        << QByteArray("ax.txt");
    QTest::newRow("removing U+FFFD removes the bytes shown as it")
        << QList{rule(RuleType::Remove, [](RenameRule &r) { r.removeText = u"\uFFFD"_s; })}
        << QByteArray("caf\xE9\xE8.txt") << QByteArray("caf.txt");
    QTest::newRow("a marker with U+FFFD finds a byte and keeps it") << QList{rule(RuleType::Remove, [](RenameRule &r) {
        r.removeTarget = RemoveTarget::BetweenText;
        r.removeBetweenStart = u"\uFFFD"_s;
        r.removeBetweenEnd = u"z"_s;
    })} << QByteArray("a\xE9mid z.txt") << QByteArray("a\xE9z.txt");
    QTest::newRow("an anchor with U+FFFD finds a byte and keeps it") << QList{rule(RuleType::Insert, [](RenameRule &r) {
        r.insertText = u"!"_s;
        r.insertPosition = InsertPosition::AfterText;
        r.insertAnchorText = u"caf\uFFFD"_s;
    })} << QByteArray("CAF\xE9.txt") << QByteArray("CAF\xE9!.txt");
    QTest::newRow("a pattern is read as written: its U+FFFD matches only U+FFFD")
        << QList{regexRule(u"\uFFFD"_s, u"e"_s)} << QByteArray("caf\xE9.txt") << QByteArray("caf\xE9.txt");
    QTest::newRow("a leading byte order mark is kept")
        << QList{caseRule(CaseConversionType::Uppercase)} << QByteArray("\xEF\xBB\xBFnote.txt")
        << QByteArray("\xEF\xBB\xBFNOTE.txt");
}

void TestUndecodableBytes::rulesKeepTheBytesTheyDoNotTouch()
{
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, newName);
    const FileItem item = itemNamed(name);
    QCOMPARE(newNameBytes(rules, item), newName);
    // The preview shows both names as text, with U+FFFD for each byte that is not UTF-8.
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, {item});
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].original, NativePath(name).toText());
    QCOMPARE(entries[0].preview, NativePath(newName).toText());
}

void TestUndecodableBytes::namesDifferingInOneByteStayApart()
{
    const QList<RenameRule> rules{caseRule(CaseConversionType::Uppercase)};
    const QList<FileItem> items{itemNamed("caf\xE9.txt"), itemNamed("caf\xE8.txt")};
    QCOMPARE(newNameBytes(rules, items[0]), QByteArray("CAF\xE9.txt"));
    QCOMPARE(newNameBytes(rules, items[1]), QByteArray("CAF\xE8.txt"));
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, items);
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0].preview, u"CAF\uFFFD.txt"_s);
    QCOMPARE(entries[1].preview, u"CAF\uFFFD.txt"_s);
    // Shown alike, they are two names on disk: neither clashes with the other.
    QVERIFY(!entries[0].hasConflict);
    QVERIFY(!entries[1].hasConflict);
}

QTEST_APPLESS_MAIN(TestUndecodableBytes)
#include "tst_undecodablebytes.moc"
