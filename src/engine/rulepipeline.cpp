#include "engine/preconditions_p.h"
#include "engine/rulepipeline_p.h"
#include "engine/textcleanup_p.h"
#include "model/fileitem.h"
#include "model/icutext_p.h"

#include <unicode/calendar.h>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// The text with the code units [start, end) replaced.
QString spliced(const QString &text, qsizetype start, qsizetype end, QStringView replacement)
{
    return QStringView(text).first(start) + replacement + QStringView(text).sliced(end);
}

/// The widest a number is padded. A name between two rules may be far longer than any file name (a padding of
/// 300 that a later rule cuts back to ten digits must give those ten digits exactly), so the limit is set at
/// 4096 characters, sixteen times the 255 bytes of the longest file name, and a padding up to it is exact. A
/// wider one is capped there, so that a padding of 2^31 costs 8 KB instead of 4 GB: its name is refused as too
/// long unless later rules cut all but a file name's length of it, and only then does the cap show.
constexpr qint64 widestPadding = 4096;

/// The number in decimal, zero-filled to at least `padding` characters with a minus sign counting toward the
/// width, as C's "%0<padding>d" does (up to widestPadding).
QString paddedDigits(qint64 number, qint64 padding)
{
    padding = std::min(padding, widestPadding);
    const QString digits = QString::number(number);
    if (padding < 1 || digits.size() >= padding)
        return digits;
    const qsizetype zeros = qsizetype(padding) - digits.size();
    if (number < 0)
        return u'-' + QString(zeros, u'0') + QStringView(digits).sliced(1);
    return QString(zeros, u'0') + digits;
}

} // namespace

RulePipeline::RulePipeline(const QList<RenameRule> &rules)
    : m_rules(rules)
{
    for (const RenameRule &rule : std::as_const(m_rules)) {
        if (!rule.isEnabled)
            continue;
        // The extension rule acts on the extension only, and only the last enabled one counts.
        if (rule.type == RuleType::ExtensionChange)
            m_extension = rule.newExtension;
        else
            m_steps.push_back(compile(rule));
    }
}

// A search text is what the user typed after reading the names as they are shown, where each byte of a name
// that is not UTF-8 appears as U+FFFD: a U+FFFD in it matches such a byte (escaped in the rules' text) as well as
// a U+FFFD. Every other character is spelt as its code point, so none is read as pattern syntax.
std::unique_ptr<IcuMatcher> RulePipeline::literalSearch(const QString &literal, bool isCaseSensitive)
{
    const uint32_t caseFlag = isCaseSensitive ? 0 : UREGEX_CASE_INSENSITIVE;
    if (!literal.contains(QChar::ReplacementCharacter))
        return std::make_unique<IcuMatcher>(literal, UREGEX_LITERAL | caseFlag);
    QString pattern;
    for (qsizetype i = 0; i < literal.size(); ++i) {
        const QChar unit = literal[i];
        if (unit == QChar::ReplacementCharacter) {
            pattern += u"[\\x{FFFD}\\x{DC80}-\\x{DCFF}]"_s;
            continue;
        }
        char32_t codePoint = unit.unicode();
        if (unit.isHighSurrogate() && i + 1 < literal.size() && literal[i + 1].isLowSurrogate())
            codePoint = QChar::surrogateToUcs4(unit, literal[++i]);
        pattern += u"\\x{"_s + QString::number(uint(codePoint), 16) + u'}';
    }
    return std::make_unique<IcuMatcher>(pattern, caseFlag);
}

void RulePipeline::compilePattern(Step &step, uint32_t flags)
{
    step.pattern = std::make_unique<IcuMatcher>(step.rule->findText, flags);
    step.replacement.emplace(step.rule->replaceText, step.pattern->groupCount());
}

RulePipeline::Step RulePipeline::compile(const RenameRule &rule)
{
    Step step;
    step.rule = &rule;
    switch (rule.type) {
    case RuleType::Replace:
        // A case-sensitive search without U+FFFD is a plain search of the text, which needs no matcher.
        if (rule.useRegex)
            compilePattern(step, rule.isCaseSensitive ? 0 : UREGEX_CASE_INSENSITIVE);
        else if (!rule.findText.isEmpty()
            && (!rule.isCaseSensitive || rule.findText.contains(QChar::ReplacementCharacter)))
            step.search = literalSearch(rule.findText, rule.isCaseSensitive);
        break;
    case RuleType::Insert:
        if (!rule.insertAnchorText.isEmpty())
            step.search = literalSearch(rule.insertAnchorText, false);
        break;
    case RuleType::Remove:
        if (rule.removeTarget == RemoveTarget::Text && !rule.removeText.isEmpty())
            step.search = literalSearch(rule.removeText, false);
        if (rule.removeTarget == RemoveTarget::BetweenText && !rule.removeBetweenStart.isEmpty()
            && !rule.removeBetweenEnd.isEmpty()) {
            step.search = literalSearch(rule.removeBetweenStart, false);
            step.endSearch = literalSearch(rule.removeBetweenEnd, false);
        }
        break;
    case RuleType::DateStamp: {
        UErrorCode status = U_ZERO_ERROR;
        auto format =
            std::make_unique<icu::SimpleDateFormat>(icutext::alias(rule.dateFormat), icu::Locale::getDefault(), status);
        if (icutext::succeeded(status))
            step.dateFormat = std::move(format);
        break;
    }
    case RuleType::Regex:
        if (!rule.findText.isEmpty())
            compilePattern(step, 0);
        break;
    case RuleType::CaseConversion:
    case RuleType::Numbering:
    case RuleType::Cleanup:
    case RuleType::Trim:
    case RuleType::ExtensionChange:
        break;
    }
    return step;
}

