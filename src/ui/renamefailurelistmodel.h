#pragma once

#include "model/renameresult.h"

#include <QAbstractListModel>
#include <QList>

namespace quillfern {

/// The result sheet's rows: the failed results of a batch rename, in the batch's order, as they were when the
/// model was made. The display text is the file's name; the reason says why its move failed ("Unknown error"
/// when the failure gave no words).
class RenameFailureListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        /// Why the move failed, as the user reads it (QString).
        ReasonRole = Qt::UserRole + 1,
    };

    /// Keeps the failures among `results`.
    explicit RenameFailureListModel(const QList<RenameResult> &results, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// The reason shown for a failed result.
    [[nodiscard]] static QString reasonText(const RenameResult &result);

private:
    QList<RenameResult> m_failures;
};

} // namespace quillfern
