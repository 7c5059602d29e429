#include "parser/naturallanguageparser.h"

#include <QJsonObject>
#include <QSet>
#include <QTest>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

/// Every field of every suggestion except the rule's id (which is always fresh), one line per field, so that a
/// mismatch names the suggestion and the field.
QStringList dump(const QList<ParsedRule> &suggestions)
{
    QStringList lines;
    for (qsizetype index = 0; index < suggestions.size(); ++index) {
        const ParsedRule &suggestion = suggestions.at(index);
        const QString prefix = QString::number(index) + u' ';
        QJsonObject fields = suggestion.rule.toJson();
        fields.remove(u"id"_s);
        for (auto field = fields.constBegin(); field != fields.constEnd(); ++field)
            lines.append(prefix + field.key() + u": "_s + field.value().toVariant().toString());
        lines.append(prefix + u"confidence: "_s + QString::number(suggestion.confidence));
        lines.append(prefix + u"description: "_s + suggestion.description);
    }
    return lines;
}

ParsedRule suggestion(const RenameRule &rule, double confidence, const QString &description)
{
    return ParsedRule{rule, confidence, description};
}

RenameRule replaceRule(const QString &findText, const QString &replaceText)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = findText;
    rule.replaceText = replaceText;
    return rule;
}

RenameRule insertRule(const QString &insertText, InsertPosition position, qint64 insertIndex = 0)
{
    RenameRule rule(RuleType::Insert);
    rule.insertText = insertText;
    rule.insertPosition = position;
    rule.insertIndex = insertIndex;
    return rule;
}

RenameRule removeCountRule(RemoveTarget target, qint64 count)
{
    RenameRule rule(RuleType::Remove);
    rule.removeTarget = target;
    rule.removeCount = count;
    return rule;
}

RenameRule removeTextRule(const QString &text)
{
    RenameRule rule(RuleType::Remove);
    rule.removeTarget = RemoveTarget::Text;
    rule.removeText = text;
    return rule;
}

RenameRule caseRule(CaseConversionType caseType)
{
    RenameRule rule(RuleType::CaseConversion);
    rule.caseType = caseType;
    return rule;
}

RenameRule numberingRule(qint64 start, NumberingPosition position)
{
    RenameRule rule(RuleType::Numbering);
    rule.numberingStart = start;
    rule.numberingPosition = position;
    return rule;
}

RenameRule cleanupRule(bool removeSpecialChars)
{
    RenameRule rule(RuleType::Cleanup);
    rule.removeSpecialChars = removeSpecialChars;
    return rule;
}

RenameRule dateRule(InsertPosition position)
{
    RenameRule rule(RuleType::DateStamp);
    rule.datePosition = position;
    return rule;
}

ParsedRule caseSuggestion(CaseConversionType caseType, const QString &description)
{
    return suggestion(caseRule(caseType), 0.9, description);
}

ParsedRule cleanupSuggestion(bool removeSpecialChars)
{
    return suggestion(cleanupRule(removeSpecialChars), 0.8, u"Cleanup filenames"_s);
}

ParsedRule dateSuggestion(InsertPosition position)
{
    return suggestion(dateRule(position), 0.8, u"Add today's date"_s);
}

} // namespace

class TestNaturalLanguageParser final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void understandsNothing_data();
    void understandsNothing() { checkSuggestions(); }
    void replaceCommands_data();
    void replaceCommands() { checkSuggestions(); }
    void insertCommands_data();
    void insertCommands() { checkSuggestions(); }
    void removeCommands_data();
    void removeCommands() { checkSuggestions(); }
    void caseCommands_data();
    void caseCommands() { checkSuggestions(); }
    void numberingCommands_data();
    void numberingCommands() { checkSuggestions(); }
    void cleanupAndDateCommands_data();
    void cleanupAndDateCommands() { checkSuggestions(); }
    void commandsWithSeveralSuggestions_data();
    void commandsWithSeveralSuggestions() { checkSuggestions(); }
    void everySuggestionGetsAFreshId();
    void suggestionsCompareEveryField();
    void parsesAlikeOnSeveralThreads();

