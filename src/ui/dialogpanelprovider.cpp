#include "ui/dialogpanelprovider.h"

#include "model/nativepath.h"
#include "ui/filesandfoldersdialog.h"

#include <QFileDialog>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// `path` when it is a folder, else its nearest parent that is one (a folder renamed by the last batch, say).
QString nearestExistingFolder(QString path)
{
    while (!QFileInfo(path).isDir()) {
        const QString parent = QFileInfo(path).path();
        if (parent == path)
            break;
        path = parent;
    }
    return path;
}

} // namespace

DialogPanelProvider::DialogPanelProvider(QWidget *parent)
    : m_parent(parent)
{
}

std::optional<QList<NativePath>> DialogPanelProvider::chooseFilesAndFolders(const QString &title)
{
    FilesAndFoldersDialog dialog(m_parent, title);
    dialog.setObjectName(openPanelName);
    if (!m_lastImportFolder.isEmpty())
        dialog.setDirectory(nearestExistingFolder(m_lastImportFolder));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    m_lastImportFolder = dialog.directory().absolutePath();
    QList<NativePath> locations;
    for (const QString &path : dialog.selectedFiles())
        locations.append(NativePath::fromText(path));
    return locations;
}

std::optional<NativePath> DialogPanelProvider::chooseSaveLocation(const QString &proposedName,
    const QString &nameFilter)
{
    QFileDialog dialog(m_parent);
    dialog.setObjectName(savePanelName);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setWindowModality(Qt::WindowModal);
    if (!nameFilter.isEmpty())
        dialog.setNameFilter(nameFilter);
    dialog.selectFile(proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return NativePath::fromText(dialog.selectedFiles().constFirst());
}

} // namespace quillfern
