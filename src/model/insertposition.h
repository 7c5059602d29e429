#pragma once

#include "model/enumtraits.h"

namespace quillfern {

/// Where an insert rule puts its text, and where a date-stamp rule puts the date.
enum class InsertPosition {
    Beginning,
    End,
    AtIndex,
    BeforeText,
    AfterText,
};

template<>
struct EnumTraits<InsertPosition>
{
    static constexpr std::array<std::pair<InsertPosition, std::u16string_view>, 5> cases{{
        {InsertPosition::Beginning, u"Beginning"},
        {InsertPosition::End, u"End"},
        {InsertPosition::AtIndex, u"At Position"},
        {InsertPosition::BeforeText, u"Before Text"},
        {InsertPosition::AfterText, u"After Text"},
    }};
};

} // namespace quillfern
