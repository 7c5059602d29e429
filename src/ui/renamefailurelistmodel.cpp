#include "ui/renamefailurelistmodel.h"

using namespace Qt::StringLiterals;

namespace quillfern {

RenameFailureListModel::RenameFailureListModel(const QList<RenameResult> &results, QObject *parent)
    : QAbstractListModel(parent)
{
    for (const RenameResult &result : results) {
        if (!result.success)
            m_failures.append(result);
    }
}

int RenameFailureListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_failures.size());
}

QVariant RenameFailureListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const RenameResult &failure = m_failures.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return failure.originalURL.fileNameText();
    case ReasonRole:
        return reasonText(failure);
    case Qt::ToolTipRole:
        return failure.originalURL.toText();
    }
    return {};
}

QString RenameFailureListModel::reasonText(const RenameResult &result)
{
    // A failure without words says so rather than leaving the line blank.
    return result.error.value_or(QString()).isEmpty() ? u"Unknown error"_s : *result.error;
}

} // namespace quillfern
