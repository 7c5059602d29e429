#include "engine/batchjournal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr QByteArrayView magicLine = "quillfern-journal\t1";

const char *const kindWords[] = {"rename", "undo", "finish", "revert"};
const char *const stateWords[] = {"unfinished", "complete", "stopped", "finished", "reverted"};

/// A field with the bytes that would break a line or a field (controls, tab, newline, '%') percent-encoded;
/// every other byte, one that is not valid UTF-8 included, is kept as it is.
QByteArray encoded(QByteArrayView bytes)
{
    QByteArray field;
    field.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto unit = uchar(byte);
        if (unit < 0x20 || unit == 0x7f || unit == '%')
            field.append('%').append(QByteArray::number(unit, 16).rightJustified(2, '0'));
        else
            field.append(byte);
    }
    return field;
}

std::optional<QByteArray> decoded(QByteArrayView field)
{
    QByteArray bytes;
    bytes.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] != '%') {
            bytes.append(field[i]);
            continue;
        }
        if (i + 2 >= field.size())
            return std::nullopt;
        bool isNumber = false;
        const uint unit = field.sliced(i + 1, 2).toUInt(&isNumber, 16);
        if (!isNumber)
            return std::nullopt;
        bytes.append(char(unit));
        i += 2;
    }
    return bytes;
}

QByteArray encodedPath(const NativePath &path)
{
#ifdef Q_OS_WIN
    return encoded(path.native().toUtf8());
#else
    return encoded(path.native());
#endif
}

std::optional<NativePath> decodedPath(QByteArrayView field)
{
    auto bytes = decoded(field);
    if (!bytes)
        return std::nullopt;
#ifdef Q_OS_WIN
    return NativePath(QString::fromUtf8(*bytes));
#else
    return NativePath(std::move(*bytes));
#endif
}

template<typename Word, std::size_t count>
std::optional<int> indexOfWord(const Word (&words)[count], QByteArrayView word)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (word == QByteArrayView(words[i]))
            return int(i);
    }
    return std::nullopt;
}

void appendIdentity(QByteArray &line, const ItemIdentity &identity)
{
    line.append('\t').append(QByteArray::number(identity.device));
    line.append('\t').append(QByteArray::number(identity.inode));
    line.append('\t').append(QByteArray::number(identity.size));
    line.append('\t').append(QByteArray::number(identity.modifiedNanoseconds));
    line.append('\t').append(identity.isDirectory ? 'd' : 'f');
}

QByteArray planText(const BatchRecord &record)
{
    QByteArray text;
    text.reserve(128 + record.folders.size() * 64 + record.moves.size() * 96);
    text.append(magicLine).append('\n');
    text.append("batch\t").append(encoded(record.id.toUtf8()));
    text.append('\t').append(record.createdAt.toUTC().toString(Qt::ISODateWithMs).toLatin1());
    text.append('\t').append(kindWords[int(record.kind)]);
    text.append('\t').append(encoded(record.target.toUtf8()));
    text.append('\t').append(QByteArray::number(record.moves.size()));
    text.append('\t').append(QByteArray::number(record.folders.size())).append('\n');
    for (const BatchRecord::Folder &folder : record.folders) {
        text.append("folder\t").append(encodedPath(folder.path));
        appendIdentity(text, folder.identity);
        text.append('\n');
    }
    for (const BatchRecord::Move &move : record.moves) {
        text.append("move\t").append(QByteArray::number(move.folder));
        text.append('\t').append(encodedPath(move.from));
        text.append('\t').append(encodedPath(move.to));
        appendIdentity(text, move.identity);
        text.append('\n');
    }
    text.append("planned\n");
    return text;
}

/// Writes everything and makes it durable: the data of the file, then the folder entry that names it.
bool writeDurably(QFile &file, const QByteArray &text, QString &error)
{
    if (file.write(text) != text.size() || !file.flush()) {
        error = file.errorString();
        return false;
    }
#ifndef Q_OS_WIN
    if (fdatasync(file.handle()) != 0) {
        error = QString::fromLocal8Bit(strerror(errno));
        return false;
    }
    const int folder = open(QFile::encodeName(QFileInfo(file.fileName()).absolutePath()).constData(),
        O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0 || fsync(folder) != 0) {
        error = QString::fromLocal8Bit(strerror(errno));
        if (folder >= 0)
            close(folder);
        return false;
    }
    close(folder);
#endif
    return true;
}

