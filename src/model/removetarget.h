#pragma once

#include "model/enumtraits.h"

namespace quillfern {

/// What a remove rule removes.
enum class RemoveTarget {
    Text,
    FirstN,
    LastN,
    FromTo,
    BetweenText,
};

template<>
struct EnumTraits<RemoveTarget>
{
    static constexpr std::array<std::pair<RemoveTarget, std::u16string_view>, 5> cases{{
        {RemoveTarget::Text, u"Specific Text"},
        {RemoveTarget::FirstN, u"First N Characters"},
        {RemoveTarget::LastN, u"Last N Characters"},
        {RemoveTarget::FromTo, u"From Position to Position"},
        {RemoveTarget::BetweenText, u"Between Two Strings"},
    }};
};

} // namespace quillfern
