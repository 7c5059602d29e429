#pragma once

#include "model/nativepath.h"

#include <QString>
#include <QUuid>

namespace quillfern {

/// One file or folder of the working list. Equal and hashed by `id` only. The location is a native path, so
/// names that are not valid UTF-8 keep their exact bytes; the derived names are text for display, and the
/// escaped name is the text for the rules.
struct FileItem
{
    /// An item for the location: a fresh id, selected, no conflict, previewName the current name, and
    /// isDirectory probed from the file system (false when nothing exists there).
    explicit FileItem(NativePath location);
    /// The same, for a caller that has just learnt from a directory listing whether the location is a folder.
    FileItem(NativePath location, bool locationIsDirectory);

    QUuid id;
    NativePath url;
    bool isSelected = true;
    QString previewName;
    bool hasConflict = false;
    bool isDirectory = false;

    /// The full current name, extension included, as it is shown (bytes that are not UTF-8 as U+FFFD).
    [[nodiscard]] QString originalName() const;
    /// The full current name as the rules read it, from which NativePath::fromEscapedText() gives its exact
    /// bytes back (see NativePath::toEscapedText()).
    [[nodiscard]] QString escapedName() const;
    /// The current name without its extension ("archive.tar" for "archive.tar.gz").
    [[nodiscard]] QString nameWithoutExtension() const;
    /// The extension without the dot; empty when there is none ("README", ".bashrc", "file.").
    [[nodiscard]] QString fileExtension() const;
    /// The folder that holds the item.
    [[nodiscard]] NativePath parentURL() const;
    /// The size for display, such as "1.5 MB"; "—" when it cannot be read or the item is a folder.
    [[nodiscard]] QString fileSizeString() const;
    /// The modification date and time in the current locale's short styles; "—" when it cannot be read.
    [[nodiscard]] QString modifiedDateString() const;

    friend bool operator==(const FileItem &left, const FileItem &right) { return left.id == right.id; }
};

/// Items hash by their id only.
size_t qHash(const FileItem &item, size_t seed = 0) noexcept;

/// The position of the dot that starts the extension of a name, or -1 when it has none. A leading dot (hidden
/// file) and a trailing dot do not start an extension.
qsizetype extensionDotIndex(QStringView name);

} // namespace quillfern

// Every member moves by its bytes, so a growing list of 100,000 items moves memory, not items.
Q_DECLARE_TYPEINFO(quillfern::FileItem, Q_RELOCATABLE_TYPE);
