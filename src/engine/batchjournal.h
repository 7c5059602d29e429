#pragma once

#include "engine/batchrecord.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class QFile;

namespace quillfern {

/// The write-ahead journal of one batch: a file in the history folder that holds the plan before the first
/// move and what became of each move once the batch ends, so that an interrupted batch can be finished or
/// reverted and an ended one undone. One journal per batch, named by its time and id, so that names sort in
/// the order the batches ran.
class BatchJournal final
{
public:
    ~BatchJournal();
    BatchJournal(const BatchJournal &) = delete;
    BatchJournal &operator=(const BatchJournal &) = delete;

    /// Writes the plan of `record` (its header, folders and moves) to a new journal in `folder`, created when
    /// missing, and makes it durable with one data sync of the file and one of the folder. The journal stays
    /// locked until it is destroyed, which tells a running batch from an interrupted one. None, with `error`
    /// set, when the journal cannot be written: the batch must not start then.
    [[nodiscard]] static std::unique_ptr<BatchJournal>
    begin(const QString &folder, const BatchRecord &record, QString &error);

    /// Records the state the batch ended in and every outcome that was not a protected success. Not synced: a
    /// lost end only makes the batch look interrupted, and recovery then finds each item where it is.
    bool end(BatchRecord::State state, const std::vector<MoveOutcome> &outcomes);

    /// Appends the end of an unfinished journal that a later batch has finished or reverted.
    static bool markResolved(const QString &path, BatchRecord::State state);

    /// The record in the journal at `path`; none, with `error` set, when it cannot be read or is not a journal.
    /// A journal whose plan was never completely written yields a record with no plan line read: `isPlanned`
    /// false, and nothing of it was moved.
    [[nodiscard]] static std::optional<BatchRecord>
    read(const QString &path, QString &error, bool *isPlanned = nullptr);

    /// Whether a running batch holds the journal.
    [[nodiscard]] static bool isInUse(const QString &path);

private:
    explicit BatchJournal(std::unique_ptr<QFile> file);

    std::unique_ptr<QFile> m_file;
};

} // namespace quillfern
