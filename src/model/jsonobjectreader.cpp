#include "model/jsonobjectreader.h"

namespace quillfern {

namespace {

QString typeName(QJsonValue::Type type)
{
    switch (type) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("a boolean");
    case QJsonValue::Double:
        return QStringLiteral("a number");
    case QJsonValue::String:
        return QStringLiteral("a string");
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

} // namespace

JsonObjectReader::JsonObjectReader(const QJsonObject &object)
    : m_object(object)
{
}

QJsonValue JsonObjectReader::require(QLatin1StringView key, QJsonValue::Type type)
{
    if (hasError())
        return {};
    const auto found = m_object.constFind(key);
    if (found == m_object.constEnd()) {
        m_error = QStringLiteral("Key \"%1\" not found.").arg(key);
        return {};
    }
    const QJsonValue value = *found;
    if (value.type() != type) {
        fail(key, QStringLiteral("expected %1 but found %2").arg(typeName(type), typeName(value.type())));
        return {};
    }
    return value;
}

void JsonObjectReader::fail(QLatin1StringView key, const QString &reason)
{
    if (!hasError())
        m_error = QStringLiteral("Invalid value for key \"%1\": %2.").arg(key, reason);
}

QString JsonObjectReader::string(QLatin1StringView key)
{
    return require(key, QJsonValue::String).toString();
}

bool JsonObjectReader::boolean(QLatin1StringView key)
{
    return require(key, QJsonValue::Bool).toBool();
}

double JsonObjectReader::number(QLatin1StringView key)
{
    return require(key, QJsonValue::Double).toDouble();
}

qint64 JsonObjectReader::integer(QLatin1StringView key)
{
    const QJsonValue value = require(key, QJsonValue::Double);
    if (hasError())
        return 0;
    // Whole numbers that fit 64 bits are kept exactly by the parser, and toInteger() returns its default for
    // anything else; two different defaults tell the cases apart. Fractions are refused, never rounded.
    const qint64 integer = value.toInteger(0);
    if (integer != value.toInteger(1)) {
        fail(key, QStringLiteral("%1 is not a whole number in the 64-bit range").arg(value.toDouble()));
        return 0;
    }
    return integer;
}

QJsonArray JsonObjectReader::array(QLatin1StringView key)
{
    return require(key, QJsonValue::Array).toArray();
}

QUuid JsonObjectReader::uuid(QLatin1StringView key)
{
    const QString text = string(key);
    if (hasError())
        return {};
    const QUuid id = QUuid::fromString(text);
    // Only the bare 36-character form is accepted; braces or other spellings are corrupt data. The nil UUID
    // parses to the same value as garbage, so it is recognised by its text.
    const bool isNilText = text == QLatin1StringView("00000000-0000-0000-0000-000000000000");
    if (text.size() != 36 || (id.isNull() && !isNilText)) {
        fail(key, QStringLiteral("“%1” is not a UUID").arg(text));
        return {};
    }
    return id;
}

} // namespace quillfern
