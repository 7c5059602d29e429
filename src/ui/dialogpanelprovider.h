#pragma once

#include "state/panelprovider.h"

#include <QPointer>
#include <QWidget>

namespace quillfern {

/// The file choosers of the desktop, as window-modal file dialogs over the window of `parent`. The open panel lets the
/// user pick files and folders together: a double click enters a folder, "Open" takes whatever is selected.
class DialogPanelProvider final : public PanelProvider
{
public:
    explicit DialogPanelProvider(QWidget *parent);

    [[nodiscard]] std::optional<QList<NativePath>> chooseFilesAndFolders(const QString &title) override;
    [[nodiscard]] std::optional<NativePath> chooseSaveLocation(const QString &proposedName,
        const QString &nameFilter) override;

    /// The object name of the open panel's dialog, for finding it while it runs.
    static constexpr QLatin1StringView openPanelName{"filesAndFoldersPanel"};
    /// The object name of the save panel's dialog.
    static constexpr QLatin1StringView savePanelName{"savePanel"};

private:
    QPointer<QWidget> m_parent;
};

} // namespace quillfern
