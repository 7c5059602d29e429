#pragma once

#include <QString>

#include <optional>
#include <utility>

namespace quillfern {

/// The outcome of decoding a value from outside data: the value, or a message that names what was wrong.
template<typename T>
class DecodeResult final
{
public:
    static DecodeResult success(T value) { return DecodeResult(std::move(value), {}); }
    static DecodeResult failure(QString error) { return DecodeResult(std::nullopt, std::move(error)); }

    [[nodiscard]] bool isSuccess() const { return m_value.has_value(); }
    /// The decoded value; only valid when isSuccess().
    [[nodiscard]] const T &value() const & { return *m_value; }
    [[nodiscard]] T &&value() && { return std::move(*m_value); }
    /// Why decoding failed; empty on success.
    [[nodiscard]] const QString &error() const { return m_error; }

private:
    DecodeResult(std::optional<T> value, QString error)
        : m_value(std::move(value))
        , m_error(std::move(error))
    {
    }

    std::optional<T> m_value;
    QString m_error;
};

} // namespace quillfern
