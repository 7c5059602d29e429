#pragma once

#include "engine/previewentry.h"

#include <QAbstractListModel>
#include <QList>

namespace quillfern {

class AppViewModel;

/// The preview pane's rows: the state object's previews, in their order, cached and reset whenever the
/// previews change. Also counts the changed names once per change, for the footer.
class PreviewListModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        OriginalRole = Qt::UserRole + 1,
        PreviewRole,
        HasConflictRole,
        /// Whether the new name differs from the current one.
        IsChangedRole,
        /// The text lines the row makes room for: 2 for a changed name (the old over the new), 1 for an
        /// unchanged one.
        LineCountRole,
    };

    explicit PreviewListModel(AppViewModel *vm, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// How many entries get a new name.
    [[nodiscard]] qsizetype changedCount() const { return m_changedCount; }

private:
    void reload();

    AppViewModel *m_vm;
    QList<PreviewEntry> m_entries;
    qsizetype m_changedCount = 0;
};

} // namespace quillfern