private:
    static void addColumns();
    static void checkSuggestions();
};

void TestNaturalLanguageParser::addColumns()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QStringList>("expected");
}

void TestNaturalLanguageParser::checkSuggestions()
{
    QFETCH(QString, input);
    QFETCH(QStringList, expected);
    QCOMPARE(dump(NaturalLanguageParser::parse(input)), expected);
}

void TestNaturalLanguageParser::understandsNothing_data()
{
    addColumns();
    QTest::newRow("empty input") << QString() << QStringList();
    QTest::newRow("blanks only") << u"   "_s << QStringList();
    QTest::newRow("blanks, tabs and newlines only") << u" \n\t \r\n"_s << QStringList();
    QTest::newRow("words that name no rule") << u"hello world"_s << QStringList();
}

void TestNaturalLanguageParser::replaceCommands_data()
{
    addColumns();
    const auto replace = [](const QString &findText, const QString &replaceText, const QString &description) {
        return dump({suggestion(replaceRule(findText, replaceText), 0.95, description)});
    };
    QTest::newRow("plain words") << u"replace foo with bar"_s
                                 << replace(u"foo"_s, u"bar"_s, u"Replace \"foo\" \u2192 \"bar\""_s);
    QTest::newRow("quoted texts may hold spaces: the quoted form wins over the plain one")
        << u"replace \"my file\" with \"your file\""_s
        << replace(u"my file"_s, u"your file"_s, u"Replace \"my file\" \u2192 \"your file\""_s);
    QTest::newRow("quoted single words lose their quotes")
        << u"replace \"a\" with \"b\""_s << replace(u"a"_s, u"b"_s, u"Replace \"a\" \u2192 \"b\""_s);
    QTest::newRow("only one text quoted: the plain form keeps the quotes")
        << u"replace \"a\" with b"_s << replace(u"\"a\""_s, u"b"_s, u"Replace \"\"a\"\" \u2192 \"b\""_s);
    QTest::newRow("the plain form takes one word after with")
        << u"replace a with b c"_s << replace(u"a"_s, u"b"_s, u"Replace \"a\" \u2192 \"b\""_s);
    QTest::newRow("the command may stand inside a sentence")
        << u"please replace x with y now"_s << replace(u"x"_s, u"y"_s, u"Replace \"x\" \u2192 \"y\""_s);
    QTest::newRow("newlines separate words like blanks")
        << u"replace\nfoo\nwith\nbar"_s << replace(u"foo"_s, u"bar"_s, u"Replace \"foo\" \u2192 \"bar\""_s);
    QTest::newRow("change with quoted texts")
        << u"change \"old name\" to \"new name\""_s
        << replace(u"old name"_s, u"new name"_s, u"Replace \"old name\" \u2192 \"new name\""_s);
    QTest::newRow("change with plain words")
        << u"change old to new"_s << replace(u"old"_s, u"new"_s, u"Replace \"old\" \u2192 \"new\""_s);
    QTest::newRow("rename with quoted texts")
        << u"rename \"draft\" to \"final\""_s
        << replace(u"draft"_s, u"final"_s, u"Replace \"draft\" \u2192 \"final\""_s);
    QTest::newRow("rename needs quotes") << u"rename draft to final"_s << QStringList();
    QTest::newRow("swap replaces one way only")
        << u"swap \"a\" with \"b\""_s << replace(u"a"_s, u"b"_s, u"Replace \"a\" \u2192 \"b\""_s);
    QTest::newRow("swap needs quotes") << u"swap a with b"_s << QStringList();
    QTest::newRow("a capitalised command word is not understood") << u"Replace Foo with Bar"_s << QStringList();
    QTest::newRow("the texts keep the case they were typed in")
        << u"replace Foo with BAR"_s << replace(u"Foo"_s, u"BAR"_s, u"Replace \"Foo\" \u2192 \"BAR\""_s);
    QTest::newRow("trailing blanks and newlines are ignored")
        << u"replace foo with bar  \n"_s << replace(u"foo"_s, u"bar"_s, u"Replace \"foo\" \u2192 \"bar\""_s);
    QTest::newRow("leading blanks are ignored")
        << u"  replace foo with bar"_s << replace(u"foo"_s, u"bar"_s, u"Replace \"foo\" \u2192 \"bar\""_s);
    QTest::newRow("non-ASCII texts, an emoji among them")
        << u"replace \u00C4 with \U0001F389"_s
        << replace(u"\u00C4"_s, u"\U0001F389"_s, u"Replace \"\u00C4\" \u2192 \"\U0001F389\""_s);
    QTest::newRow("a dotted capital I is kept as typed")
        << u"replace \"\u0130stanbul\" with \"Ankara\""_s
        << replace(u"\u0130stanbul"_s, u"Ankara"_s, u"Replace \"\u0130stanbul\" \u2192 \"Ankara\""_s);
    QTest::newRow("percent signs in the texts are literal")
        << u"replace %1 with %2"_s << replace(u"%1"_s, u"%2"_s, u"Replace \"%1\" \u2192 \"%2\""_s);
}

