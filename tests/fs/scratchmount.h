#pragma once

#include "filesystemkind.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace quillfern {

/// A file system of one kind, made and mounted in a folder of its own for the length of a test. Whatever the
/// checks did in between, destroying it unmounts it and lets its loop device and its FUSE daemon go. The daemons
/// also end with the process that started them, so a crashed test leaves none behind.
class ScratchMount final
{
public:
    /// Makes and mounts a file system of `kind` in a new folder under `workFolder`. Null, with `whyNot` naming
    /// what this machine lacks (a tool, a kernel module, FUSE), when it cannot.
    static std::unique_ptr<ScratchMount> make(FileSystemKind kind, const QString &workFolder, QString &whyNot);

    ~ScratchMount();
    ScratchMount(const ScratchMount &) = delete;
    ScratchMount &operator=(const ScratchMount &) = delete;

    [[nodiscard]] FileSystemKind kind() const { return m_kind; }
    /// The folder the file system is mounted on.
    [[nodiscard]] const QString &root() const { return m_root; }

    /// The names in `folder` (a path under the root), sorted, as the volume stores them. Where the mount shows
    /// every name in lower case, the volume is mounted keeping case for the reading, then as before. None, with
    /// `error` set, when the folder could not be read or the file system could not be mounted again.
    [[nodiscard]] std::optional<QStringList> storedNames(const QString &folder, QString &error);

private:
    ScratchMount(FileSystemKind kind, const QString &folder);

    [[nodiscard]] bool setUp(QString &whyNot);
    [[nodiscard]] bool mountTmpfs(const QString &target, QString &error);
    [[nodiscard]] bool makeImage(const QString &mkfs, const QStringList &options, QString &error);
    /// Starts a FUSE daemon that stays in the foreground and waits until its file system is mounted on the root.
    [[nodiscard]] bool startDaemon(const QString &program, const QStringList &arguments, QString &error);
    /// Unmounts the root's FUSE file system and waits until its daemon has ended.
    void stopDaemon();
    void unmount(const QString &target);

    FileSystemKind m_kind;
    QString m_folder;
    /// A tmpfs that holds the image, or the folder a mirror shows.
    QString m_backing;
    QString m_image;
    QString m_root;
    std::unique_ptr<QProcess> m_daemon;
    /// The mount points, in the order they were mounted.
    std::vector<QString> m_mounted;
};

} // namespace quillfern
