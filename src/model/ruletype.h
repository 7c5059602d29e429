#pragma once

#include "model/enumtraits.h"

namespace quillfern {

/// The kind of a rename rule; selects which fields of a rule matter.
enum class RuleType {
    Replace,
    Insert,
    Remove,
    CaseConversion,
    Numbering,
    Cleanup,
    Trim,
    DateStamp,
    ExtensionChange,
    Regex,
};

template<>
struct EnumTraits<RuleType>
{
    static constexpr std::array<std::pair<RuleType, std::u16string_view>, 10> cases{{
        {RuleType::Replace, u"Replace Text"},
        {RuleType::Insert, u"Insert Text"},
        {RuleType::Remove, u"Remove Text"},
        {RuleType::CaseConversion, u"Case Conversion"},
        {RuleType::Numbering, u"Sequential Numbering"},
        {RuleType::Cleanup, u"Filename Cleanup"},
        {RuleType::Trim, u"Trim Characters"},
        {RuleType::DateStamp, u"Add Date/Time"},
        {RuleType::ExtensionChange, u"Change Extension"},
        {RuleType::Regex, u"Regular Expression"},
    }};
};

/// The symbol name of the image shown beside a rule of this kind.
QString systemImage(RuleType type);

} // namespace quillfern