void TestNaturalLanguageParser::insertCommands_data()
{
    addColumns();
    const auto insert = [](const RenameRule &rule, double confidence, const QString &description) {
        return dump({suggestion(rule, confidence, description)});
    };
    QTest::newRow("add at the end, quoted text is lower-cased")
        << u"add \"ABC\" at the end"_s
        << insert(insertRule(u"abc"_s, InsertPosition::End), 0.9, u"Add \"abc\" at end"_s);
    QTest::newRow("add at the end, plain text")
        << u"add v2 at the end"_s << insert(insertRule(u"v2"_s, InsertPosition::End), 0.9, u"Add \"v2\" at end"_s);
    QTest::newRow("add at the end, quoted text keeps inner spaces")
        << u"add \"my tag\" at the end"_s
        << insert(insertRule(u"my tag"_s, InsertPosition::End), 0.9, u"Add \"my tag\" at end"_s);
    QTest::newRow("add at the end, an opening quote alone is dropped")
        << u"add \"abc at the end"_s << insert(insertRule(u"abc"_s, InsertPosition::End), 0.9, u"Add \"abc\" at end"_s);
    QTest::newRow("add at the beginning")
        << u"add v2 at the beginning"_s
        << insert(insertRule(u"v2"_s, InsertPosition::Beginning), 0.9, u"Add \"v2\" at beginning"_s);
    QTest::newRow("add at the start") << u"add \"v2\" at the start"_s
                                      << insert(insertRule(u"v2"_s, InsertPosition::Beginning),
                                             0.9,
                                             u"Add \"v2\" at beginning"_s);
    QTest::newRow("prefix with, quoted") << u"prefix with \"Draft\""_s
                                         << insert(insertRule(u"draft"_s, InsertPosition::Beginning),
                                                0.9,
                                                u"Prefix with \"draft\""_s);
    QTest::newRow("prefix without with") << u"prefix draft"_s
                                         << insert(insertRule(u"draft"_s, InsertPosition::Beginning),
                                                0.9,
                                                u"Prefix with \"draft\""_s);
    QTest::newRow("append, quoted") << u"append \"_final\""_s
                                    << insert(insertRule(u"_final"_s, InsertPosition::End),
                                           0.85,
                                           u"Append \"_final\""_s);
    QTest::newRow("append, plain") << u"append final"_s
                                   << insert(insertRule(u"final"_s, InsertPosition::End), 0.85, u"Append \"final\""_s);
    QTest::newRow("insert after an ordinal word: the ordinal itself is the index")
        << u"insert \"-\" after the third character"_s
        << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 3), 0.85, u"Insert \"-\" at position 3"_s);
    QTest::newRow("insert after the tenth character")
        << u"insert x after the tenth character"_s
        << insert(insertRule(u"x"_s, InsertPosition::AtIndex, 10), 0.85, u"Insert \"x\" at position 10"_s);
    QTest::newRow("insert after digits") << u"insert \"-\" after the 12 character"_s
                                         << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 12),
                                                0.85,
                                                u"Insert \"-\" at position 12"_s);
    QTest::newRow("insert after digits, without the")
        << u"insert - after 12 character"_s
        << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 12), 0.85, u"Insert \"-\" at position 12"_s);
    QTest::newRow("an unknown ordinal counts as 1")
        << u"insert \"-\" after the umpteenth character"_s
        << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 1), 0.85, u"Insert \"-\" at position 1"_s);
    QTest::newRow("digits too large for 64 bits count as 1")
        << u"insert - after the 99999999999999999999 character"_s
        << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 1), 0.85, u"Insert \"-\" at position 1"_s);
    QTest::newRow("non-ASCII digits count as 1")
        << u"insert - after the \u0663 character"_s
        << insert(insertRule(u"-"_s, InsertPosition::AtIndex, 1), 0.85, u"Insert \"-\" at position 1"_s);
    QTest::newRow("trailing blanks and newlines are ignored")
        << u"append foo \n\n"_s << insert(insertRule(u"foo"_s, InsertPosition::End), 0.85, u"Append \"foo\""_s);
    QTest::newRow("spaces inside quotes are trimmed")
        << u"append \" x \""_s << insert(insertRule(u"x"_s, InsertPosition::End), 0.85, u"Append \"x\""_s);
    QTest::newRow("tabs inside quotes are trimmed")
        << u"add\t\"\tx\t\"\tat the end"_s
        << insert(insertRule(u"x"_s, InsertPosition::End), 0.9, u"Add \"x\" at end"_s);
    QTest::newRow("no-break spaces inside quotes are trimmed")
        << u"append \"\u00A0x\u00A0\""_s << insert(insertRule(u"x"_s, InsertPosition::End), 0.85, u"Append \"x\""_s);
    QTest::newRow("a newline inside the text is kept")
        << u"add \n at the end"_s << insert(insertRule(u"\n"_s, InsertPosition::End), 0.9, u"Add \"\n\" at end"_s);
    QTest::newRow("upper-case umlaut is lower-cased")
        << u"ADD \u00C4PFEL AT THE END"_s
        << insert(insertRule(u"\u00E4pfel"_s, InsertPosition::End), 0.9, u"Add \"\u00E4pfel\" at end"_s);
    QTest::newRow("Turkish dotted capital I lower-cases to i and a combining dot")
        << u"PREFIX WITH \u0130ZM\u0130R"_s
        << insert(insertRule(u"i\u0307zmi\u0307r"_s, InsertPosition::Beginning),
               0.9,
               u"Prefix with \"i\u0307zmi\u0307r\""_s);
    QTest::newRow("Greek capital sigma at the end of a word lowers to final sigma")
        << u"APPEND \u039F\u0394\u039F\u03A3"_s
        << insert(insertRule(u"\u03BF\u03B4\u03BF\u03C2"_s, InsertPosition::End),
               0.85,
               u"Append \"\u03BF\u03B4\u03BF\u03C2\""_s);
    QTest::newRow("prefix followed by blanks only is not understood") << u"prefix   "_s << QStringList();
    QTest::newRow("append followed by blanks and newlines only is not understood") << u"append  \n "_s << QStringList();
    QTest::newRow("emoji are kept") << u"append \U0001F389 Party"_s
                                    << insert(insertRule(u"\U0001F389 party"_s, InsertPosition::End),
                                           0.85,
                                           u"Append \"\U0001F389 party\""_s);
}

