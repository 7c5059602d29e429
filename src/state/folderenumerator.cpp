#include "state/folderenumerator_p.h"

#include <system_error>

namespace quillfern::folderenumerator {

namespace fs = std::filesystem;

void forEachEntry(const fs::path &folder, const std::function<void(const fs::path &, bool)> &visit)
{
    // Each folder is listed on its own, so an entry that cannot be read ends the listing of its folder only,
    // never the rest of the tree.
    std::error_code error;
    for (fs::directory_iterator it(folder, error); !error && it != fs::directory_iterator(); it.increment(error)) {
        std::error_code statusError;
        // The entry's type comes from the directory listing where it can; only links need a stat.
        const bool isDirectory = it->is_directory(statusError) && !statusError;
        visit(it->path(), isDirectory);
        if (isDirectory && !it->is_symlink(statusError))
            forEachEntry(it->path(), visit);
    }
}

} // namespace quillfern::folderenumerator
