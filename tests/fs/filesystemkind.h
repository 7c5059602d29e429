#pragma once

#include <QString>

#include <array>
#include <string_view>

namespace quillfern {

/// A kind of file system that the file-system matrix mounts and renames on.
enum class FileSystemKind {
    Tmpfs,
    Ext4,
    Xfs,
    Btrfs,
    Exfat,
    Bindfs,
    Ntfs,
    NtfsIgnoringCase,
};

/// What sets a kind of file system apart for the moves of a batch.
struct FileSystemTraits
{
    FileSystemKind kind;
    /// The name of the kind in test rows and result lines.
    std::u16string_view name;
    /// Whether two spellings of a name that differ only in case name one entry.
    bool ignoresCase;
    /// Whether it has hard links, so that a move it refuses the no-replace flag is still atomic.
    bool hasHardLinks;
    /// Whether its folders list every name in lower case, whatever the case it was stored with.
    bool listsInLowerCase;
};

/// Every kind, in the order the matrix runs them.
inline constexpr std::array<FileSystemTraits, 8> fileSystemKinds{{
    {FileSystemKind::Tmpfs, u"tmpfs", false, true, false},
    {FileSystemKind::Ext4, u"ext4", false, true, false},
    {FileSystemKind::Xfs, u"xfs", false, true, false},
    {FileSystemKind::Btrfs, u"btrfs", false, true, false},
    {FileSystemKind::Exfat, u"exfat-fuse", true, false, false},
    {FileSystemKind::Bindfs, u"bindfs", false, true, false},
    {FileSystemKind::Ntfs, u"ntfs-3g", false, true, false},
    {FileSystemKind::NtfsIgnoringCase, u"ntfs-3g-ignore-case", true, true, true},
}};

/// The traits of one kind.
constexpr const FileSystemTraits &traitsOf(FileSystemKind kind)
{
    for (const FileSystemTraits &traits : fileSystemKinds) {
        if (traits.kind == kind)
            return traits;
    }
    return fileSystemKinds.front();
}

/// The name of one kind.
inline QString nameOf(FileSystemKind kind)
{
    const std::u16string_view name = traitsOf(kind).name;
    return QString::fromUtf16(name.data(), qsizetype(name.size()));
}

} // namespace quillfern
