#include "engine/systemfilemover.h"

#include "engine/moveerrors_p.h"
#include "engine/posixmove_p.h"

#if defined(Q_OS_WIN)
#include <windows.h>

#include <filesystem>
#else
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

std::optional<ItemIdentity> SystemFileMover::identity(const NativePath &path)
{
    const HANDLE handle = CreateFileW(path.c_str(),
        FILE_READ_ATTRIBUTES,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr,
        OPEN_EXISTING,
        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT,
        nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return std::nullopt;
    BY_HANDLE_FILE_INFORMATION information = {};
    const bool isRead = GetFileInformationByHandle(handle, &information);
    CloseHandle(handle);
    if (!isRead)
        return std::nullopt;
    const auto join = [](DWORD high, DWORD low) {
        return (quint64(high) << 32) | low;
    };
    // FILETIME counts 100 ns steps from 1601; the identity only compares times, so the epoch does not matter.
    return ItemIdentity{information.dwVolumeSerialNumber,
        join(information.nFileIndexHigh, information.nFileIndexLow),
        qint64(join(information.nFileSizeHigh, information.nFileSizeLow)),
        qint64(join(information.ftLastWriteTime.dwHighDateTime, information.ftLastWriteTime.dwLowDateTime)) * 100,
        (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0};
}

void SystemFileMover::finishBatch()
{
}

std::optional<MoveError> SystemFileMover::removeSecondName(const NativePath &name, const NativePath &otherName)
{
    Q_UNUSED(name);
    Q_UNUSED(otherName);
    // Moves never leave two links behind here: MoveFileExW moves in one step.
    return MoveError{MoveError::Kind::Other, QStringLiteral("Not two names of one file.")};
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
    posixmove::Protection protection = posixmove::Protection::Atomic;
    std::optional<MoveError> error;
    const int descriptor = isInOneFolder ? descriptorOf(folder) : -1;
    if (descriptor >= 0) {
        error =
            posixmove::move({descriptor, from.c_str() + nameOffset}, {descriptor, to.c_str() + nameOffset}, protection);
    } else {
        // The item moved by its whole path could be the kept folder itself.
        closeOpenFolder();
        error = posixmove::move({AT_FDCWD, from.c_str()}, {AT_FDCWD, to.c_str()}, protection);
    }
    m_lastMoveWasUnprotected = !error && protection == posixmove::Protection::Unprotected;
    return error;
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

namespace {

/// Whether the folder lists an entry spelt exactly as `name`.
bool listsEntry(const NativePath &folder, const NativePath &name)
{
    DIR *const listing = opendir(folder.isEmpty() ? "." : folder.c_str());
    if (!listing)
        return true;
    bool isListed = false;
    while (const dirent *entry = readdir(listing)) {
        if (name.native() == QByteArrayView(entry->d_name, qsizetype(strlen(entry->d_name)))) {
            isListed = true;
            break;
        }
    }
    closedir(listing);
    return isListed;
}

} // namespace

bool SystemFileMover::isSameItem(const NativePath &first, const NativePath &second)
{
    // lstat: a symbolic link is the item itself, not what it points to.
    struct stat firstStatus = {};
    struct stat secondStatus = {};
    if (lstat(first.c_str(), &firstStatus) != 0 || lstat(second.c_str(), &secondStatus) != 0)
        return false;
    if (firstStatus.st_dev == secondStatus.st_dev && firstStatus.st_ino == secondStatus.st_ino)
        return true;
    // Some file systems that ignore case (exFAT through FUSE) give each spelling of a name its own inode
    // number. Two spellings of one name in one folder are then one entry when the folder lists only one of them.
    const NativePath folder = first.parent();
    return first.native() != second.native() && folder == second.parent()
        && first.fileNameText().compare(second.fileNameText(), Qt::CaseInsensitive) == 0
        && !(listsEntry(folder, first.fileName()) && listsEntry(folder, second.fileName()));
}

bool SystemFileMover::exists(const NativePath &path)
{
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

std::optional<MoveError> SystemFileMover::removeSecondName(const NativePath &name, const NativePath &otherName)
{
    struct stat nameStatus = {};
    struct stat otherStatus = {};
    if (lstat(name.c_str(), &nameStatus) != 0 || lstat(otherName.c_str(), &otherStatus) != 0)
        return moveerrors::systemError(std::error_code(errno, std::generic_category()));
    // One entry that a file system spells two ways has a single link: removing it would lose the file.
    const bool isSecondLink = nameStatus.st_dev == otherStatus.st_dev && nameStatus.st_ino == otherStatus.st_ino
        && !S_ISDIR(nameStatus.st_mode) && nameStatus.st_nlink >= 2;
    if (!isSecondLink)
        return MoveError{MoveError::Kind::Other, QStringLiteral("Not two names of one file.")};
    if (unlink(name.c_str()) != 0)
        return moveerrors::systemError(std::error_code(errno, std::generic_category()));
    return std::nullopt;
}

std::optional<ItemIdentity> SystemFileMover::identity(const NativePath &path)
{
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0)
        return std::nullopt;
#if defined(Q_OS_DARWIN)
    const struct timespec &modified = status.st_mtimespec;
#else
    const struct timespec &modified = status.st_mtim;
#endif
    return ItemIdentity{quint64(status.st_dev),
        quint64(status.st_ino),
        qint64(status.st_size),
        qint64(modified.tv_sec) * 1'000'000'000 + modified.tv_nsec,
        S_ISDIR(status.st_mode)};
}

#endif

} // namespace quillfern
