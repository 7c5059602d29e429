#pragma once

#include "engine/filemover.h"

namespace quillfern {

/// Moves items on the real file system with the platform's no-replace rename: renameat2(RENAME_NOREPLACE) on
/// Linux (link and unlink for regular files where a file system refuses the flag), renamex_np(RENAME_EXCL) on
/// macOS and MoveFileExW without replace or copy on Windows.
class SystemFileMover final : public FileMover
{
public:
    [[nodiscard]] std::optional<MoveError> move(const std::filesystem::path &from,
                                                const std::filesystem::path &to) override;
    [[nodiscard]] bool isSameItem(const std::filesystem::path &first, const std::filesystem::path &second) override;
    [[nodiscard]] bool exists(const std::filesystem::path &path) override;
};

} // namespace quillfern
