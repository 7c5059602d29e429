#pragma once

#include "model/decoderesult.h"
#include "model/renamerule.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

namespace quillfern {

/// A named, saved list of rename rules with an icon. Identity is `id`; two presets are equal only when every
/// field is equal.
struct Preset
{
    /// A preset with a fresh id, created now.
    Preset(QString name, QList<RenameRule> rules, QString icon = QStringLiteral("wand.and.stars"));

    QUuid id;
    QString name;
    QList<RenameRule> rules;
    QDateTime createdAt;
    QString icon;

    friend bool operator==(const Preset &, const Preset &) = default;

    /// The preset as a JSON object with exactly the keys "id", "name", "rules", "createdAt" and "icon";
    /// "createdAt" is the seconds since 2001-01-01 00:00:00 UTC, fraction kept to the millisecond.
    [[nodiscard]] QJsonObject toJson() const;
    /// Decodes a preset strictly: every key is required with its exact JSON type, and every rule must decode.
    /// An error in a rule names the preset, the rule's index and the key.
    [[nodiscard]] static DecodeResult<Preset> fromJson(const QJsonValue &value);
};

} // namespace quillfern
