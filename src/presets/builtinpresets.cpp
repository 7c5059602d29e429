#include "presets/builtinpresets.h"

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

// The fields set below repeat some defaults on purpose: they are what each preset promises, whatever the
// defaults of a new rule become.

RenameRule cleanSpacesRule()
{
    RenameRule rule(RuleType::Cleanup);
    rule.removeDuplicateSpaces = true;
    rule.trimWhitespace = true;
    return rule;
}

RenameRule caseRule(CaseConversionType caseType)
{
    RenameRule rule(RuleType::CaseConversion);
    rule.caseType = caseType;
    return rule;
}

RenameRule dateSuffixRule()
{
    RenameRule rule(RuleType::DateStamp);
    rule.dateFormat = u"yyyy-MM-dd"_s;
    rule.datePosition = InsertPosition::End;
    return rule;
}

RenameRule numberingSuffixRule()
{
    RenameRule rule(RuleType::Numbering);
    rule.numberingStart = 1;
    rule.numberingPadding = 3;
    rule.numberingPosition = NumberingPosition::Suffix;
    return rule;
}

RenameRule underscoresRule()
{
    RenameRule rule(RuleType::Cleanup);
    rule.replaceSpacesWithUnderscores = true;
    return rule;
}

} // namespace

QList<Preset> builtInPresets()
{
    return {
        Preset(u"Clean Spaces"_s, {cleanSpacesRule()}, u"sparkles"_s),
        Preset(u"Title Case"_s, {caseRule(CaseConversionType::TitleCase)}, u"textformat"_s),
        Preset(u"Add Date Suffix"_s, {dateSuffixRule()}, u"calendar"_s),
        Preset(u"Sequential Numbering"_s, {numberingSuffixRule()}, u"number"_s),
        Preset(u"Lowercase + Underscores"_s,
            {caseRule(CaseConversionType::Lowercase), underscoresRule()},
            u"textformat.abc"_s),
    };
}

} // namespace quillfern
