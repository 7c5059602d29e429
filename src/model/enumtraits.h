#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace quillfern {

/// Describes a closed enumeration whose raw value is its display text. Each enumeration specialises this with
/// `cases`: every case paired with its raw value, in declaration order.
template<typename Enum>
struct EnumTraits;

/// Every case of the enumeration, in declaration order.
template<typename Enum>
constexpr auto allCases()
{
    constexpr auto &cases = EnumTraits<Enum>::cases;
    std::array<Enum, cases.size()> result{};
    for (std::size_t i = 0; i < cases.size(); ++i)
        result[i] = cases[i].first;
    return result;
}

/// The raw value (display text, JSON value and identity) of a case.
template<typename Enum>
QString rawValue(Enum value)
{
    for (const auto &[candidate, text] : EnumTraits<Enum>::cases) {
        if (candidate == value)
            return QString::fromUtf16(text.data(), qsizetype(text.size()));
    }
    Q_UNREACHABLE();
    return {};
}

/// The case whose raw value is exactly `text` (case-sensitive), or none.
template<typename Enum>
std::optional<Enum> fromRawValue(QStringView text)
{
    for (const auto &[candidate, raw] : EnumTraits<Enum>::cases) {
        if (text == QStringView(raw.data(), qsizetype(raw.size())))
            return candidate;
    }
    return std::nullopt;
}

} // namespace quillfern
