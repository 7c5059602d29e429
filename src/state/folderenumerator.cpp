#include "state/folderenumerator_p.h"

#include <system_error>

namespace quillfern::folderenumerator {

namespace fs = std::filesystem;

void forEachEntry(const fs::path &folder, const std::function<void(const fs::path &, bool)> &visit)
{
    std::error_code error;
    fs::recursive_directory_iterator it(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
        std::error_code statusError;
        // The entry's type comes from the directory listing where it can; only links need a stat.
        const bool isDirectory = it->is_directory(statusError);
        visit(it->path(), isDirectory && !statusError);
    }
}

} // namespace quillfern::folderenumerator