QString RulePipeline::applyRules(const QString &name, qint64 index)
{
    QString current = name;
    for (Step &step : m_steps)
        current = applyStep(step, current, index);
    return current;
}

QString RulePipeline::newName(const QString &original, qint64 index)
{
    const qsizetype dot = extensionDotIndex(original);
    const QString base = dot < 0 ? original : original.first(dot);
    const QString extension = m_extension.value_or(dot < 0 ? QString() : original.sliced(dot + 1));
    const QString newBase = applyRules(base, index);
    return extension.isEmpty() ? newBase : newBase + u'.' + extension;
}

QString RulePipeline::conflictKey(const QString &name) const
{
    return m_caseMapper.lower(name);
}

QString RulePipeline::applyStep(Step &step, const QString &text, qint64 index)
{
    const RenameRule &rule = *step.rule;
    switch (rule.type) {
    case RuleType::Replace:
        return applyReplace(step, text);
    case RuleType::Insert:
        return applyInsert(step, text);
    case RuleType::Remove:
        return applyRemove(step, text);
    case RuleType::CaseConversion:
        return applyCase(rule, text);
    case RuleType::Numbering:
        return applyNumbering(rule, text, index);
    case RuleType::Cleanup:
        return applyCleanup(rule, text);
    case RuleType::Trim:
        return textcleanup::trimWhitespace(text);
    case RuleType::DateStamp:
        return applyDate(step, text);
    case RuleType::Regex:
        return applyRegex(step, text);
    case RuleType::ExtensionChange:
        return text;
    }
    Q_UNREACHABLE();
    return text;
}

QString RulePipeline::applyReplace(Step &step, const QString &text)
{
    const RenameRule &rule = *step.rule;
    if (step.pattern)
        return step.pattern->replaceAll(text, *step.replacement).value_or(text);
    if (step.search)
        return step.search->replaceAllLiterally(text, rule.replaceText).value_or(text);
    if (rule.findText.isEmpty())
        return text;
    return QString(text).replace(rule.findText, rule.replaceText, Qt::CaseSensitive);
}

QString RulePipeline::applyInsert(Step &step, const QString &text)
{
    const RenameRule &rule = *step.rule;
    switch (rule.insertPosition) {
    case InsertPosition::Beginning:
        return rule.insertText + text;
    case InsertPosition::End:
        return text + rule.insertText;
    case InsertPosition::AtIndex: {
        const qsizetype offset = m_graphemes.offsetOf(text, std::max<qint64>(0, rule.insertIndex));
        return spliced(text, offset, offset, rule.insertText);
    }
    case InsertPosition::BeforeText:
    case InsertPosition::AfterText: {
        const auto match = step.search ? step.search->firstMatch(text) : std::nullopt;
        if (!match)
            return text;
        // The matched characters are written back in the anchor's own spelling, unless the anchor has a U+FFFD,
        // which may have matched a byte that is not UTF-8: then as the name spells them, so that the byte is kept.
        const QString anchor = rule.insertAnchorText.contains(QChar::ReplacementCharacter)
            ? text.sliced(match->start, match->end - match->start)
            : rule.insertAnchorText;
        const QString replacement =
            rule.insertPosition == InsertPosition::BeforeText ? rule.insertText + anchor : anchor + rule.insertText;
        return spliced(text, match->start, match->end, replacement);
    }
    }
    Q_UNREACHABLE();
    return text;
}

