#pragma once

#include "model/nativepath.h"

#include <QList>
#include <QString>

namespace quillfern {

/// Shows files selected in the platform's file manager: Finder on macOS, Explorer on Windows, and elsewhere
/// the file manager behind the freedesktop FileManager1 interface, or the files' folders when there is none.
class FileManagerReveal final
{
public:
    FileManagerReveal() = delete;

    /// The menu text of the command on this platform ("Reveal in Finder", "Show in Explorer",
    /// "Show in File Manager").
    [[nodiscard]] static QString actionTitle();

    /// Asks the file manager to show these items selected; returns at once, failures are not reported.
    static void reveal(const QList<NativePath> &locations);
};

} // namespace quillfern
