#pragma once

#include "engine/filemover.h"

#include <QByteArray>

namespace quillfern {

/// Moves items on the real file system with the platform's no-replace rename: renameat2(RENAME_NOREPLACE) on
/// Linux (link and unlink for regular files where a file system refuses the flag), renameatx_np(RENAME_EXCL)
/// on macOS and MoveFileExW without replace or copy on Windows. On POSIX systems the folder of the last move
/// stays open until the batch finishes, and moves within it name the items relative to it.
class SystemFileMover final : public FileMover
{
public:
    SystemFileMover() = default;
    ~SystemFileMover() override;

    [[nodiscard]] std::optional<MoveError> move(const NativePath &from, const NativePath &to) override;
    [[nodiscard]] bool isSameItem(const NativePath &first, const NativePath &second) override;
    [[nodiscard]] bool exists(const NativePath &path) override;
    [[nodiscard]] std::optional<ItemIdentity> identity(const NativePath &path) override;
    [[nodiscard]] std::optional<MoveError> removeSecondName(const NativePath &name,
        const NativePath &otherName) override;
    void finishBatch() override;
    [[nodiscard]] bool lastMoveWasUnprotected() const override { return m_lastMoveWasUnprotected; }

private:
    bool m_lastMoveWasUnprotected = false;
#ifndef Q_OS_WIN
    /// A descriptor of `folder` (a path ending in its separator), opened once for all the moves in it; -1 when
    /// it cannot be opened.
    int descriptorOf(QByteArrayView folder);
    void closeOpenFolder();

    QByteArray m_openFolder;
    int m_openFolderDescriptor = -1;
#endif
};

} // namespace quillfern