void TestNaturalLanguageParser::removeCommands_data()
{
    addColumns();
    const auto removeCount = [](RemoveTarget target, qint64 count, const QString &description) {
        return dump({suggestion(removeCountRule(target, count), 0.95, description)});
    };
    const auto removeText = [](const QString &text, const QString &description) {
        return dump({suggestion(removeTextRule(text), 0.8, description)});
    };
    QTest::newRow("remove the first characters")
        << u"remove the first 3 characters"_s << removeCount(RemoveTarget::FirstN, 3, u"Remove first 3 characters"_s);
    QTest::newRow("remove first characters, without the")
        << u"remove first 3 characters"_s << removeCount(RemoveTarget::FirstN, 3, u"Remove first 3 characters"_s);
    QTest::newRow("remove the last characters")
        << u"remove the last 2 characters"_s << removeCount(RemoveTarget::LastN, 2, u"Remove last 2 characters"_s);
    QTest::newRow("one character is still described as characters")
        << u"remove first 1 character"_s << removeCount(RemoveTarget::FirstN, 1, u"Remove first 1 characters"_s);
    QTest::newRow("the largest 64-bit count") << u"remove first 9223372036854775807 characters"_s
                                              << removeCount(RemoveTarget::FirstN,
                                                     std::numeric_limits<qint64>::max(),
                                                     u"Remove first 9223372036854775807 characters"_s);
    QTest::newRow("a count one past 64 bits is not understood")
        << u"remove first 9223372036854775808 characters"_s << QStringList();
    QTest::newRow("an overflowing first count falls through to a last count")
        << u"remove first 99999999999999999999 characters and remove last 2 characters"_s
        << removeCount(RemoveTarget::LastN, 2, u"Remove last 2 characters"_s);
    QTest::newRow("only the first match of a pattern counts")
        << u"remove first 99999999999999999999 characters, then remove first 2 characters"_s << QStringList();
    QTest::newRow("non-ASCII digits are not a count") << u"remove first \u0663 characters"_s << QStringList();
    QTest::newRow("remove quoted text") << u"remove \"copy\""_s << removeText(u"copy"_s, u"Remove \"copy\""_s);
    QTest::newRow("remove plain text") << u"remove copy"_s << removeText(u"copy"_s, u"Remove \"copy\""_s);
    QTest::newRow("remove text is lower-cased and trimmed")
        << u"remove \" COPY \" \n"_s << removeText(u"copy"_s, u"Remove \"copy\""_s);
    QTest::newRow("delete quoted text") << u"delete \"draft\""_s << removeText(u"draft"_s, u"Delete \"draft\""_s);
    QTest::newRow("delete non-ASCII text")
        << u"DELETE \u00C4\u00D6"_s << removeText(u"\u00E4\u00F6"_s, u"Delete \"\u00E4\u00F6\""_s);
    QTest::newRow("remove followed by blanks only is not understood") << u"remove  \t "_s << QStringList();
    QTest::newRow("remove first without a number gives nothing") << u"remove first few"_s << QStringList();
    QTest::newRow("remove last without a number gives nothing") << u"remove last bits"_s << QStringList();
    QTest::newRow("delete is not stopped by first")
        << u"delete first few"_s << removeText(u"first few"_s, u"Delete \"first few\""_s);
    QTest::newRow("text that only contains first later is removed")
        << u"remove the first few"_s << removeText(u"the first few"_s, u"Remove \"the first few\""_s);
}

