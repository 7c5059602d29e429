#pragma once

#include "model/enumtraits.h"

namespace quillfern {

/// The target letter case of a case-conversion rule.
enum class CaseConversionType {
    Uppercase,
    Lowercase,
    TitleCase,
    CamelCase,
    SnakeCase,
    SentenceCase,
};

template<>
struct EnumTraits<CaseConversionType>
{
    static constexpr std::array<std::pair<CaseConversionType, std::u16string_view>, 6> cases{{
        {CaseConversionType::Uppercase, u"UPPERCASE"},
        {CaseConversionType::Lowercase, u"lowercase"},
        {CaseConversionType::TitleCase, u"Title Case"},
        {CaseConversionType::CamelCase, u"camelCase"},
        {CaseConversionType::SnakeCase, u"snake_case"},
        {CaseConversionType::SentenceCase, u"Sentence case"},
    }};
};

} // namespace quillfern
