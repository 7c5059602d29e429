#pragma once

#include "model/fileitem.h"

#include <QAbstractTableModel>
#include <QFileIconProvider>
#include <QHash>
#include <QIcon>
#include <QList>
#include <QUuid>

namespace quillfern {

class AppViewModel;

/// The file table's rows: the state object's filtered and sorted files, cached, with a checkbox column. A
/// change of the list, the filter, the sort order or the files-only/folders-only flags resets the model; a
/// change of selection flags alone only refreshes the checkbox column. Display texts that need the file
/// system (size, date) are computed for the rows that are shown and kept until the list changes. Every name has an
/// icon, so names line up: its kind's, or a generic one for an item that is not on disk.
class FileTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column {
        SelectedColumn,
        NameColumn,
        SizeColumn,
        ModifiedColumn,
        TypeColumn,
        ColumnCount,
    };
    enum Role {
        /// The row's FileItem id (QUuid).
        FileIdRole = Qt::UserRole + 1,
    };

    explicit FileTableModel(AppViewModel *vm, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant
    headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Checking or unchecking the checkbox column sets the row's isSelected in the state object.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// The item shown in `row`.
    [[nodiscard]] const FileItem &file(int row) const { return m_rows.at(row); }

    /// The edge of the icons of the name column, in device-independent pixels.
    static constexpr int iconSize = 16;

    /// "Folder" for a directory, "File" for a file without extension, else the extension in upper case.
    [[nodiscard]] static QString typeText(const FileItem &item);

private:
    /// The texts and icon of one item, made the first time its row is shown.
    struct RowDetails
    {
        QString name;
        QString size;
        QString modified;
        QString type;
        QIcon icon;
    };

    void reload();
    void filesChanged();
    void refreshSelectionFlags();
    [[nodiscard]] const RowDetails &details(int row) const;
    /// The icon of the item's kind, looked up once per kind on the first item of the kind found on disk.
    [[nodiscard]] QIcon iconFor(const FileItem &item) const;
    /// The icon of any file or any folder, for an item whose own could not be looked up; never a null icon.
    [[nodiscard]] QIcon genericIcon(bool isDirectory) const;

    AppViewModel *m_vm;
    /// The state object's filteredFiles at the last reload, with selection flags kept current.
    QList<FileItem> m_rows;
    /// The ids of all files at the last reload, in order, to tell a selection-only change from a new list.
    QList<QUuid> m_fileIds;
    /// For each row, the index of its item in the state object's files; built on the first selection-only
    /// change after a reload, so loading a list never pays for it.
    QList<qsizetype> m_fileIndexes;
    mutable QHash<QUuid, RowDetails> m_details;
    /// Icons by kind ("/" for folders, else the lower-case extension): one lookup per kind, not per file. Only
    /// icons found are kept.
    mutable QHash<QString, QIcon> m_iconsByKind;
    mutable QIcon m_genericFileIcon;
    mutable QIcon m_genericFolderIcon;
    QFileIconProvider m_iconProvider;
};

} // namespace quillfern
