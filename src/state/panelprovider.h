#pragma once

#include "model/nativepath.h"

#include <QList>
#include <QString>

#include <optional>

namespace quillfern {

/// The file choosers the state object needs: supplied by the window (platform dialogs) or by a test. The core
/// never opens a dialog itself.
class PanelProvider
{
public:
    PanelProvider() = default;
    PanelProvider(const PanelProvider &) = delete;
    PanelProvider &operator=(const PanelProvider &) = delete;
    virtual ~PanelProvider() = default;

    /// Runs a modal open panel for files and folders with multiple selection and the given title. Returns the
    /// chosen locations in the panel's order, or none when the user cancels.
    [[nodiscard]] virtual std::optional<QList<NativePath>> chooseFilesAndFolders(const QString &title) = 0;

    /// Runs a modal save panel proposing `proposedName`; `nameFilter` ("CSV files (*.csv)") restricts the file
    /// types when not empty. Returns the chosen location, or none when the user cancels.
    [[nodiscard]] virtual std::optional<NativePath> chooseSaveLocation(const QString &proposedName,
        const QString &nameFilter) = 0;
};

} // namespace quillfern