bool lockExclusively(QFile &file)
{
#ifndef Q_OS_WIN
    return flock(file.handle(), LOCK_EX | LOCK_NB) == 0;
#else
    Q_UNUSED(file);
    return true;
#endif
}

/// A parser of the journal's lines with the error of the first line it could not read.
class JournalReader final
{
public:
    explicit JournalReader(const QByteArray &text)
        : m_lines(text.split('\n'))
    {
        // A line cut short by a crash while it was written is no line: the batch did not get past it.
        m_lines.removeLast();
    }

    std::optional<BatchRecord> read(QString &error, bool &isPlanned)
    {
        isPlanned = false;
        if (m_lines.isEmpty() || m_lines.front() != magicLine) {
            error = u"not a journal of this program"_s;
            return std::nullopt;
        }
        BatchRecord record;
        std::vector<bool> isFailed;
        for (qsizetype number = 1; number < m_lines.size(); ++number) {
            const QByteArray &line = m_lines[number];
            if (line.isEmpty())
                continue;
            const QList<QByteArray> fields = line.split('\t');
            if (!readLine(record, fields, isPlanned)) {
                error = u"line %1 cannot be read"_s.arg(number + 1);
                return std::nullopt;
            }
        }
        // Only what did not simply move is written, so an ended batch starts from every move done.
        if (record.state != BatchRecord::State::Unfinished) {
            record.outcomes.assign(std::size_t(record.moves.size()), MoveOutcome{MoveOutcome::State::Moved, {}});
            applyOutcomeLines(record);
        }
        return record;
    }

private:
    bool readLine(BatchRecord &record, const QList<QByteArray> &fields, bool &isPlanned)
    {
        const QByteArray &tag = fields.front();
        if (tag == "batch" && fields.size() == 7)
            return readHeader(record, fields);
        if (tag == "folder" && fields.size() == 7) {
            const auto path = decodedPath(fields[1]);
            const auto identity = readIdentity(fields, 2);
            if (!path || !identity)
                return false;
            record.folders.append({*path, *identity});
            return true;
        }
        if (tag == "move" && fields.size() == 9) {
            bool isNumber = false;
            const qsizetype folder = fields[1].toLongLong(&isNumber);
            const auto from = decodedPath(fields[2]);
            const auto to = decodedPath(fields[3]);
            const auto identity = readIdentity(fields, 4);
            if (!isNumber || folder < 0 || folder >= record.folders.size() || !from || !to || !identity)
                return false;
            record.moves.append({folder, *from, *to, *identity});
            return true;
        }
        if (tag == "planned" && fields.size() == 1) {
            isPlanned = true;
            return true;
        }
        if ((tag == "failed" && fields.size() == 3) || (tag == "skipped" && fields.size() == 2)
            || (tag == "unprotected" && fields.size() == 2)) {
            m_outcomeLines.append(fields);
            return true;
        }
        if (tag == "end" && fields.size() == 2) {
            const auto state = indexOfWord(stateWords, fields[1]);
            if (!state)
                return false;
            record.state = BatchRecord::State(*state);
            return true;
        }
        return false;
    }

    static bool readHeader(BatchRecord &record, const QList<QByteArray> &fields)
    {
        const auto id = decoded(fields[1]);
        const auto kind = indexOfWord(kindWords, fields[3]);
        const auto target = decoded(fields[4]);
        if (!id || !kind || !target)
            return false;
        record.id = QString::fromUtf8(*id);
        record.createdAt = QDateTime::fromString(QString::fromLatin1(fields[2]), Qt::ISODateWithMs);
        record.kind = BatchRecord::Kind(*kind);
        record.target = QString::fromUtf8(*target);
        return record.createdAt.isValid();
    }

