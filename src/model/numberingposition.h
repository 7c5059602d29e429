#pragma once

#include "model/enumtraits.h"

namespace quillfern {

/// Where a numbering rule puts the number.
enum class NumberingPosition {
    Prefix,
    Suffix,
    Replace,
};

template<>
struct EnumTraits<NumberingPosition>
{
    static constexpr std::array<std::pair<NumberingPosition, std::u16string_view>, 3> cases{{
        {NumberingPosition::Prefix, u"Prefix"},
        {NumberingPosition::Suffix, u"Suffix"},
        {NumberingPosition::Replace, u"Replace Name"},
    }};
};

} // namespace quillfern