void TestNaturalLanguageParser::caseCommands_data()
{
    addColumns();
    const struct
    {
        const char *name;
        QString input;
        CaseConversionType caseType;
        QString description;
    } rows[] = {
        {"title case", u"title case"_s, CaseConversionType::TitleCase, u"Convert to Title Case"_s},
        {"uppercase", u"make it uppercase"_s, CaseConversionType::Uppercase, u"Convert to UPPERCASE"_s},
        {"upper case", u"upper case"_s, CaseConversionType::Uppercase, u"Convert to UPPERCASE"_s},
        {"all caps", u"convert to all caps"_s, CaseConversionType::Uppercase, u"Convert to UPPERCASE"_s},
        {"lowercase", u"lowercase"_s, CaseConversionType::Lowercase, u"Convert to lowercase"_s},
        {"lower case", u"lower case please"_s, CaseConversionType::Lowercase, u"Convert to lowercase"_s},
        {"sentence case", u"sentence case"_s, CaseConversionType::SentenceCase, u"Convert to Sentence case"_s},
        {"camel case", u"camel case"_s, CaseConversionType::CamelCase, u"Convert to camelCase"_s},
        {"camelCase typed mixed", u"camelCase"_s, CaseConversionType::CamelCase, u"Convert to camelCase"_s},
        {"snake case", u"snake case"_s, CaseConversionType::SnakeCase, u"Convert to snake_case"_s},
        {"snake_case", u"snake_case"_s, CaseConversionType::SnakeCase, u"Convert to snake_case"_s},
        {"keywords typed in capitals", u"UPPER CASE"_s, CaseConversionType::Uppercase, u"Convert to UPPERCASE"_s},
        {"the keyword listed first wins over the one typed first",
            u"uppercase title case"_s,
            CaseConversionType::TitleCase,
            u"Convert to Title Case"_s},
    };
    for (const auto &row : rows)
        QTest::newRow(row.name) << row.input << dump({caseSuggestion(row.caseType, row.description)});
}