    static std::optional<ItemIdentity> readIdentity(const QList<QByteArray> &fields, qsizetype first)
    {
        bool isRead[4] = {};
        ItemIdentity identity{fields[first].toULongLong(&isRead[0]),
            fields[first + 1].toULongLong(&isRead[1]),
            fields[first + 2].toLongLong(&isRead[2]),
            fields[first + 3].toLongLong(&isRead[3]),
            fields[first + 4] == "d"};
        if (!std::all_of(std::begin(isRead), std::end(isRead), [](bool read) { return read; }))
            return std::nullopt;
        return identity;
    }

    void applyOutcomeLines(BatchRecord &record) const
    {
        for (const QList<QByteArray> &fields : m_outcomeLines) {
            bool isNumber = false;
            const qsizetype move = fields[1].toLongLong(&isNumber);
            if (!isNumber || move < 0 || std::size_t(move) >= record.outcomes.size())
                continue;
            MoveOutcome &outcome = record.outcomes[std::size_t(move)];
            if (fields[0] == "failed")
                outcome = {MoveOutcome::State::Failed, QString::fromUtf8(decoded(fields[2]).value_or(QByteArray()))};
            else if (fields[0] == "skipped")
                outcome = {MoveOutcome::State::NotAttempted, {}};
            else
                outcome.wasUnprotected = true;
        }
    }

    QList<QByteArray> m_lines;
    QList<QList<QByteArray>> m_outcomeLines;
};

} // namespace

BatchJournal::BatchJournal(std::unique_ptr<QFile> file)
    : m_file(std::move(file))
{
}

BatchJournal::~BatchJournal() = default;

std::unique_ptr<BatchJournal> BatchJournal::begin(const QString &folder, const BatchRecord &record, QString &error)
{
    if (!QDir().mkpath(folder)) {
        error = u"cannot create the history folder %1"_s.arg(folder);
        return nullptr;
    }
    const QString name = record.createdAt.toUTC().toString(u"yyyyMMdd-HHmmsszzz"_s) + u'-' + record.id + u".journal"_s;
    auto file = std::make_unique<QFile>(QDir(folder).filePath(name));
    if (!file->open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        error = u"cannot create the journal %1: %2"_s.arg(file->fileName(), file->errorString());
        return nullptr;
    }
    if (!lockExclusively(*file) || !writeDurably(*file, planText(record), error)) {
        if (error.isEmpty())
            error = u"cannot lock the journal %1"_s.arg(file->fileName());
        file->remove();
        return nullptr;
    }
    return std::unique_ptr<BatchJournal>(new BatchJournal(std::move(file)));
}

bool BatchJournal::end(BatchRecord::State state, const std::vector<MoveOutcome> &outcomes)
{
    QByteArray text;
    for (std::size_t move = 0; move < outcomes.size(); ++move) {
        const MoveOutcome &outcome = outcomes[move];
        const QByteArray number = QByteArray::number(qulonglong(move));
        if (outcome.state == MoveOutcome::State::Failed)
            text.append("failed\t").append(number).append('\t').append(encoded(outcome.error.toUtf8())).append('\n');
        else if (outcome.state == MoveOutcome::State::NotAttempted)
            text.append("skipped\t").append(number).append('\n');
        else if (outcome.wasUnprotected)
            text.append("unprotected\t").append(number).append('\n');
    }
    text.append("end\t").append(stateWords[int(state)]).append('\n');
    return m_file->write(text) == text.size() && m_file->flush();
}

bool BatchJournal::markResolved(const QString &path, BatchRecord::State state)
{
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return false;
    const QByteArray line = QByteArray("end\t") + stateWords[int(state)] + '\n';
    return file.write(line) == line.size() && file.flush();
}

std::optional<BatchRecord> BatchJournal::read(const QString &path, QString &error, bool *isPlanned)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return std::nullopt;
    }
    bool planned = false;
    auto record = JournalReader(file.readAll()).read(error, planned);
    if (isPlanned)
        *isPlanned = planned;
    return record;
}

bool BatchJournal::isInUse(const QString &path)
{
#ifndef Q_OS_WIN
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const bool isFree = flock(file.handle(), LOCK_SH | LOCK_NB) == 0;
    if (isFree)
        flock(file.handle(), LOCK_UN);
    return !isFree;
#else
    Q_UNUSED(path);
    return false;
#endif
}

} // namespace quillfern
