#include "presets/preset.h"

#include "model/jsonobjectreader.h"
#include "model/randomuuid.h"

#include <QJsonArray>

#include <cmath>
#include <optional>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

/// 2001-01-01 00:00:00 UTC, the origin of "createdAt", in milliseconds since the Unix epoch.
constexpr qint64 referenceDateMSecs = 978'307'200'000;

/// About three million years either side of the origin: far beyond any real creation date, and far inside
/// what a 64-bit millisecond count and QDateTime can hold.
constexpr double largestOffsetMSecs = 1e17;

double secondsSinceReferenceDate(const QDateTime &date)
{
    return static_cast<double>(date.toMSecsSinceEpoch() - referenceDateMSecs) / 1000.0;
}

std::optional<QDateTime> dateFromSecondsSinceReferenceDate(double seconds)
{
    const double offsetMSecs = std::round(seconds * 1000.0);
    if (!(std::abs(offsetMSecs) < largestOffsetMSecs))
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(referenceDateMSecs + static_cast<qint64>(offsetMSecs), Qt::UTC);
}

} // namespace

Preset::Preset(QString presetName, QList<RenameRule> presetRules, QString presetIcon)
    : id(randomUuid())
    , name(std::move(presetName))
    , rules(std::move(presetRules))
    , createdAt(QDateTime::currentDateTimeUtc())
    , icon(std::move(presetIcon))
{
}

QJsonObject Preset::toJson() const
{
    QJsonArray ruleArray;
    for (const RenameRule &rule : rules)
        ruleArray.append(rule.toJson());
    return QJsonObject{
        {u"id"_s, uuidText(id)},
        {u"name"_s, name},
        {u"rules"_s, ruleArray},
        {u"createdAt"_s, secondsSinceReferenceDate(createdAt)},
        {u"icon"_s, icon},
    };
}

DecodeResult<Preset> Preset::fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return DecodeResult<Preset>::failure(u"A preset must be a JSON object."_s);
    const QJsonObject object = value.toObject();
    JsonObjectReader read(object);
    const QUuid id = read.uuid("id"_L1);
    const QString name = read.string("name"_L1);
    const QJsonArray ruleArray = read.array("rules"_L1);
    const double createdAtSeconds = read.number("createdAt"_L1);
    const QString icon = read.string("icon"_L1);
    if (read.hasError())
        return DecodeResult<Preset>::failure(read.error());

    const std::optional<QDateTime> createdAt = dateFromSecondsSinceReferenceDate(createdAtSeconds);
    if (!createdAt) {
        return DecodeResult<Preset>::failure(
            u"Invalid value for key \"createdAt\": %1 is not a representable date."_s.arg(createdAtSeconds));
    }

    QList<RenameRule> rules;
    rules.reserve(ruleArray.size());
    for (qsizetype index = 0; index < ruleArray.size(); ++index) {
        DecodeResult<RenameRule> rule = RenameRule::fromJson(ruleArray.at(index));
        if (!rule.isSuccess())
            return DecodeResult<Preset>::failure(
                u"Preset “%1”, rule at index %2: %3"_s.arg(name, QString::number(index), rule.error()));
        rules.append(std::move(rule).value());
    }

    Preset preset(name, std::move(rules), icon);
    preset.id = id;
    preset.createdAt = *createdAt;
    return DecodeResult<Preset>::success(std::move(preset));
}

} // namespace quillfern
