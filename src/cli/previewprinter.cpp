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

/// Appends the text of the location from `offset` on, in UTF-8. On POSIX systems a location that is valid UTF-8,
/// as nearly all are, is its own text, so it is copied as it is instead of going through UTF-16 and back.
void appendText(QByteArray &bytes, const NativePath &location, qsizetype offset = 0)
{
#ifdef Q_OS_WIN
    bytes.append(QStringView(location.native()).sliced(offset).toUtf8());
#else
    const QByteArrayView native = QByteArrayView(location.native()).sliced(offset);
    if (native.isValidUtf8())
        bytes.append(native);
    else
        bytes.append(QString::fromUtf8(native).toUtf8());
#endif
}

QString jsonText(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

} // namespace

QString PreviewPrinter::summary(const QList<PreviewEntry> &previews, const QList<QString> &failures)
{
    const auto wouldFail =
        std::count_if(failures.cbegin(), failures.cend(), [](const QString &reason) { return !reason.isEmpty(); });
    const auto changes = std::count_if(previews.cbegin(), previews.cend(), [](const PreviewEntry &entry) {
        return entry.original != entry.preview;
    });
    const auto conflicts =
        std::count_if(previews.cbegin(), previews.cend(), [](const PreviewEntry &entry) { return entry.hasConflict; });
    QString text = counted(previews.size(), u"file"_s) + u", "_s + counted(changes, u"change"_s) + u", "_s
        + counted(conflicts, u"conflict"_s);
    if (wouldFail > 0)
        text += u", %1 would fail"_s.arg(wouldFail);
    return text;
}

QString PreviewPrinter::table(const QList<PreviewEntry> &previews, const QList<QString> &failures, bool useColour)
{
    Q_ASSERT(previews.size() == failures.size());
    qsizetype width = QStringView(u"Original").size();
    for (const PreviewEntry &entry : previews)
        width = std::max(width, entry.original.size());
    QString text = painted(u"Original"_s.leftJustified(width) + u"    New"_s, bold, useColour) + u'\n';
    for (qsizetype row = 0; row < previews.size(); ++row) {
        const PreviewEntry &entry = previews[row];
        const bool isChanged = entry.original != entry.preview;
        const QString arrow = isChanged ? u" -> "_s : u"    "_s;
        QString newName = entry.preview;
        if (!failures[row].isEmpty())
            newName = painted(newName + u"  (will fail: "_s + failures[row] + u')', red, useColour);
        else if (entry.hasConflict)
            newName = painted(newName + u"  (conflict)"_s, red, useColour);
        else if (isChanged)
            newName = painted(newName, green, useColour);
        else
            newName = painted(newName, dim, useColour);
        text += entry.original.leftJustified(width) + arrow + newName + u'\n';
    }
    return text + summary(previews, failures) + u'\n';
}

QString
PreviewPrinter::json(const QList<PreviewEntry> &previews, const QList<FileItem> &files, const QList<QString> &failures)
{
    Q_ASSERT(previews.size() == files.size() && previews.size() == failures.size());
    QJsonArray array;
    for (qsizetype i = 0; i < previews.size(); ++i) {
        array.append(QJsonObject{{u"original"_s, previews[i].original},
            {u"preview"_s, previews[i].preview},
            {u"hasConflict"_s, previews[i].hasConflict},
            {u"path"_s, files[i].url.toText()},
            {u"failureReason"_s, failures[i].isEmpty() ? QJsonValue() : QJsonValue(failures[i])}});
    }
    return jsonText(array);
}

void PreviewPrinter::appendResultLine(QByteArray &lines, const RenameResult &result)
{
    lines.append(result.success ? "renamed: " : "failed: ");
    appendText(lines, result.originalURL);
    lines.append(" -> ");
    appendText(lines, result.newURL, result.newURL.fileNameOffset());
    if (!result.success)
        lines.append(": ").append(result.error.value_or(u"Unknown error"_s).toUtf8());
    if (result.wasUnprotected)
        lines.append(" (no atomic protection on this file system)");
    lines.append('\n');
}

QString PreviewPrinter::resultJson(const QList<RenameResult> &results)
{
    QJsonArray array;
    for (const RenameResult &result : results) {
        array.append(QJsonObject{{u"originalPath"_s, result.originalURL.toText()},
            {u"newPath"_s, result.newURL.toText()},
            {u"success"_s, result.success},
            {u"error"_s, result.error ? QJsonValue(*result.error) : QJsonValue()},
            {u"unprotected"_s, result.wasUnprotected}});
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
