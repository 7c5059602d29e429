#include "ui/previewlistmodel.h"

#include "state/appviewmodel.h"

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

bool isChanged(const PreviewEntry &entry)
{
    return entry.original != entry.preview;
}

} // namespace

PreviewListModel::PreviewListModel(AppViewModel *vm, QObject *parent)
    : QAbstractListModel(parent)
    , m_vm(vm)
{
    connect(vm, &AppViewModel::previewsChanged, this, &PreviewListModel::reload);
    reload();
}

int PreviewListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant PreviewListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const PreviewEntry &entry = m_entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case PreviewRole:
        return entry.preview;
    case OriginalRole:
        return entry.original;
    case HasConflictRole:
        return entry.hasConflict;
    case IsChangedRole:
        return isChanged(entry);
    case LineCountRole:
        return isChanged(entry) ? 2 : 1;
    case Qt::ToolTipRole:
        return isChanged(entry) ? entry.original + u" → "_s + entry.preview : entry.original;
    }
    return {};
}

void PreviewListModel::reload()
{
    beginResetModel();
    // The list is shared with the state object, not copied.
    m_entries = m_vm->previews();
    m_changedCount = std::count_if(m_entries.cbegin(), m_entries.cend(), isChanged);
    endResetModel();
}

} // namespace quillfern
