#pragma once

#include "state/panelprovider.h"

#include <QPointer>
#include <QString>
#include <QWidget>

namespace quillfern {

/// The file choosers of the desktop, as window-modal file dialogs over the window of `parent`. The open panel lets the
/// user pick files and folders together (FilesAndFoldersDialog) and opens, for the rest of the run, in the folder
/// the last import was chosen from.
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
    /// The folder the open panel showed when it last returned a choice; empty until then.
    QString m_lastImportFolder;
};

} // namespace quillfern
