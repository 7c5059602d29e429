#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace quillfern {

/// The folder that keeps the journals of past batches: the last 100 batches, and every batch of the last 30
/// days, whichever are more; a batch that did not end is kept until it is recovered.
class BatchHistory final
{
public:
    explicit BatchHistory(QString folder);

    /// Where journals live by default: "Quillfern/history" in the user's state folder ($XDG_STATE_HOME, else
    /// ~/.local/state) on Linux, in the application's local data folder elsewhere.
    [[nodiscard]] static QString standardFolder();

    [[nodiscard]] const QString &folder() const { return m_folder; }

    /// Every journal, oldest first.
    [[nodiscard]] QStringList journalPaths() const;
    /// The journal of the batch with this id, or the empty string.
    [[nodiscard]] QString journalOf(const QString &batchId) const;
    /// The journals of batches that began moving and neither ended nor run now: interrupted ones, oldest first.
    [[nodiscard]] QStringList interruptedJournals() const;
    /// Deletes the journals beyond what is kept, and those whose plan was never completely written (nothing of
    /// such a batch was moved).
    void prune(const QDateTime &now) const;

    static constexpr qsizetype keptBatches = 100;
    static constexpr int keptDays = 30;

private:
    QString m_folder;
};

} // namespace quillfern
