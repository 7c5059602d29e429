#include "ui/dialogpanelprovider.h"

#include "model/nativepath.h"

#include <QFileDialog>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// A file dialog that accepts folders as well as files. A stock dialog in the multiple-files mode would enter a
/// selected folder instead of returning it; this one returns every selected item that exists, so a folder is
/// entered only by a double click.
class FilesAndFoldersDialog final : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

    void accept() override
    {
        const QStringList chosen = selectedFiles();
        const bool allExist =
            std::all_of(chosen.cbegin(), chosen.cend(), [](const QString &path) { return QFileInfo::exists(path); });
        if (chosen.isEmpty() || !allExist) {
            // Let the stock dialog say what is wrong with a typed name.
            QFileDialog::accept();
            return;
        }
        QDialog::accept();
    }
};

} // namespace

DialogPanelProvider::DialogPanelProvider(QWidget *parent)
    : m_parent(parent)
{
}

std::optional<QList<NativePath>> DialogPanelProvider::chooseFilesAndFolders(const QString &title)
{
    // The desktop's own dialogs cannot choose files and folders together, so this one is Qt's.
    FilesAndFoldersDialog dialog(m_parent, title);
    dialog.setObjectName(openPanelName);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setWindowModality(Qt::WindowModal);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
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
