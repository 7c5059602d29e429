#pragma once

#include "cli/clioptions.h"
#include "engine/batchhistory.h"
#include "engine/batchrecord.h"
#include "engine/moverequest.h"

#include <QHash>
#include <QTextStream>

#include <optional>

namespace quillfern {

class BatchRunner;

/// The commands of quillfern-cli that work on the history of batches: listing it, undoing a batch on disk and
/// recovering an interrupted one; and the warning every other command gives when a batch was interrupted.
class HistoryCommands final
{
public:
    HistoryCommands(const CliOptions &options, QTextStream &out, QTextStream &err);

    int runHistory();
    int runUndo();
    int runRecover();
    /// Says on standard error which batches were interrupted and how to recover them.
    void warnAboutInterrupted();

    /// The exit status of a batch: 128 + the signal when one stopped it, else 1 when any move failed, else 0.
    [[nodiscard]] static int exitStatusOf(qsizetype failed);

private:
    /// One journal of the history.
    struct Entry
    {
        QString path;
        BatchRecord record;
    };
    /// Runs the moves as a journaled batch of `kind`, printing each result and a summary; the exit status.
    int runMoves(const QList<MoveRequest> &requests, BatchRecord::Kind kind, const QString &target);
    bool confirm(const QString &question);
    /// Every readable journal, newest first.
    [[nodiscard]] QList<Entry> readHistory() const;
    [[nodiscard]] static QString folderText(const BatchRecord &record);
    /// Which batch undid each batch, by id.
    [[nodiscard]] static QHash<QString, QString> undoneByOf(const QList<Entry> &entries);
    int fail(const QString &message);

    const CliOptions &m_options;
    QTextStream &m_out;
    QTextStream &m_err;
    BatchHistory m_history;
};

} // namespace quillfern
