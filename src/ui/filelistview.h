#pragma once

#include "model/fileitem.h"
#include "model/nativepath.h"

#include <QList>
#include <QSet>
#include <QUuid>
#include <QWidget>

#include <functional>

class QAction;
class QComboBox;
class QFrame;
class QLineEdit;
class QModelIndex;
class QPushButton;
class QStackedWidget;
class QTableView;
class QToolButton;

namespace quillfern {

class AppViewModel;
class DropZoneView;
class FileTableModel;
class PaneLabel;

/// The file list pane: a toolbar (import, filter, sort, options), the table of the filtered files with their
/// selection checkboxes (or a drop zone while the list is empty) and a status bar with the counts. Files and
/// folders dropped anywhere on the pane are added to the list.
class FileListView final : public QWidget
{
    Q_OBJECT

public:
    /// Shows files selected in the platform's file manager.
    using RevealFunction = std::function<void(const QList<NativePath> &)>;

    explicit FileListView(AppViewModel *vm, QWidget *parent = nullptr);

    /// Whether a drag is hovering over the pane.
    [[nodiscard]] bool isDropTargeted() const { return m_isDropTargeted; }
    /// Replaces the file-manager call of the context menu (FileManagerReveal::reveal by default).
    void setRevealFunction(RevealFunction reveal);
    /// The narrowest the pane can be with every column of the table in view, the name column at its minimum and
    /// room for the vertical scroll bar; narrower, the table scrolls sideways.
    [[nodiscard]] int fullTableWidth() const;
    /// The bar at the top of the pane; the window gives the three panes' bars one height.
    [[nodiscard]] QWidget *header() const { return m_header; }
    /// The bar at the bottom of the pane; the window gives it the height of the other panes' bottom bars.
    [[nodiscard]] QWidget *footer() const { return m_footer; }

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *createToolbar();
    QWidget *createFilterField();
    QToolButton *createOptionsButton();
    QWidget *createStatusBar();
    QTableView *createTable();
    void fitNameColumn();

    void showContextMenu(const QPoint &position);
    /// The ids a context menu opened on `clicked` works on: the selection when the row is part of it, else
    /// the row alone; none outside the rows.
    [[nodiscard]] QSet<QUuid> contextMenuIDs(const QModelIndex &clicked) const;
    [[nodiscard]] QList<FileItem> filesWithIDs(const QSet<QUuid> &ids) const;

    void tableSelectionChanged();
    void showSelectedFileIDs();
    void showSettings();
    void updateContent();
    void updateStatus();
    void setDropTargeted(bool targeted);
    void showDropTint();
    void applyTheme();

    AppViewModel *m_vm;
    FileTableModel *m_model;
    DropZoneView *m_dropZone;
    QTableView *m_table;
    QStackedWidget *m_content;
    QWidget *m_header = nullptr;
    QWidget *m_footer = nullptr;
    QPushButton *m_importButton = nullptr;
    QFrame *m_filterFrame = nullptr;
    QLineEdit *m_filterField = nullptr;
    QToolButton *m_clearFilterButton = nullptr;
    QToolButton *m_optionsButton = nullptr;
    QComboBox *m_sortPicker = nullptr;
    QAction *m_includeSubfoldersAction = nullptr;
    QAction *m_filesOnlyAction = nullptr;
    QAction *m_foldersOnlyAction = nullptr;
    PaneLabel *m_statusLabel = nullptr;
    PaneLabel *m_conflictLabel = nullptr;
    RevealFunction m_reveal;
    bool m_isDropTargeted = false;
    /// Set while the table shows selectedFileIDs, or while it writes them, so neither side echoes the other.
    bool m_isSyncingSelection = false;
};

} // namespace quillfern