QString RulePipeline::applyRemove(Step &step, const QString &text)
{
    const RenameRule &rule = *step.rule;
    if (const QString violation = preconditions::removeViolation(rule); !violation.isEmpty())
        preconditions::fail(violation);
    switch (rule.removeTarget) {
    case RemoveTarget::Text:
        if (!step.search)
            return text;
        return step.search->replaceAllLiterally(text, QString()).value_or(text);
    case RemoveTarget::FirstN:
        return text.sliced(m_graphemes.offsetOf(text, rule.removeCount));
    case RemoveTarget::LastN: {
        const qsizetype count = m_graphemes.count(text);
        return text.first(m_graphemes.offsetOf(text, count - std::min<qint64>(rule.removeCount, count)));
    }
    case RemoveTarget::FromTo: {
        const qsizetype count = m_graphemes.count(text);
        const qint64 from = std::min<qint64>(rule.removeFromIndex, count);
        const qint64 to = std::min<qint64>(rule.removeToIndex, count);
        if (from >= to)
            return text;
        return spliced(text, m_graphemes.offsetOf(text, from), m_graphemes.offsetOf(text, to), {});
    }
    case RemoveTarget::BetweenText:
        return applyRemoveBetween(step, text);
    }
    Q_UNREACHABLE();
    return text;
}

QString RulePipeline::applyRemoveBetween(Step &step, const QString &text)
{
    if (!step.search || !step.endSearch)
        return text;
    // Both markers are searched from the start of the text, so identical markers find the same occurrence.
    const auto start = step.search->firstMatch(text);
    if (!start)
        return text;
    const auto end = step.endSearch->firstMatch(text);
    if (!end || start->end > end->start)
        return text;
    return spliced(text, start->end, end->start, {});
}

QString RulePipeline::applyCase(const RenameRule &rule, const QString &text)
{
    switch (rule.caseType) {
    case CaseConversionType::Uppercase:
        return m_caseMapper.upper(text);
    case CaseConversionType::Lowercase:
        return m_caseMapper.lower(text);
    case CaseConversionType::TitleCase:
        return m_caseMapper.title(text);
    case CaseConversionType::CamelCase: {
        // Pieces between the separators " _-", empty ones included; the first is lower-cased, the rest
        // title-cased, and the separators dropped.
        QString result;
        qsizetype pieceStart = 0;
        for (qsizetype i = 0; i <= text.size(); ++i) {
            if (i < text.size() && !QStringView(u" _-").contains(text[i]))
                continue;
            const QString piece = text.sliced(pieceStart, i - pieceStart);
            result += pieceStart == 0 ? m_caseMapper.lower(piece) : m_caseMapper.title(piece);
            pieceStart = i + 1;
        }
        return result;
    }
    case CaseConversionType::SnakeCase:
        return m_caseMapper.lower(text).replace(u' ', u'_');
    case CaseConversionType::SentenceCase:
        return capitalizeFirst(text);
    }
    Q_UNREACHABLE();
    return text;
}

QString RulePipeline::capitalizeFirst(const QString &text)
{
    if (text.isEmpty())
        return text;
    const qsizetype firstEnd = m_graphemes.offsetOf(text, 1);
    return m_caseMapper.upper(text.first(firstEnd)) + m_caseMapper.lower(text.sliced(firstEnd));
}

QString RulePipeline::applyNumbering(const RenameRule &rule, const QString &text, qint64 index)
{
    const std::optional<qint64> number = preconditions::numberFor(rule, index);
    if (!number)
        preconditions::fail(preconditions::numberingOverflow(rule, index));
    const QString digits = paddedDigits(*number, rule.numberingPadding);
    switch (rule.numberingPosition) {
    case NumberingPosition::Prefix:
        return digits + rule.numberingSeparator + text;
    case NumberingPosition::Suffix:
        return text + rule.numberingSeparator + digits;
    case NumberingPosition::Replace:
        return digits;
    }
    Q_UNREACHABLE();
    return text;
}

QString RulePipeline::applyCleanup(const RenameRule &rule, const QString &text)
{
    // The steps run once each, in this order; later steps may leave what earlier ones would have cleaned.
    QString result = text;
    if (rule.trimWhitespace)
        result = textcleanup::trimWhitespace(result);
    if (rule.removeDuplicateSpaces)
        result = textcleanup::collapseSpaces(result);
    if (rule.replaceSpacesWithUnderscores)
        result.replace(u' ', u'_');
    if (rule.removeSpecialChars)
        result = textcleanup::keepAlphanumerics(result);
    return result;
}

QString RulePipeline::applyDate(Step &step, const QString &text)
{
    QString date;
    if (step.dateFormat) {
        icu::UnicodeString formatted;
        step.dateFormat->format(icu::Calendar::getNow(), formatted);
        date = icutext::toQString(formatted);
    }
    if (step.rule->datePosition == InsertPosition::Beginning)
        return date + u'_' + text;
    return text + u'_' + date;
}

QString RulePipeline::applyRegex(Step &step, const QString &text)
{
    if (!step.pattern)
        return text;
    return step.pattern->replaceAll(text, *step.replacement).value_or(text);
}

} // namespace quillfern
