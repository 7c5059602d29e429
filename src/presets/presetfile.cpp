#include "presets/presetfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace quillfern::presetfile {

using namespace Qt::StringLiterals;

QByteArray encode(const QList<Preset> &presets)
{
    QJsonArray array;
    for (const Preset &preset : presets)
        array.append(preset.toJson());
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

DecodeResult<QList<Preset>> decode(const QByteArray &bytes)
{
    using Result = DecodeResult<QList<Preset>>;
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return Result::failure(
            u"Not valid JSON: %1 at offset %2."_s.arg(parseError.errorString()).arg(parseError.offset));
    if (!document.isArray())
        return Result::failure(u"The presets file must hold a JSON array."_s);

    const QJsonArray array = document.array();
    QList<Preset> presets;
    presets.reserve(array.size());
    for (qsizetype index = 0; index < array.size(); ++index) {
        DecodeResult<Preset> preset = Preset::fromJson(array.at(index));
        if (!preset.isSuccess())
            return Result::failure(u"Entry at index %1: %2"_s.arg(QString::number(index), preset.error()));
        presets.append(std::move(preset).value());
    }
    return Result::success(std::move(presets));
}

} // namespace quillfern::presetfile