void TestNaturalLanguageParser::numberingCommands_data()
{
    addColumns();
    const auto numbering = [](qint64 start, NumberingPosition position, const QString &description) {
        return dump({suggestion(numberingRule(start, position), 0.85, description)});
    };
    QTest::newRow("numbering with a start as prefix")
        << u"add numbering starting at 5 as prefix"_s
        << numbering(5, NumberingPosition::Prefix, u"Add sequential numbering from 5"_s);
    QTest::newRow("sequential alone keeps the defaults")
        << u"sequential"_s << numbering(1, NumberingPosition::Suffix, u"Add sequential numbering from 1"_s);
    QTest::newRow("number alone") << u"number the files"_s
                                  << numbering(1, NumberingPosition::Suffix, u"Add sequential numbering from 1"_s);
    QTest::newRow("start without at") << u"numbering starting 7"_s
                                      << numbering(7, NumberingPosition::Suffix, u"Add sequential numbering from 7"_s);
    QTest::newRow("start zero") << u"numbering starting at 0"_s
                                << numbering(0, NumberingPosition::Suffix, u"Add sequential numbering from 0"_s);
    QTest::newRow("typed in capitals") << u"NUMBERING STARTING AT 10"_s
                                       << numbering(10,
                                              NumberingPosition::Suffix,
                                              u"Add sequential numbering from 10"_s);
    QTest::newRow("a start too large for 64 bits keeps the default start")
        << u"numbering starting at 99999999999999999999"_s
        << numbering(1, NumberingPosition::Suffix, u"Add sequential numbering from 1"_s);
    QTest::newRow("prefix anywhere puts the number first")
        << u"add numbers with prefix"_s
        << numbering(1, NumberingPosition::Prefix, u"Add sequential numbering from 1"_s);
}

void TestNaturalLanguageParser::cleanupAndDateCommands_data()
{
    addColumns();
    QTest::newRow("clean with special characters") << u"clean special characters"_s << dump({cleanupSuggestion(true)});
    QTest::newRow("clean alone keeps special characters") << u"clean"_s << dump({cleanupSuggestion(false)});
    QTest::newRow("sanitize") << u"Sanitize names"_s << dump({cleanupSuggestion(false)});
    QTest::newRow("fix spaces") << u"fix spaces"_s << dump({cleanupSuggestion(false)});
    QTest::newRow("add date at start is only a date at the beginning")
        << u"add date at start"_s << dump({dateSuggestion(InsertPosition::Beginning)});
    QTest::newRow("timestamp goes at the end") << u"timestamp"_s << dump({dateSuggestion(InsertPosition::End)});
    QTest::newRow("today goes at the end") << u"today"_s << dump({dateSuggestion(InsertPosition::End)});
    QTest::newRow("date with prefix goes at the beginning")
        << u"date prefix"_s << dump({dateSuggestion(InsertPosition::Beginning)});
}

