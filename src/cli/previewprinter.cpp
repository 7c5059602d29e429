#include "cli/previewprinter.h"

#include "model/counting.h"
#include "model/nativepath.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr QStringView bold = u"\x1b[1m";
constexpr QStringView green = u"\x1b[32m";
constexpr QStringView red = u"\x1b[31m";
constexpr QStringView dim = u"\x1b[2m";
constexpr QStringView reset = u"\x1b[0m";

QString painted(const QString &text, QStringView style, bool useColour)
{
    return useColour ? style + text + reset : text;
}

QString jsonText(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

} // namespace

QString PreviewPrinter::summary(const QList<PreviewEntry> &previews)
{
    const auto changes = std::count_if(previews.cbegin(), previews.cend(), [](const PreviewEntry &entry) {
        return entry.original != entry.preview;
    });
    const auto conflicts =
        std::count_if(previews.cbegin(), previews.cend(), [](const PreviewEntry &entry) { return entry.hasConflict; });
    return counted(previews.size(), u"file"_s) + u", "_s + counted(changes, u"change"_s) + u", "_s
        + counted(conflicts, u"conflict"_s);
}

QString PreviewPrinter::table(const QList<PreviewEntry> &previews, bool useColour)
{
    qsizetype width = QStringView(u"Original").size();
    for (const PreviewEntry &entry : previews)
        width = std::max(width, entry.original.size());
    QString text = painted(u"Original"_s.leftJustified(width) + u"    New"_s, bold, useColour) + u'\n';
    for (const PreviewEntry &entry : previews) {
        const bool isChanged = entry.original != entry.preview;
        const QString arrow = isChanged ? u" -> "_s : u"    "_s;
        QString newName = entry.preview;
        if (entry.hasConflict)
            newName = painted(newName + u"  (conflict)"_s, red, useColour);
        else if (isChanged)
            newName = painted(newName, green, useColour);
        else
            newName = painted(newName, dim, useColour);
        text += entry.original.leftJustified(width) + arrow + newName + u'\n';
    }
    return text + summary(previews) + u'\n';
}

QString PreviewPrinter::json(const QList<PreviewEntry> &previews, const QList<FileItem> &files)
{
    Q_ASSERT(previews.size() == files.size());
    QJsonArray array;
    for (qsizetype i = 0; i < previews.size(); ++i) {
        array.append(QJsonObject{{u"original"_s, previews[i].original},
            {u"preview"_s, previews[i].preview},
            {u"hasConflict"_s, previews[i].hasConflict},
            {u"path"_s, files[i].url.toText()}});
    }
    return jsonText(array);
}

void PreviewPrinter::writeResultLines(QTextStream &out, const QList<RenameResult> &results)
{
    for (const RenameResult &result : results) {
        out << (result.success ? QStringView(u"renamed: ") : QStringView(u"failed: ")) << result.originalURL.toText()
            << QStringView(u" -> ") << result.newURL.fileNameText();
        if (!result.success)
            out << QStringView(u": ") << result.error.value_or(u"Unknown error"_s);
        out << QChar(u'\n');
    }
}

QString PreviewPrinter::resultJson(const QList<RenameResult> &results)
{
    QJsonArray array;
    for (const RenameResult &result : results) {
        array.append(QJsonObject{{u"originalPath"_s, result.originalURL.toText()},
            {u"newPath"_s, result.newURL.toText()},
            {u"success"_s, result.success},
            {u"error"_s, result.error ? QJsonValue(*result.error) : QJsonValue()}});
    }
    return jsonText(array);
}

QString PreviewPrinter::resultSummary(const QList<RenameResult> &results)
{
    const auto succeeded =
        std::count_if(results.cbegin(), results.cend(), [](const RenameResult &result) { return result.success; });
    return QString::number(succeeded) + u" renamed, "_s + QString::number(results.size() - succeeded) + u" failed"_s;
}

} // namespace quillfern
