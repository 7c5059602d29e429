#include "ui/filetablemodel.h"

#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"

#include <QFileInfo>
#include <QPixmap>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

FileTableModel::FileTableModel(AppViewModel *vm, QObject *parent)
    : QAbstractTableModel(parent)
    , m_vm(vm)
{
    connect(vm, &AppViewModel::filesChanged, this, &FileTableModel::filesChanged);
    for (auto changed : {&AppViewModel::filterTextChanged,
             &AppViewModel::sortOrderChanged,
             &AppViewModel::showOnlyFilesChanged,
             &AppViewModel::showOnlyFoldersChanged})
        connect(vm, changed, this, &FileTableModel::reload);
    filesChanged();
}

int FileTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int FileTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FileTableModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const int column = index.column();
    if (role == FileIdRole)
        return file(index.row()).id;
    if (column == SelectedColumn) {
        if (role == Qt::CheckStateRole)
            return file(index.row()).isSelected ? Qt::Checked : Qt::Unchecked;
        return {};
    }
    switch (role) {
    case Qt::DisplayRole: {
        const RowDetails &row = details(index.row());
        switch (column) {
        case NameColumn:
            return row.name;
        case SizeColumn:
            return row.size;
        case ModifiedColumn:
            return row.modified;
        case TypeColumn:
            return row.type;
        }
        return {};
    }
    case Qt::DecorationRole:
        return column == NameColumn ? QVariant(details(index.row()).icon) : QVariant();
    case Qt::FontRole:
        return column == NameColumn ? AppFonts::mono() : AppFonts::caption();
    case Qt::ForegroundRole:
        return column == NameColumn ? QVariant() : QVariant(AppColors::secondary());
    case Qt::ToolTipRole:
        return column == NameColumn ? QVariant(file(index.row()).url.toText()) : QVariant();
    }
    return {};
}

QVariant FileTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case NameColumn:
        return u"Name"_s;
    case SizeColumn:
        return u"Size"_s;
    case ModifiedColumn:
        return u"Modified"_s;
    case TypeColumn:
        return u"Type"_s;
    }
    return QString();
}

Qt::ItemFlags FileTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return index.column() == SelectedColumn ? flags | Qt::ItemIsUserCheckable : flags;
}

bool FileTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)
        || index.column() != SelectedColumn || role != Qt::CheckStateRole)
        return false;
    // The state object announces the change; filesChanged() then refreshes the column.
    m_vm->setFileSelected(file(index.row()).id, value.value<Qt::CheckState>() == Qt::Checked);
    return true;
}

QString FileTableModel::typeText(const FileItem &item)
{
    if (item.isDirectory)
        return u"Folder"_s;
    const QString extension = item.fileExtension();
    return extension.isEmpty() ? u"File"_s : extension.toUpper();
}

void FileTableModel::reload()
{
    beginResetModel();
    m_rows = m_vm->filteredFiles();
    m_fileIndexes.clear();
    endResetModel();
}

void FileTableModel::filesChanged()
{
    const QList<FileItem> &files = m_vm->files();
    const bool sameItems = std::equal(files.cbegin(),
        files.cend(),
        m_fileIds.cbegin(),
        m_fileIds.cend(),
        [](const FileItem &item, const QUuid &id) { return item.id == id; });
    if (!sameItems) {
        m_fileIds.resize(files.size());
        std::transform(files.cbegin(), files.cend(), m_fileIds.begin(), [](const FileItem &item) { return item.id; });
        // Texts are made again for the rows shown, which also drops those of items that left the list.
        m_details.clear();
        reload();
        return;
    }
    // Same items in the same order: only selection flags can have changed, and an item's name, and so its
    // place in the sorted list, is fixed by its id.
    refreshSelectionFlags();
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0, SelectedColumn), index(rowCount() - 1, SelectedColumn), {Qt::CheckStateRole});
}

void FileTableModel::refreshSelectionFlags()
{
    const QList<FileItem> &files = m_vm->files();
    if (m_fileIndexes.size() != m_rows.size()) {
        QHash<QUuid, qsizetype> indexById;
        indexById.reserve(files.size());
        for (qsizetype index = 0; index < files.size(); ++index)
            indexById.insert(files[index].id, index);
        m_fileIndexes.resize(m_rows.size());
        for (qsizetype row = 0; row < m_rows.size(); ++row)
            m_fileIndexes[row] = indexById.value(m_rows[row].id);
    }
    for (qsizetype row = 0; row < m_rows.size(); ++row)
        m_rows[row].isSelected = files[m_fileIndexes[row]].isSelected;
}

const FileTableModel::RowDetails &FileTableModel::details(int row) const
{
    const FileItem &item = file(row);
    auto found = m_details.find(item.id);
    if (found == m_details.end()) {
        found = m_details.insert(item.id,
            RowDetails{item.originalName(),
                item.fileSizeString(),
                item.modifiedDateString(),
                typeText(item),
                iconFor(item)});
    }
    return *found;
}

QIcon FileTableModel::iconFor(const FileItem &item) const
{
    const QString kind = item.isDirectory ? u"/"_s : item.fileExtension().toLower();
    if (const auto found = m_iconsByKind.constFind(kind); found != m_iconsByKind.cend())
        return *found;
    const QIcon icon = m_iconProvider.icon(QFileInfo(item.url.toText()));
    if (icon.isNull()) {
        // An item that is not on disk (a mistyped location, the list after an undo) has no icon to look up. That
        // says nothing about its kind, whose next item on disk gets its own icon.
        return genericIcon(item.isDirectory);
    }
    m_iconsByKind.insert(kind, icon);
    return icon;
}

QIcon FileTableModel::genericIcon(bool isDirectory) const
{
    QIcon &icon = isDirectory ? m_genericFolderIcon : m_genericFileIcon;
    if (icon.isNull())
        icon = m_iconProvider.icon(isDirectory ? QFileIconProvider::Folder : QFileIconProvider::File);
    if (icon.isNull()) {
        // Without any icon to show, an empty one of the same size keeps the name where the others are.
        QPixmap blank(iconSize, iconSize);
        blank.fill(Qt::transparent);
        icon = QIcon(blank);
    }
    return icon;
}

} // namespace quillfern