void TestNaturalLanguageParser::commandsWithSeveralSuggestions_data()
{
    addColumns();
    QTest::newRow("clean up and date, in that order")
        << u"clean up and add today's date"_s << dump({cleanupSuggestion(false), dateSuggestion(InsertPosition::End)});
    QTest::newRow("replace and date")
        << u"replace date with today"_s
        << dump({suggestion(replaceRule(u"date"_s, u"today"_s), 0.95, u"Replace \"date\" \u2192 \"today\""_s),
               dateSuggestion(InsertPosition::End)});
    QTest::newRow("add at the beginning and date")
        << u"add date at the beginning"_s
        << dump({suggestion(insertRule(u"date"_s, InsertPosition::Beginning), 0.9, u"Add \"date\" at beginning"_s),
               dateSuggestion(InsertPosition::Beginning)});
    QTest::newRow("prefix and date")
        << u"prefix with date"_s
        << dump({suggestion(insertRule(u"date"_s, InsertPosition::Beginning), 0.9, u"Prefix with \"date\""_s),
               dateSuggestion(InsertPosition::Beginning)});
    QTest::newRow("case comes before numbering")
        << u"sequential numbering in title case"_s
        << dump({caseSuggestion(CaseConversionType::TitleCase, u"Convert to Title Case"_s),
               suggestion(numberingRule(1, NumberingPosition::Suffix), 0.85, u"Add sequential numbering from 1"_s)});
    QTest::newRow("delete and clean up") << u"delete special characters and clean up"_s
                                         << dump({suggestion(removeTextRule(u"special characters and clean up"_s),
                                                      0.8,
                                                      u"Delete \"special characters and clean up\""_s),
                                                cleanupSuggestion(true)});
}

void TestNaturalLanguageParser::everySuggestionGetsAFreshId()
{
    const QString command = u"clean up and add today's date"_s;
    QSet<QUuid> ids;
    for (const QList<ParsedRule> &suggestions :
        {NaturalLanguageParser::parse(command), NaturalLanguageParser::parse(command)}) {
        QCOMPARE(suggestions.size(), 2);
        for (const ParsedRule &suggestion : suggestions) {
            QVERIFY(!suggestion.rule.id.isNull());
            ids.insert(suggestion.rule.id);
        }
    }
    QCOMPARE(ids.size(), 4);
}

void TestNaturalLanguageParser::suggestionsCompareEveryField()
{
    const ParsedRule original = NaturalLanguageParser::parse(u"replace a with b"_s).constFirst();
    ParsedRule other = original;
    QVERIFY(other == original);
    other.confidence = 0.9;
    QVERIFY(other != original);
    other = original;
    other.description = u"Replace"_s;
    QVERIFY(other != original);
    other = original;
    other.rule.findText = u"c"_s;
    QVERIFY(other != original);
}

void TestNaturalLanguageParser::parsesAlikeOnSeveralThreads()
{
    const QStringList commands{u"replace \"a\" with \"b\""_s,
        u"add x at the end"_s,
        u"remove first 3 characters"_s,
        u"clean up and add today's date"_s};
    QList<QStringList> expected;
    for (const QString &command : commands)
        expected.append(dump(NaturalLanguageParser::parse(command)));

    std::atomic<int> mismatches = 0;
    constexpr int threadCount = 4;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                for (qsizetype index = 0; index < commands.size(); ++index) {
                    if (dump(NaturalLanguageParser::parse(commands.at(index))) != expected.at(index))
                        ++mismatches;
                }
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(mismatches.load(), 0);
}

QTEST_APPLESS_MAIN(TestNaturalLanguageParser)
#include "tst_naturallanguageparser.moc"
