#include "model/fileitem.h"

#include "model/bytecount.h"
#include "model/fileattributes.h"
#include "model/icutext_p.h"
#include "model/nativepath.h"
#include "model/randomuuid.h"

#include <QHashFunctions>

#include <unicode/datefmt.h>

#include <memory>

namespace quillfern {

namespace {

constexpr QStringView noValue = u"—";

QString formatShortDateTime(const QDateTime &date)
{
    // Creating an ICU formatter is costly next to formatting, so each thread keeps one for the default locale.
    thread_local std::unique_ptr<icu::DateFormat> formatter(
        icu::DateFormat::createDateTimeInstance(icu::DateFormat::kShort, icu::DateFormat::kShort));
    if (!formatter)
        return noValue.toString();
    icu::UnicodeString text;
    formatter->format(UDate(date.toMSecsSinceEpoch()), text);
    return icutext::toQString(text);
}

} // namespace

FileItem::FileItem(NativePath location)
    : FileItem(location, fileattributes::isDirectory(location))
{
}

FileItem::FileItem(NativePath location, bool locationIsDirectory)
    : id(randomUuid())
    , url(std::move(location).withoutTrailingSeparator())
    , previewName(url.fileNameText())
    , isDirectory(locationIsDirectory)
{
}

qsizetype extensionDotIndex(QStringView name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || dot == name.size() - 1)
        return -1;
    return dot;
}

QString FileItem::originalName() const
{
    return url.fileNameText();
}

QString FileItem::escapedName() const
{
    return url.fileNameEscapedText();
}

QString FileItem::nameWithoutExtension() const
{
    const QString name = originalName();
    const qsizetype dot = extensionDotIndex(name);
    return dot < 0 ? name : name.left(dot);
}

QString FileItem::fileExtension() const
{
    const QString name = originalName();
    const qsizetype dot = extensionDotIndex(name);
    return dot < 0 ? QString() : name.mid(dot + 1);
}

NativePath FileItem::parentURL() const
{
    return url.parent();
}

QString FileItem::fileSizeString() const
{
    const std::optional<qint64> size = fileattributes::fileSize(url);
    return size ? formatByteCount(*size) : noValue.toString();
}

QString FileItem::modifiedDateString() const
{
    const std::optional<QDateTime> date = fileattributes::modificationDate(url);
    return date ? formatShortDateTime(*date) : noValue.toString();
}

size_t qHash(const FileItem &item, size_t seed) noexcept
{
    return qHash(item.id, seed);
}

} // namespace quillfern
