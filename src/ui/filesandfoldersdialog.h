#pragma once

#include <QFileDialog>

namespace quillfern {

/// The open panel that chooses files and folders together, with multiple selection. It is Qt's own file dialog,
/// since the desktop's dialogs cannot choose both kinds at once. In its lists a click only selects, even on a
/// desktop where a click opens items, so a folder is chosen as a file is; a double click or Return enters a
/// folder. "Open" returns every selected item that exists, folders included; a typed name that does not exist
/// gets the stock dialog's message.
class FilesAndFoldersDialog final : public QFileDialog
{
    Q_OBJECT

public:
    FilesAndFoldersDialog(QWidget *parent, const QString &title);

    void accept() override;
};

} // namespace quillfern
