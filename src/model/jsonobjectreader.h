#pragma once

#include "model/enumtraits.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QUuid>

namespace quillfern {

/// Reads required keys of one JSON object strictly: a missing key, a value of the wrong JSON type, a fractional
/// number for an integer or an unknown enumeration text records an error naming the key. Only the first error is
/// kept; after it every read returns a default value, so a caller reads all keys and checks error() once.
class JsonObjectReader final
{
public:
    explicit JsonObjectReader(const QJsonObject &object);

    QString string(QLatin1StringView key);
    bool boolean(QLatin1StringView key);
    qint64 integer(QLatin1StringView key);
    double number(QLatin1StringView key);
    QJsonArray array(QLatin1StringView key);
    QUuid uuid(QLatin1StringView key);

    template<typename Enum>
    Enum enumeration(QLatin1StringView key)
    {
        const QString text = string(key);
        if (hasError())
            return Enum{};
        if (const auto value = fromRawValue<Enum>(text))
            return *value;
        fail(key, QStringLiteral("“%1” is not one of its allowed values").arg(text));
        return Enum{};
    }

    [[nodiscard]] bool hasError() const { return !m_error.isEmpty(); }
    /// The first error, such as `Key "isEnabled" not found.`; empty when every read succeeded.
    [[nodiscard]] const QString &error() const { return m_error; }

private:
    /// The value at `key` if present and of the expected type; otherwise records the error.
    QJsonValue require(QLatin1StringView key, QJsonValue::Type type);
    void fail(QLatin1StringView key, const QString &reason);

    const QJsonObject &m_object;
    QString m_error;
};

} // namespace quillfern
