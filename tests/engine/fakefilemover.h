#pragma once

#include "engine/filemover.h"
#include "model/nativepath.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <utility>

namespace quillfern {

/// An in-memory file system for rename tests: it can ignore letter case, and it fails chosen moves with chosen
/// errors (permission denied, vanished source, full disk) that a test running as root cannot provoke.
class FakeFileMover final : public FileMover
{
public:
    explicit FakeFileMover(const QList<NativePath> &existing, bool ignoresCase = false)
        : m_ignoresCase(ignoresCase)
    {
        for (const NativePath &path : existing)
            m_items.insert(key(path));
    }

    /// The move asked for as the `callNumber`-th (from 0) fails with the message.
    void failMove(qsizetype callNumber, const QString &message) { m_failures.insert(callNumber, message); }

    std::optional<MoveError> move(const NativePath &from, const NativePath &to) override
    {
        if (const auto failure = m_failures.constFind(m_moves.size()); failure != m_failures.cend()) {
            m_moves.append({from.toText(), to.toText()});
            return MoveError{MoveError::Kind::Other, *failure};
        }
        m_moves.append({from.toText(), to.toText()});
        if (!m_items.contains(key(from)))
            return MoveError{MoveError::Kind::Other, QStringLiteral("No such file or directory")};
        if (m_items.contains(key(to)))
            return MoveError{MoveError::Kind::DestinationExists, QStringLiteral("exists")};
        m_items.remove(key(from));
        m_items.insert(key(to));
        return std::nullopt;
    }

    bool isSameItem(const NativePath &first, const NativePath &second) override
    {
        return m_items.contains(key(first)) && key(first) == key(second);
    }

    bool exists(const NativePath &path) override { return m_items.contains(key(path)); }

    std::optional<ItemIdentity> identity(const NativePath &path) override
    {
        if (!m_items.contains(key(path)))
            return std::nullopt;
        return ItemIdentity{1, quint64(qHash(key(path))), 0, 0, false};
    }

    void finishBatch() override { ++m_finishedBatches; }

    /// How many batches the engine said were finished.
    [[nodiscard]] int finishedBatches() const { return m_finishedBatches; }

    /// Every item there is now, sorted.
    [[nodiscard]] QStringList items() const
    {
        QStringList items(m_items.cbegin(), m_items.cend());
        items.sort();
        return items;
    }

    /// Every move asked for, as (from, to) texts, in order.
    [[nodiscard]] const QList<std::pair<QString, QString>> &moves() const { return m_moves; }

private:
    [[nodiscard]] QString key(const NativePath &path) const
    {
        const QString text = path.toText();
        return m_ignoresCase ? text.toLower() : text;
    }

    bool m_ignoresCase;
    QSet<QString> m_items;
    QHash<qsizetype, QString> m_failures;
    QList<std::pair<QString, QString>> m_moves;
    int m_finishedBatches = 0;
};

} // namespace quillfern
