#include "parser/naturallanguageparser.h"

#include "model/icutext_p.h"
#include "parser/compiledpattern_p.h"

#include <unicode/locid.h>

#include <limits>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// Full Unicode lower-casing, the same in every locale.
QString lowerCased(const QString &text)
{
    icu::UnicodeString folded = icutext::alias(text);
    folded.toLower(icu::Locale::getRoot());
    return icutext::toQString(folded);
}

bool isSpaceOrTab(QChar character)
{
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

/// `text` without spaces and tabs at either end; newlines are kept.
QString trimmedOfSpacesAndTabs(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isSpaceOrTab(text.at(start)))
        ++start;
    while (end > start && isSpaceOrTab(text.at(end - 1)))
        --end;
    return text.sliced(start, end - start);
}

/// ASCII decimal digits as a number; none when the text is not such digits or does not fit in 64 bits.
std::optional<qint64> decimalInteger(QStringView digits)
{
    if (digits.isEmpty())
        return std::nullopt;
    qint64 value = 0;
    for (const QChar character : digits) {
        if (character < u'0' || character > u'9')
            return std::nullopt;
        const int digit = character.unicode() - u'0';
        if (value > (std::numeric_limits<qint64>::max() - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    return value;
}

QString quoted(const QString &text)
{
    return u'"' + text + u'"';
}

} // namespace

QList<ParsedRule> NaturalLanguageParser::parse(const QString &input)
{
    // Lower-casing can change the length of the text, so trimming comes second.
    const QString lowered = lowerCased(input).trimmed();
    const std::optional<ParsedRule> candidates[] = {
        parseReplace(input),
        parseInsert(lowered),
        parseRemove(lowered),
        parseCase(lowered),
        parseNumbering(lowered),
        parseCleanup(lowered),
        parseDate(lowered),
    };
    QList<ParsedRule> suggestions;
    for (const std::optional<ParsedRule> &candidate : candidates) {
        if (candidate)
            suggestions.append(*candidate);
    }
    return suggestions;
}

std::optional<ParsedRule> NaturalLanguageParser::parseReplace(const QString &original)
{
    // The untouched input is searched, so the command word only matches when typed in lower case.
    static const CompiledPattern patterns[] = {
        CompiledPattern(uR"re(replace\s+"([^"]+)"\s+with\s+"([^"]+)")re"),
        CompiledPattern(uR"re(replace\s+(\S+)\s+with\s+(\S+))re"),
        CompiledPattern(uR"re(change\s+"([^"]+)"\s+to\s+"([^"]+)")re"),
        CompiledPattern(uR"re(change\s+(\S+)\s+to\s+(\S+))re"),
        CompiledPattern(uR"re(rename\s+"([^"]+)"\s+to\s+"([^"]+)")re"),
        CompiledPattern(uR"re(swap\s+"([^"]+)"\s+with\s+"([^"]+)")re"),
    };
    for (const CompiledPattern &pattern : patterns) {
        if (const std::optional<QStringList> captures = pattern.firstMatch(original, 2)) {
            RenameRule rule(RuleType::Replace);
            rule.findText = captures->at(1);
            rule.replaceText = captures->at(2);
            const QString description =
                u"Replace "_s + quoted(rule.findText) + u" \u2192 "_s + quoted(rule.replaceText);
            return ParsedRule{std::move(rule), 0.95, description};
        }
    }
    return std::nullopt;
}

std::optional<ParsedRule> NaturalLanguageParser::parseInsert(const QString &lowered)
{
    struct InsertForm
    {
        CompiledPattern pattern;
        InsertPosition position;
        double confidence;
        QString descriptionStart;
        QString descriptionEnd;
    };
    static const InsertForm forms[] = {
        {CompiledPattern(uR"re(add\s+"?([^"]+?)"?\s+at the end)re"), InsertPosition::End, 0.9, u"Add "_s, u" at end"_s},
        {CompiledPattern(uR"re(add\s+"?([^"]+?)"?\s+at the (beginning|start))re"),
            InsertPosition::Beginning,
            0.9,
            u"Add "_s,
            u" at beginning"_s},
        {CompiledPattern(uR"re(prefix (?:with\s+)?"?([^"]+?)"?\s*$)re"),
            InsertPosition::Beginning,
            0.9,
            u"Prefix with "_s,
            u""_s},
        {CompiledPattern(uR"re(append\s+"?([^"]+?)"?\s*$)re"), InsertPosition::End, 0.85, u"Append "_s, u""_s},
        {CompiledPattern(uR"re(insert\s+"?([^"]+?)"?\s+after (?:the\s+)?(\w+) character)re"),
            InsertPosition::AtIndex,
            0.85,
            u"Insert "_s,
            u" at position "_s},
    };
    for (const InsertForm &form : forms) {
        const int groupCount = form.position == InsertPosition::AtIndex ? 2 : 1;
        const std::optional<QStringList> captures = form.pattern.firstMatch(lowered, groupCount);
        if (!captures)
            continue;
        RenameRule rule(RuleType::Insert);
        rule.insertText = trimmedOfSpacesAndTabs(captures->at(1));
        rule.insertPosition = form.position;
        QString description = form.descriptionStart + quoted(rule.insertText) + form.descriptionEnd;
        if (form.position == InsertPosition::AtIndex) {
            rule.insertIndex = ordinalToInt(captures->at(2));
            description += QString::number(rule.insertIndex);
        }
        return ParsedRule{std::move(rule), form.confidence, description};
    }
    return std::nullopt;
}

std::optional<ParsedRule> NaturalLanguageParser::parseRemove(const QString &lowered)
{
    struct CountForm
    {
        CompiledPattern pattern;
        RemoveTarget target;
        QString descriptionStart;
    };
    static const CountForm countForms[] = {
        {CompiledPattern(uR"re(remove (?:the\s+)?first (\d+) characters?)re"),
            RemoveTarget::FirstN,
            u"Remove first "_s},
        {CompiledPattern(uR"re(remove (?:the\s+)?last (\d+) characters?)re"), RemoveTarget::LastN, u"Remove last "_s},
    };
    for (const CountForm &form : countForms) {
        const std::optional<QStringList> captures = form.pattern.firstMatch(lowered, 1);
        // A count too large for 64 bits makes the form not match, so the next one is tried.
        const std::optional<qint64> count = captures ? decimalInteger(captures->at(1)) : std::nullopt;
        if (!count)
            continue;
        RenameRule rule(RuleType::Remove);
        rule.removeTarget = form.target;
        rule.removeCount = *count;
        return ParsedRule{std::move(rule), 0.95, form.descriptionStart + QString::number(*count) + u" characters"_s};
    }

    const auto textRemoval = [](const QString &text, const QString &verb) {
        RenameRule rule(RuleType::Remove);
        rule.removeTarget = RemoveTarget::Text;
        rule.removeText = text;
        return ParsedRule{std::move(rule), 0.8, verb + u' ' + quoted(text)};
    };
    static const CompiledPattern removePattern(uR"re(remove\s+"?([^"]+?)"?\s*$)re");
    if (const std::optional<QStringList> captures = removePattern.firstMatch(lowered, 1)) {
        const QString text = trimmedOfSpacesAndTabs(captures->at(1));
        // Text starting with "first" or "last" is a count that is not a number ("remove first few characters");
        // removing that text literally is surely not what was meant, so nothing is suggested.
        if (text.startsWith(u"first"_s) || text.startsWith(u"last"_s))
            return std::nullopt;
        return textRemoval(text, u"Remove"_s);
    }
    static const CompiledPattern deletePattern(uR"re(delete\s+"?([^"]+?)"?\s*$)re");
    if (const std::optional<QStringList> captures = deletePattern.firstMatch(lowered, 1))
        return textRemoval(trimmedOfSpacesAndTabs(captures->at(1)), u"Delete"_s);
    return std::nullopt;
}

std::optional<ParsedRule> NaturalLanguageParser::parseCase(const QString &lowered)
{
    // The first keyword found wins, so "uppercase title case" is title case.
    static constexpr std::pair<std::u16string_view, CaseConversionType> keywords[] = {
        {u"title case", CaseConversionType::TitleCase},
        {u"uppercase", CaseConversionType::Uppercase},
        {u"upper case", CaseConversionType::Uppercase},
        {u"all caps", CaseConversionType::Uppercase},
        {u"lowercase", CaseConversionType::Lowercase},
        {u"lower case", CaseConversionType::Lowercase},
        {u"sentence case", CaseConversionType::SentenceCase},
        {u"camel case", CaseConversionType::CamelCase},
        {u"camelcase", CaseConversionType::CamelCase},
        {u"snake case", CaseConversionType::SnakeCase},
        {u"snake_case", CaseConversionType::SnakeCase},
    };
    for (const auto &[keyword, caseType] : keywords) {
        if (lowered.contains(QStringView(keyword.data(), qsizetype(keyword.size())))) {
            RenameRule rule(RuleType::CaseConversion);
            rule.caseType = caseType;
            return ParsedRule{std::move(rule), 0.9, u"Convert to "_s + rawValue(caseType)};
        }
    }
    return std::nullopt;
}

std::optional<ParsedRule> NaturalLanguageParser::parseNumbering(const QString &lowered)
{
    RenameRule rule(RuleType::Numbering);
    static const CompiledPattern startPattern(uR"re(numbering starting (?:at\s+)?(\d+))re");
    if (const std::optional<QStringList> captures = startPattern.firstMatch(lowered, 1)) {
        if (const std::optional<qint64> start = decimalInteger(captures->at(1)))
            rule.numberingStart = *start;
    }
    if (!lowered.contains(u"number"_s) && !lowered.contains(u"sequenti"_s))
        return std::nullopt;
    if (lowered.contains(u"prefix"_s))
        rule.numberingPosition = NumberingPosition::Prefix;
    const QString description = u"Add sequential numbering from "_s + QString::number(rule.numberingStart);
    return ParsedRule{std::move(rule), 0.85, description};
}

std::optional<ParsedRule> NaturalLanguageParser::parseCleanup(const QString &lowered)
{
    if (!lowered.contains(u"clean"_s) && !lowered.contains(u"sanitize"_s) && !lowered.contains(u"fix spaces"_s))
        return std::nullopt;
    RenameRule rule(RuleType::Cleanup);
    rule.trimWhitespace = true;
    rule.removeDuplicateSpaces = true;
    rule.removeSpecialChars = lowered.contains(u"special"_s);
    return ParsedRule{std::move(rule), 0.8, u"Cleanup filenames"_s};
}

std::optional<ParsedRule> NaturalLanguageParser::parseDate(const QString &lowered)
{
    if (!lowered.contains(u"date"_s) && !lowered.contains(u"timestamp"_s) && !lowered.contains(u"today"_s))
        return std::nullopt;
    RenameRule rule(RuleType::DateStamp);
    const bool atBeginning =
        lowered.contains(u"beginning"_s) || lowered.contains(u"start"_s) || lowered.contains(u"prefix"_s);
    rule.datePosition = atBeginning ? InsertPosition::Beginning : InsertPosition::End;
    return ParsedRule{std::move(rule), 0.8, u"Add today's date"_s};
}

qint64 NaturalLanguageParser::ordinalToInt(const QString &word)
{
    static constexpr std::pair<std::u16string_view, qint64> ordinals[] = {
        {u"first", 1},
        {u"second", 2},
        {u"third", 3},
        {u"fourth", 4},
        {u"fifth", 5},
        {u"sixth", 6},
        {u"seventh", 7},
        {u"eighth", 8},
        {u"ninth", 9},
        {u"tenth", 10},
    };
    for (const auto &[ordinal, value] : ordinals) {
        if (word == QStringView(ordinal.data(), qsizetype(ordinal.size())))
            return value;
    }
    return decimalInteger(word).value_or(1);
}

} // namespace quillfern
