#include "engine/renameengine.h"

#include <QDate>
#include <QTest>

#include <unicode/locid.h>
#include <unicode/timezone.h>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// Each kind of rule, and the pipeline that runs them in order.
class TestApplyRules final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void transformsTheName_data();
    void transformsTheName();
    void pathologicalPatternIsCutShort();
    void stampsTheCurrentDate_data();
    void stampsTheCurrentDate();
};

namespace {

template<typename Edit>
RenameRule rule(RuleType type, Edit edit)
{
    RenameRule made(type);
    edit(made);
    return made;
}

RenameRule replace(const QString &find, const QString &with, bool caseSensitive = false, bool regex = false)
{
    return rule(RuleType::Replace, [&](RenameRule &r) {
        r.findText = find;
        r.replaceText = with;
        r.isCaseSensitive = caseSensitive;
        r.useRegex = regex;
    });
}

RenameRule regexRule(const QString &pattern, const QString &replacement)
{
    return rule(RuleType::Regex, [&](RenameRule &r) {
        r.findText = pattern;
        r.replaceText = replacement;
    });
}

RenameRule insert(const QString &text, InsertPosition position, qint64 index = 0, const QString &anchor = {})
{
    return rule(RuleType::Insert, [&](RenameRule &r) {
        r.insertText = text;
        r.insertPosition = position;
        r.insertIndex = index;
        r.insertAnchorText = anchor;
    });
}

RenameRule removeCount(RemoveTarget target, qint64 count)
{
    return rule(RuleType::Remove, [&](RenameRule &r) {
        r.removeTarget = target;
        r.removeCount = count;
    });
}

RenameRule removeRange(qint64 from, qint64 to)
{
    return rule(RuleType::Remove, [&](RenameRule &r) {
        r.removeTarget = RemoveTarget::FromTo;
        r.removeFromIndex = from;
        r.removeToIndex = to;
    });
}

RenameRule removeText(const QString &text)
{
    return rule(RuleType::Remove, [&](RenameRule &r) { r.removeText = text; });
}

RenameRule removeBetween(const QString &start, const QString &end)
{
    return rule(RuleType::Remove, [&](RenameRule &r) {
        r.removeTarget = RemoveTarget::BetweenText;
        r.removeBetweenStart = start;
        r.removeBetweenEnd = end;
    });
}

RenameRule caseRule(CaseConversionType type)
{
    return rule(RuleType::CaseConversion, [&](RenameRule &r) { r.caseType = type; });
}

RenameRule numbering(qint64 start, qint64 step, qint64 padding, NumberingPosition position, const QString &separator)
{
    return rule(RuleType::Numbering, [&](RenameRule &r) {
        r.numberingStart = start;
        r.numberingStep = step;
        r.numberingPadding = padding;
        r.numberingPosition = position;
        r.numberingSeparator = separator;
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

RenameRule disabled(RenameRule made)
{
    made.isEnabled = false;
    return made;
}

} // namespace

void TestApplyRules::transformsTheName_data()
{
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("index");
    QTest::addColumn<QString>("expected");

    auto row = [](const char *description, QList<RenameRule> rules, const QString &name, const QString &expected) {
        QTest::newRow(description) << rules << name << qint64(0) << expected;
    };

    row("no rules keep the name", {}, u"name"_s, u"name"_s);
    row("a disabled rule of any kind has no effect",
        {disabled(replace(u"a"_s, u"b"_s)),
            disabled(caseRule(CaseConversionType::Uppercase)),
            disabled(numbering(1, 1, 3, NumberingPosition::Suffix, u"_"_s)),
            disabled(rule(RuleType::Trim, [](RenameRule &) {}))},
        u" a "_s,
        u" a "_s);
    row("an extension change leaves the base name alone",
        {rule(RuleType::ExtensionChange, [](RenameRule &r) { r.newExtension = u"png"_s; })},
        u"photo"_s,
        u"photo"_s);
    row("later rules see the output of earlier ones",
        {insert(u"new "_s, InsertPosition::Beginning), caseRule(CaseConversionType::Uppercase)},
        u"file"_s,
        u"NEW FILE"_s);

    // Replace.
    row("replace ignores case by default", {replace(u"img"_s, u"Photo"_s)}, u"IMG_0001"_s, u"Photo_0001"_s);
    row("a case-sensitive replace needs the exact case",
        {replace(u"img"_s, u"Photo"_s, true)},
        u"IMG_0001"_s,
        u"IMG_0001"_s);
    row("replace changes every occurrence, left to right without overlaps",
        {replace(u"aa"_s, u"b"_s)},
        u"aaaaa"_s,
        u"bba"_s);
    row("an empty search text finds nothing", {replace(QString(), u"x"_s)}, u"abc"_s, u"abc"_s);
    row("a literal replacement keeps dollar signs", {replace(u"a"_s, u"$1\\"_s)}, u"bab"_s, u"b$1\\b"_s);
    row("a literal search treats pattern characters literally", {replace(u"(.)"_s, u"-"_s)}, u"a(.)b"_s, u"a-b"_s);
    row("a case-insensitive search matches sharp s against SS",
        {replace(u"straße"_s, u"road"_s)},
        u"STRASSE 1"_s,
        u"road 1"_s);
    row("a case-insensitive match replaces its exact range in the original text",
        {replace(u"é"_s, u"e"_s)},
        u"CAFÉ é"_s,
        u"CAFe e"_s);
    row("a regex replace expands groups", {replace(u"(\\d+)"_s, u"#$1"_s, false, true)}, u"a12b3"_s, u"a#12b#3"_s);
    row("a regex replace with an empty pattern leaves the name",
        {replace(QString(), u"x"_s, false, true)},
        u"abc"_s,
        u"abc"_s);
    row("camel case keeps no separators and lower-cases a single piece",
        {caseRule(CaseConversionType::CamelCase)},
        u"ÄB__c"_s,
        u"äbC"_s);
    row("an invalid regex leaves the name", {replace(u"("_s, u"x"_s, false, true)}, u"a(b"_s, u"a(b"_s);
    row("a regex replace ignores case unless told", {replace(u"img"_s, u"x"_s, false, true)}, u"IMG img"_s, u"x x"_s);
    row("a case-sensitive regex replace", {replace(u"img"_s, u"x"_s, true, true)}, u"IMG img"_s, u"IMG x"_s);

    // Regular expression rule.
    row("a regex with lookahead", {regexRule(u"\\d(?=px)"_s, u"N"_s)}, u"1px 2em 3px"_s, u"Npx 2em Npx"_s);
    row("a regex with a backreference", {regexRule(u"(\\w)\\1"_s, u"<$1>"_s)}, u"aabcc"_s, u"<a>b<c>"_s);
    row("an escaped dollar in the template is literal",
        {regexRule(u"(\\d+)"_s, u"\\$$1"_s)},
        u"cost 5"_s,
        u"cost $5"_s);
    row("a template naming a missing group leaves the name", {regexRule(u"a"_s, u"$2"_s)}, u"abc"_s, u"abc"_s);
    row("the regex rule is always case-sensitive", {regexRule(u"img"_s, u"x"_s)}, u"IMG img"_s, u"IMG x"_s);
    row("an invalid pattern leaves the name", {regexRule(u"[a"_s, u"x"_s)}, u"[abc"_s, u"[abc"_s);
    row("an empty pattern leaves the name", {regexRule(QString(), u"x"_s)}, u"abc"_s, u"abc"_s);

    // Insert.
    row("insert at the beginning", {insert(u"x"_s, InsertPosition::Beginning)}, u"abc"_s, u"xabc"_s);
    row("insert at the end", {insert(u"x"_s, InsertPosition::End)}, u"abc"_s, u"abcx"_s);
    row("insert at a position", {insert(u"x"_s, InsertPosition::AtIndex, 1)}, u"abc"_s, u"axbc"_s);
    row("insert beyond the end appends", {insert(u"x"_s, InsertPosition::AtIndex, 99)}, u"abc"_s, u"abcx"_s);
    row("insert before the start prepends", {insert(u"x"_s, InsertPosition::AtIndex, -5)}, u"abc"_s, u"xabc"_s);
    row("insert positions count a skin-toned emoji as one character",
        {insert(u"x"_s, InsertPosition::AtIndex, 2)},
        u"a👍🏽b"_s,
        u"a👍🏽xb"_s);
    row("insert positions count a flag as one character",
        {insert(u"x"_s, InsertPosition::AtIndex, 1)},
        u"🇩🇪🇫🇷"_s,
        u"🇩🇪x🇫🇷"_s);
    row("insert positions count a combining accent with its letter",
        {insert(u"x"_s, InsertPosition::AtIndex, 1)},
        u"e\u0301a"_s,
        u"e\u0301xa"_s);
    row("insert positions count CR LF as one character",
        {insert(u"x"_s, InsertPosition::AtIndex, 2)},
        u"a\r\nb"_s,
        u"a\r\nxb"_s);
    row("insert before an anchor rewrites it in the anchor's spelling",
        {insert(u"new_"_s, InsertPosition::BeforeText, 0, u"report"_s)},
        u"Q3 REPORT"_s,
        u"Q3 new_report"_s);
    row("insert after an anchor", {insert(u"!"_s, InsertPosition::AfterText, 0, u"b"_s)}, u"abcb"_s, u"ab!cb"_s);
    row("a missing anchor leaves the name", {insert(u"!"_s, InsertPosition::AfterText, 0, u"x"_s)}, u"abc"_s, u"abc"_s);
    row("an empty anchor is never found",
        {insert(u"!"_s, InsertPosition::BeforeText, 0, QString())},
        u"abc"_s,
        u"abc"_s);

    // Remove.
    row("remove more first characters than there are", {removeCount(RemoveTarget::FirstN, 10)}, u"abc"_s, QString());
    row("remove the last character", {removeCount(RemoveTarget::LastN, 1)}, u"abc"_s, u"ab"_s);
    row("remove no characters", {removeCount(RemoveTarget::FirstN, 0)}, u"abc"_s, u"abc"_s);
    row("remove the first emoji with its skin tone", {removeCount(RemoveTarget::FirstN, 1)}, u"👍🏽ok"_s, u"ok"_s);
    row("remove the last flag whole", {removeCount(RemoveTarget::LastN, 1)}, u"a🇩🇪🇫🇷"_s, u"a🇩🇪"_s);
    row("remove the last accented letter whole", {removeCount(RemoveTarget::LastN, 1)}, u"cafe\u0301"_s, u"caf"_s);
    row("remove a range", {removeRange(1, 3)}, u"abcdef"_s, u"adef"_s);
    row("a reversed range removes nothing", {removeRange(3, 1)}, u"abcdef"_s, u"abcdef"_s);
    row("a range past the end is clamped", {removeRange(2, 100)}, u"abcdef"_s, u"ab"_s);
    row("a range counts grapheme clusters", {removeRange(1, 2)}, u"a👨‍👩‍👧b"_s, u"ab"_s);
    row("remove text in any case", {removeText(u"COPY"_s)}, u"copy a Copy b COPY"_s, u" a  b "_s);
    row("remove empty text removes nothing", {removeText(QString())}, u"abc"_s, u"abc"_s);
    row("remove between two strings keeps the markers",
        {removeBetween(u"("_s, u")"_s)},
        u"Holiday (copy) 2"_s,
        u"Holiday () 2"_s);
    row("identical markers find the same occurrence", {removeBetween(u"_"_s, u"_"_s)}, u"a_b_c"_s, u"a_b_c"_s);
    row("an end marker before the start marker removes nothing",
        {removeBetween(u"["_s, u"]"_s)},
        u"a]b[c"_s,
        u"a]b[c"_s);
    row("markers are found in any case", {removeBetween(u"x"_s, u"Y"_s)}, u"aXbcyd"_s, u"aXyd"_s);
    row("a missing marker removes nothing", {removeBetween(u"("_s, u")"_s)}, u"a(b"_s, u"a(b"_s);

    // Case conversion.
    row("upper case, sharp s grows", {caseRule(CaseConversionType::Uppercase)}, u"straße"_s, u"STRASSE"_s);
    row("upper case of a dotless i is a plain I", {caseRule(CaseConversionType::Uppercase)}, u"ıi"_s, u"II"_s);
    row("lower case of a dotted capital I keeps the dot as a combining mark",
        {caseRule(CaseConversionType::Lowercase)},
        u"İI"_s,
        u"i\u0307i"_s);
    row("lower case", {caseRule(CaseConversionType::Lowercase)}, u"ÀB C"_s, u"àb c"_s);
    row("title case capitalises every word",
        {caseRule(CaseConversionType::TitleCase)},
        u"hELLO wORLD"_s,
        u"Hello World"_s);
    row("title case starts a word after a digit at the digit",
        {caseRule(CaseConversionType::TitleCase)},
        u"2nd place"_s,
        u"2nd Place"_s);
    row("title case keeps an apostrophe inside its word",
        {caseRule(CaseConversionType::TitleCase)},
        u"don't stop"_s,
        u"Don't Stop"_s);
    row("title case treats a hyphen as a word break",
        {caseRule(CaseConversionType::TitleCase)},
        u"hello-world"_s,
        u"Hello-World"_s);
    row("title case of a Turkish dotless i ignores the user's locale",
        {caseRule(CaseConversionType::TitleCase)},
        u"ılık istanbul"_s,
        u"Ilık Istanbul"_s);
    row("camel case splits at spaces, underscores and hyphens",
        {caseRule(CaseConversionType::CamelCase)},
        u"my_file-NAME v2"_s,
        u"myFileNameV2"_s);
    row("camel case with an empty first piece",
        {caseRule(CaseConversionType::CamelCase)},
        u"-draft copy"_s,
        u"DraftCopy"_s);
    row("snake case", {caseRule(CaseConversionType::SnakeCase)}, u"Hello World"_s, u"hello_world"_s);
    row("snake case keeps hyphens and doubles for two spaces",
        {caseRule(CaseConversionType::SnakeCase)},
        u"A-b  C"_s,
        u"a-b__c"_s);
    row("sentence case", {caseRule(CaseConversionType::SentenceCase)}, u"hELLO wORLD"_s, u"Hello world"_s);
    row("sentence case of the empty text", {caseRule(CaseConversionType::SentenceCase)}, QString(), QString());
    row("sentence case takes a leading space as the first character",
        {caseRule(CaseConversionType::SentenceCase)},
        u" aB"_s,
        u" ab"_s);
    row("sentence case of a leading sharp s", {caseRule(CaseConversionType::SentenceCase)}, u"ßA"_s, u"SSa"_s);
    row("sentence case upper-cases an accented first character whole",
        {caseRule(CaseConversionType::SentenceCase)},
        u"e\u0301TÉ"_s,
        u"E\u0301té"_s);

    // Numbering.
    row("numbering with the defaults", {RenameRule(RuleType::Numbering)}, u"name"_s, u"name_001"_s);
    row("numbering replacing the name", {numbering(1, 1, 3, NumberingPosition::Replace, u"_"_s)}, u"name"_s, u"001"_s);
    row("numbering as a prefix", {numbering(10, 5, 2, NumberingPosition::Prefix, u"-"_s)}, u"name"_s, u"10-name"_s);
    row("numbering without padding", {numbering(10, 5, 0, NumberingPosition::Prefix, u"-"_s)}, u"name"_s, u"10-name"_s);
    row("numbering padded to four digits",
        {numbering(10, 5, 4, NumberingPosition::Prefix, u"-"_s)},
        u"name"_s,
        u"0010-name"_s);
    row("a minus sign counts toward the padding",
        {numbering(-1, 1, 3, NumberingPosition::Suffix, QString())},
        u"n"_s,
        u"n-01"_s);
    row("a padding wider than a later rule leaves is exact",
        {numbering(7, 1, 300, NumberingPosition::Replace, QString()), removeCount(RemoveTarget::FirstN, 290)},
        u"n"_s,
        u"0000000007"_s);
    row("a padding wider than a file name is exact as a prefix too",
        {numbering(7, 1, 300, NumberingPosition::Prefix, u"_"_s), removeCount(RemoveTarget::FirstN, 296)},
        u"name"_s,
        u"0007_name"_s);
    row("a padding of the widest 4096 digits is exact",
        {numbering(7, 1, 4096, NumberingPosition::Replace, QString()), removeCount(RemoveTarget::FirstN, 4090)},
        u"n"_s,
        u"000007"_s);
    row("a padding one above the widest stops at 4096 digits",
        {numbering(7, 1, 4097, NumberingPosition::Replace, QString()), removeCount(RemoveTarget::FirstN, 4090)},
        u"n"_s,
        u"000007"_s);
    row("a padding of two to the 31st stops at 4096 digits",
        {numbering(7, 1, qint64(1) << 31, NumberingPosition::Replace, QString())},
        u"n"_s,
        QString(4095, u'0') + u'7');
    row("a negative number padded beyond the widest keeps its sign within 4096 characters",
        {numbering(-7, 1, 5000, NumberingPosition::Replace, QString())},
        u"n"_s,
        u'-' + QString(4094, u'0') + u'7');
    row("long numbers are not cut",
        {numbering(123456, 1, 3, NumberingPosition::Replace, QString())},
        u"n"_s,
        u"123456"_s);
    row("two numbering rules both number from the file's position",
        {RenameRule(RuleType::Numbering), RenameRule(RuleType::Numbering)},
        u"a"_s,
        u"a_001_001"_s);
    QTest::newRow("numbering uses the file's position")
        << QList{numbering(10, 5, 2, NumberingPosition::Prefix, u"-"_s)} << u"name"_s << qint64(1) << u"15-name"_s;
    QTest::newRow("numbering at the very top of the 64-bit range")
        << QList{numbering(std::numeric_limits<qint64>::max() - 2, 1, 0, NumberingPosition::Replace, QString())}
        << u"n"_s << qint64(2) << u"9223372036854775807"_s;

    // Clean-up and trim.
    row("clean-up with every flag", {cleanup(true, true, true, true)}, u"  my   file (1)!!  "_s, u"my_file_(1)"_s);
    row("clean-up only replacing spaces", {cleanup(false, false, true, false)}, u" a b "_s, u"_a_b_"_s);
    row("dropping a special character can leave two spaces",
        {cleanup(false, true, false, true)},
        u"a ! b"_s,
        u"a  b"_s);
    row("clean-up keeps letters, marks and digits of every script",
        {cleanup(false, false, false, true)},
        u"Ünï-cödé_日本.٣ (x)🎉+"_s,
        u"Ünï-cödé_日本.٣ (x)"_s);
    row("clean-up trims tabs and no-break spaces but not line breaks",
        {cleanup(true, false, false, false)},
        u"\t\u00a0a\n"_s,
        u"a\n"_s);
    row("collapsing spaces leaves tabs", {cleanup(false, true, false, false)}, u"a \t  b"_s, u"a \t b"_s);
    row("trim stops at a line break", {rule(RuleType::Trim, [](RenameRule &) {})}, u"\tname \n"_s, u"name \n"_s);
}

void TestApplyRules::transformsTheName()
{
    QFETCH(QList<RenameRule>, rules);
    QFETCH(QString, name);
    QFETCH(qint64, index);
    QFETCH(QString, expected);
    QCOMPARE(RenameEngine::applyRules(rules, name, index, u"txt"_s), expected);
}

void TestApplyRules::pathologicalPatternIsCutShort()
{
    const QString name = QString(40, u'a') + u'!';
    QElapsedTimer timer;
    timer.start();
    for (const bool useRegexRule : {true, false}) {
        const RenameRule pattern =
            useRegexRule ? regexRule(u"(a+)+$"_s, u"x"_s) : replace(u"(a+)+$"_s, u"x"_s, true, true);
        QCOMPARE(RenameEngine::applyRules({pattern}, name, 0, QString()), name);
    }
    QVERIFY2(timer.elapsed() < 2000, qPrintable(u"took %1 ms"_s.arg(timer.elapsed())));
    // The bound does not stop patterns that finish normally.
    QCOMPARE(RenameEngine::applyRules({regexRule(u"(a+)+$"_s, u"x"_s)}, u"baaa"_s, 0, QString()), u"bx"_s);
}

void TestApplyRules::stampsTheCurrentDate_data()
{
    QTest::addColumn<InsertPosition>("position");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");
    const QString today = QDate::currentDate().toString(u"yyyy-MM-dd"_s);
    QTest::newRow("a date at the beginning") << InsertPosition::Beginning << u"yyyy-MM-dd"_s << today + u"_Report"_s;
    QTest::newRow("a date at the end") << InsertPosition::End << u"yyyy-MM-dd"_s << u"Report_"_s + today;
    QTest::newRow("any other position puts the date at the end")
        << InsertPosition::AfterText << u"yyyy-MM-dd"_s << u"Report_"_s + today;
    QTest::newRow("quoted text in the pattern")
        << InsertPosition::End << u"'v'yyyy"_s << u"Report_v"_s + QString::number(QDate::currentDate().year());
    QTest::newRow("an empty pattern gives an empty date") << InsertPosition::Beginning << QString() << u"_Report"_s;
}

void TestApplyRules::stampsTheCurrentDate()
{
    QFETCH(InsertPosition, position);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    const RenameRule stamp = rule(RuleType::DateStamp, [&](RenameRule &r) {
        r.dateFormat = format;
        r.datePosition = position;
    });
    // The date is read at the call; retry once if midnight passed in between.
    QString result = RenameEngine::applyRules({stamp}, u"Report"_s, 0, QString());
    if (result != expected)
        result = RenameEngine::applyRules({stamp}, u"Report"_s, 0, QString());
    QCOMPARE(result, expected);
}

QTEST_APPLESS_MAIN(TestApplyRules)
#include "tst_applyrules.moc"
