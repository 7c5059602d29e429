#include "engine/batchhistory.h"

#include "engine/batchjournal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// Whether the journal's last line is its end, read from the tail alone: most journals have ended, and a
/// history of large batches must not be read whole on every start.
bool hasEndLine(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    constexpr qint64 tail = 64;
    file.seek(std::max<qint64>(0, file.size() - tail));
    const QByteArray end = file.readAll();
    const qsizetype lastLine = end.lastIndexOf('\n', end.size() - 2);
    return end.endsWith('\n') && end.sliced(lastLine + 1).startsWith("end\t");
}

/// When the batch of a journal began, from its name.
QDateTime beganAt(const QString &path)
{
    QDateTime time = QDateTime::fromString(QFileInfo(path).fileName().left(18), u"yyyyMMdd-HHmmsszzz"_s);
    time.setTimeSpec(Qt::UTC);
    return time;
}

} // namespace

BatchHistory::BatchHistory(QString folder)
    : m_folder(std::move(folder))
{
}

QString BatchHistory::standardFolder()
{
#if defined(Q_OS_LINUX) || defined(Q_OS_FREEBSD)
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state))
        state = QDir::homePath() + u"/.local/state"_s;
    return state + u"/Quillfern/history"_s;
#else
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Quillfern/History"_s;
#endif
}

QStringList BatchHistory::journalPaths() const
{
    const QDir folder(m_folder);
    QStringList paths;
    for (const QString &name : folder.entryList({u"*.journal"_s}, QDir::Files, QDir::Name))
        paths.append(folder.filePath(name));
    return paths;
}

QString BatchHistory::journalOf(const QString &batchId) const
{
    const QStringList matches = QDir(m_folder).entryList({u"*-"_s + batchId + u".journal"_s}, QDir::Files, QDir::Name);
    return matches.size() == 1 ? QDir(m_folder).filePath(matches.front()) : QString();
}

QStringList BatchHistory::interruptedJournals() const
{
    QStringList interrupted;
    for (const QString &path : journalPaths()) {
        if (hasEndLine(path) || BatchJournal::isInUse(path))
            continue;
        QString error;
        bool isPlanned = false;
        const auto record = BatchJournal::read(path, error, &isPlanned);
        if (record && isPlanned && record->state == BatchRecord::State::Unfinished)
            interrupted.append(path);
    }
    return interrupted;
}

void BatchHistory::prune(const QDateTime &now) const
{
    const QStringList paths = journalPaths();
    const QDateTime oldestKept = now.addDays(-keptDays);
    for (qsizetype index = 0; index < paths.size(); ++index) {
        const QString &path = paths[index];
        if (BatchJournal::isInUse(path))
            continue;
        const bool isBeyondCount = index < paths.size() - keptBatches;
        if (hasEndLine(path)) {
            if (isBeyondCount && beganAt(path) < oldestKept)
                QFile::remove(path);
            continue;
        }
        QString error;
        bool isPlanned = false;
        if (BatchJournal::read(path, error, &isPlanned) && !isPlanned)
            QFile::remove(path);
    }
}

} // namespace quillfern
