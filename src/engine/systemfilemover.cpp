#include "engine/systemfilemover.h"

#include "engine/moveerrors_p.h"
#include "engine/posixmove_p.h"

#if defined(Q_OS_WIN)
#include <windows.h>

#include <filesystem>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace quillfern {

SystemFileMover::~SystemFileMover()
{
    finishBatch();
}

#if defined(Q_OS_WIN)

std::optional<MoveError> SystemFileMover::move(const NativePath &from, const NativePath &to)
{
    // Neither MOVEFILE_REPLACE_EXISTING nor MOVEFILE_COPY_ALLOWED: the call fails rather than replace or copy.
    if (MoveFileExW(from.c_str(), to.c_str(), 0))
        return std::nullopt;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)
        return moveerrors::destinationExists(to);
    return moveerrors::systemError(std::error_code(int(error), std::system_category()));
}

bool SystemFileMover::isSameItem(const NativePath &first, const NativePath &second)
{
    std::error_code error;
    return std::filesystem::equivalent(first.toStdPath(), second.toStdPath(), error);
}

bool SystemFileMover::exists(const NativePath &path)
{
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path.toStdPath(), error));
}

void SystemFileMover::finishBatch()
{
}

#else

std::optional<MoveError> SystemFileMover::move(const NativePath &from, const NativePath &to)
{
    // Renaming by name relative to the open folder spares the kernel a walk of the whole path for every item;
    // that walk costs about as much as the rename itself on a fast disk. The names are the tails of the paths,
    // so nothing is copied per item.
    const qsizetype nameOffset = from.fileNameOffset();
    const QByteArrayView folder = QByteArrayView(from.native()).first(nameOffset);
    const bool isInOneFolder =
        nameOffset > 0 && nameOffset == to.fileNameOffset() && QByteArrayView(to.native()).startsWith(folder);
    if (isInOneFolder) {
        if (const int descriptor = descriptorOf(folder); descriptor >= 0)
            return posixmove::move({descriptor, from.c_str() + nameOffset}, {descriptor, to.c_str() + nameOffset});
    }
    // The item moved by its whole path could be the kept folder itself.
    closeOpenFolder();
    return posixmove::move({AT_FDCWD, from.c_str()}, {AT_FDCWD, to.c_str()});
}

int SystemFileMover::descriptorOf(QByteArrayView folder)
{
    // Only the folder of the last move is kept: a batch renames folder by folder, and moving a folder needs
    // its parent opened, so a kept folder is never one that this mover has just moved away.
    if (m_openFolderDescriptor >= 0 && folder == m_openFolder)
        return m_openFolderDescriptor;
    closeOpenFolder();
#ifdef O_PATH
    const int flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif
    m_openFolder = folder.toByteArray();
    m_openFolderDescriptor = open(m_openFolder.constData(), flags);
    return m_openFolderDescriptor;
}

void SystemFileMover::finishBatch()
{
    closeOpenFolder();
}

void SystemFileMover::closeOpenFolder()
{
    if (m_openFolderDescriptor >= 0)
        close(m_openFolderDescriptor);
    m_openFolderDescriptor = -1;
    m_openFolder.clear();
}

bool SystemFileMover::isSameItem(const NativePath &first, const NativePath &second)
{
    // lstat: a symbolic link is the item itself, not what it points to.
    struct stat firstStatus = {};
    struct stat secondStatus = {};
    return lstat(first.c_str(), &firstStatus) == 0 && lstat(second.c_str(), &secondStatus) == 0
        && firstStatus.st_dev == secondStatus.st_dev && firstStatus.st_ino == secondStatus.st_ino;
}

bool SystemFileMover::exists(const NativePath &path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

#endif

} // namespace quillfern
