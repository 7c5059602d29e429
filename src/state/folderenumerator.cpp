#include "state/folderenumerator_p.h"

#ifdef Q_OS_WIN
#include <filesystem>
#include <system_error>
#else
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>
#include <memory>
#endif

namespace quillfern::folderenumerator {

// Each folder is listed on its own, so an entry that cannot be read ends the listing of its folder only, never
// the rest of the tree. An entry's type comes from the listing where the file system gives it; only entries of
// unknown type and links need a stat.

#ifdef Q_OS_WIN

void forEachEntry(const NativePath &folder, const std::function<void(NativePath, bool)> &visit)
{
    namespace fs = std::filesystem;
    std::error_code error;
    for (fs::directory_iterator it(folder.toStdPath(), error); !error && it != fs::directory_iterator();
         it.increment(error)) {
        std::error_code statusError;
        const bool isDirectory = it->is_directory(statusError) && !statusError;
        const bool isLink = it->is_symlink(statusError);
        visit(it->path(), isDirectory);
        if (isDirectory && !isLink)
            forEachEntry(it->path(), visit);
    }
}

#else

namespace {

struct Kind
{
    bool isDirectory = false;
    bool isLink = false;
};

Kind kindOf(DIR *listing, const dirent &entry)
{
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return Kind{entry.d_type == DT_DIR, false};
    // A link counts as a folder when it leads to one, as the window shows it; it is never entered.
    struct stat status = {};
    if (fstatat(dirfd(listing), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return {};
    if (!S_ISLNK(status.st_mode))
        return Kind{S_ISDIR(status.st_mode), false};
    return Kind{fstatat(dirfd(listing), entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode), true};
}

bool isDotOrDotDot(const char *name)
{
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

} // namespace

void forEachEntry(const NativePath &folder, const std::function<void(NativePath, bool)> &visit)
{
    const std::unique_ptr<DIR, int (*)(DIR *)> listing(opendir(folder.c_str()), &closedir);
    if (!listing)
        return;
    QByteArray prefix = folder.native();
    if (!prefix.endsWith('/'))
        prefix += '/';
    while (const dirent *entry = readdir(listing.get())) {
        if (isDotOrDotDot(entry->d_name))
            continue;
        const Kind kind = kindOf(listing.get(), *entry);
        // Measured as a view: concatenated as it is, the name's array would reserve its full 256 bytes.
        const QByteArrayView name(entry->d_name);
        QByteArray path;
        path.reserve(prefix.size() + name.size());
        path.append(prefix).append(name);
        NativePath location(std::move(path));
        if (kind.isDirectory && !kind.isLink) {
            visit(location, true);
            forEachEntry(location, visit);
        } else {
            visit(std::move(location), kind.isDirectory);
        }
    }
}

#endif

} // namespace quillfern::folderenumerator
