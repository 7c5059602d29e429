#include "scratchmount.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

constexpr int toolTimeoutMilliseconds = 60'000;
constexpr qint64 mountTimeoutMilliseconds = 20'000;

QString systemMessage(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

/// The path of a program, looked for in PATH and in the system folders a plain user's PATH often lacks; empty,
/// with `error` naming the package to install, when it is not there.
QString toolPath(const QString &name, const QString &package, QString &error)
{
    QString path = QStandardPaths::findExecutable(name);
    if (path.isEmpty())
        path = QStandardPaths::findExecutable(name, {u"/usr/local/sbin"_s, u"/usr/sbin"_s, u"/sbin"_s});
    if (path.isEmpty())
        error = u"%1 is not installed (package %2)"_s.arg(name, package);
    return path;
}

/// Runs a tool to its end; its standard output, or none with `error` holding what it said when it failed.
std::optional<QByteArray> runTool(const QString &program, const QStringList &arguments, QString &error)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForStarted()) {
        error = u"%1 did not start: %2"_s.arg(program, process.errorString());
        return std::nullopt;
    }
    if (!process.waitForFinished(toolTimeoutMilliseconds)) {
        error = u"%1 did not end within a minute"_s.arg(program);
        return std::nullopt;
    }
    const QByteArray out = process.readAllStandardOutput();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        const QString said = QString::fromLocal8Bit(process.readAllStandardError() + out).simplified();
        error = u"%1 %2 failed (exit code %3)%4"_s.arg(QFileInfo(program).fileName(), arguments.join(u' '))
                    .arg(process.exitCode())
                    .arg(said.isEmpty() ? QString() : u": "_s + said);
        return std::nullopt;
    }
    return out;
}

/// Whether another file system is mounted on the folder.
bool isMountPoint(const QString &folder)
{
    struct stat own = {};
    struct stat parent = {};
    return stat(QFile::encodeName(folder).constData(), &own) == 0
        && stat(QFile::encodeName(folder + u"/.."_s).constData(), &parent) == 0 && own.st_dev != parent.st_dev;
}

/// The end of what a daemon said, after a colon; nothing when it said nothing.
QString tailOf(const QString &logFile)
{
    QFile log(logFile);
    const QString text =
        log.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(log.readAll().right(400)).simplified() : QString();
    return text.isEmpty() ? text : u": "_s + text;
}

/// The FUSE device is there and can be opened: the module is loaded and this process may use it.
bool hasFuse(QString &error)
{
    struct stat status = {};
    if (stat("/dev/fuse", &status) != 0 || !S_ISCHR(status.st_mode)) {
        error = u"FUSE is not available (no device /dev/fuse)"_s;
        return false;
    }
    const int device = open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (device < 0) {
        error = u"FUSE is not available (/dev/fuse: %1)"_s.arg(systemMessage(errno));
        return false;
    }
    close(device);
    return true;
}

} // namespace

ScratchMount::ScratchMount(FileSystemKind kind, const QString &folder)
    : m_kind(kind)
    , m_folder(folder)
    , m_backing(folder + u"/backing"_s)
    , m_image(folder + u"/backing/volume.img"_s)
    , m_root(folder + u"/root"_s)
{
}

std::unique_ptr<ScratchMount> ScratchMount::make(FileSystemKind kind, const QString &workFolder, QString &whyNot)
{
    std::unique_ptr<ScratchMount> mount(new ScratchMount(kind, QDir(workFolder).filePath(nameOf(kind))));
    if (!QDir().mkpath(mount->m_backing) || !QDir().mkpath(mount->m_root)) {
        whyNot = u"cannot create the folders under %1"_s.arg(workFolder);
        return nullptr;
    }
    if (!mount->setUp(whyNot))
        return nullptr;
    return mount;
}

bool ScratchMount::setUp(QString &whyNot)
{
    struct Image
    {
        const char16_t *mkfs;
        const char16_t *package;
        QStringList options;
        const char16_t *type;
    };
    const auto loopImage = [&](const Image &image) {
        const QString mkfs = toolPath(QString::fromUtf16(image.mkfs), QString::fromUtf16(image.package), whyNot);
        const QString mount = toolPath(u"mount"_s, u"mount"_s, whyNot);
        if (mkfs.isEmpty() || mount.isEmpty() || !mountTmpfs(m_backing, whyNot)
            || !makeImage(mkfs, image.options, whyNot))
            return false;
        // mount sets up the loop device to be detached when the file system is unmounted.
        if (!runTool(mount, {u"-t"_s, QString::fromUtf16(image.type), u"-o"_s, u"loop"_s, m_image, m_root}, whyNot))
            return false;
        m_mounted.push_back(m_root);
        return true;
    };

    switch (m_kind) {
    case FileSystemKind::Tmpfs:
        return mountTmpfs(m_root, whyNot);
    case FileSystemKind::Ext4:
        return loopImage({u"mkfs.ext4", u"e2fsprogs", {u"-q"_s, u"-F"_s}, u"ext4"});
    case FileSystemKind::Xfs:
        return loopImage({u"mkfs.xfs", u"xfsprogs", {u"-q"_s, u"-f"_s}, u"xfs"});
    case FileSystemKind::Btrfs:
        return loopImage({u"mkfs.btrfs", u"btrfs-progs", {u"-q"_s, u"-f"_s}, u"btrfs"});
    case FileSystemKind::Exfat: {
        const QString mkfs = toolPath(u"mkfs.exfat"_s, u"exfatprogs"_s, whyNot);
        const QString daemon = toolPath(u"mount.exfat-fuse"_s, u"exfat-fuse"_s, whyNot);
        const QString losetup = toolPath(u"losetup"_s, u"mount"_s, whyNot);
        if (mkfs.isEmpty() || daemon.isEmpty() || losetup.isEmpty() || !hasFuse(whyNot)
            || !mountTmpfs(m_backing, whyNot) || !makeImage(mkfs, {}, whyNot))
            return false;
        // exfat-fuse mounts block devices only.
        const auto device = runTool(losetup, {u"--find"_s, u"--show"_s, m_image}, whyNot);
        if (!device)
            return false;
        const QString devicePath = QString::fromLocal8Bit(*device).trimmed();
        // Its -d keeps it in the foreground, printing every request, which nobody reads.
        const bool isMounted = startDaemon(daemon, {u"-d"_s, devicePath, m_root}, whyNot);
        // Detaching a device in use only marks it to be detached when the daemon closes it.
        QString detachError;
        (void)runTool(losetup, {u"-d"_s, devicePath}, detachError);
        return isMounted;
    }
    case FileSystemKind::Bindfs: {
        const QString daemon = toolPath(u"bindfs"_s, u"bindfs"_s, whyNot);
        return !daemon.isEmpty() && hasFuse(whyNot) && mountTmpfs(m_backing, whyNot)
            && startDaemon(daemon, {u"-f"_s, m_backing, m_root}, whyNot);
    }
    case FileSystemKind::Ntfs:
    case FileSystemKind::NtfsIgnoringCase: {
        const QString mkfs = toolPath(u"mkntfs"_s, u"ntfs-3g"_s, whyNot);
        const bool ignoresCase = m_kind == FileSystemKind::NtfsIgnoringCase;
        const QString daemon = toolPath(ignoresCase ? u"lowntfs-3g"_s : u"ntfs-3g"_s, u"ntfs-3g"_s, whyNot);
        return !mkfs.isEmpty() && !daemon.isEmpty() && hasFuse(whyNot) && mountTmpfs(m_backing, whyNot)
            && makeImage(mkfs, {u"-Q"_s, u"-F"_s, u"-q"_s}, whyNot)
            && startDaemon(daemon,
                {u"-o"_s, ignoresCase ? u"no_detach,ignore_case"_s : u"no_detach"_s, m_image, m_root},
                whyNot);
    }
    }
    return false;
}

ScratchMount::~ScratchMount()
{
    if (m_daemon)
        stopDaemon();
    while (!m_mounted.empty())
        unmount(m_mounted.back());
}

bool ScratchMount::mountTmpfs(const QString &target, QString &error)
{
    if (mount("tmpfs", QFile::encodeName(target).constData(), "tmpfs", 0, "size=1g,mode=0755") != 0) {
        error = u"cannot mount a tmpfs on %1: %2"_s.arg(target, systemMessage(errno));
        return false;
    }
    m_mounted.push_back(target);
    return true;
}

bool ScratchMount::makeImage(const QString &mkfs, const QStringList &options, QString &error)
{
    // Sparse: only the blocks the file system writes take memory. 320 MiB is more than xfs's smallest volume.
    QFile image(m_image);
    if (!image.open(QIODevice::WriteOnly) || !image.resize(qint64(320) << 20)) {
        error = u"cannot create the image %1: %2"_s.arg(m_image, image.errorString());
        return false;
    }
    image.close();
    return runTool(mkfs, options + QStringList{m_image}, error).has_value();
}

bool ScratchMount::startDaemon(const QString &program, const QStringList &arguments, QString &error)
{
    auto daemon = std::make_unique<QProcess>();
    const QString log = m_folder + u"/daemon.log"_s;
    daemon->setStandardInputFile(QProcess::nullDevice());
    if (m_kind == FileSystemKind::Exfat) {
        daemon->setStandardOutputFile(QProcess::nullDevice());
        daemon->setStandardErrorFile(QProcess::nullDevice());
    } else {
        daemon->setStandardOutputFile(log, QIODevice::Append);
        daemon->setStandardErrorFile(log, QIODevice::Append);
    }
    // The daemon ends with this process, even when the test crashes: ending, it unmounts its file system.
    daemon->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    daemon->start(program, arguments);
    if (!daemon->waitForStarted()) {
        error = u"%1 did not start: %2"_s.arg(program, daemon->errorString());
        return false;
    }
    QElapsedTimer waited;
    waited.start();
    while (!isMountPoint(m_root)) {
        if (daemon->waitForFinished(20)) {
            error = u"%1 ended without mounting (exit code %2)%3"_s.arg(QFileInfo(program).fileName())
                        .arg(daemon->exitCode())
                        .arg(tailOf(log));
            return false;
        }
        if (waited.hasExpired(mountTimeoutMilliseconds)) {
            error = u"%1 did not mount within %2 s"_s.arg(program).arg(mountTimeoutMilliseconds / 1000);
            return false;
        }
    }
    m_daemon = std::move(daemon);
    m_mounted.push_back(m_root);
    return true;
}

void ScratchMount::stopDaemon()
{
    unmount(m_root);
    // Unmounted, a FUSE daemon writes back what it holds and ends; the volume is whole only after that.
    if (!m_daemon->waitForFinished(15'000)) {
        qWarning("FUSE daemon of %s did not end after unmounting; killing it", qPrintable(m_root));
        m_daemon->kill();
        m_daemon->waitForFinished(5'000);
    }
    m_daemon.reset();
}

void ScratchMount::unmount(const QString &target)
{
    const QByteArray path = QFile::encodeName(target);
    if (umount2(path.constData(), 0) != 0) {
        qWarning("cannot unmount %s (%s); detaching it", path.constData(), std::strerror(errno));
        if (umount2(path.constData(), MNT_DETACH) != 0)
            qWarning("cannot detach %s: %s", path.constData(), std::strerror(errno));
    }
    m_mounted.erase(std::remove(m_mounted.begin(), m_mounted.end(), target), m_mounted.end());
}

std::optional<QStringList> ScratchMount::storedNames(const QString &folder, QString &error)
{
    const auto list = [&]() -> std::optional<QStringList> {
        const QDir listed(QDir(m_root).filePath(folder));
        if (!listed.exists()) {
            error = u"%1 is not there"_s.arg(listed.path());
            return std::nullopt;
        }
        QStringList names = listed.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        std::sort(names.begin(), names.end());
        return names;
    };
    if (m_kind != FileSystemKind::NtfsIgnoringCase)
        return list();
    // lowntfs-3g's ignore_case shows every name in lower case: ntfs-3g without it shows the names as stored.
    QString toolError;
    const QString keepingCase = toolPath(u"ntfs-3g"_s, u"ntfs-3g"_s, toolError);
    const QString ignoringCase = toolPath(u"lowntfs-3g"_s, u"ntfs-3g"_s, toolError);
    stopDaemon();
    if (!startDaemon(keepingCase, {u"-o"_s, u"no_detach"_s, m_image, m_root}, error))
        return std::nullopt;
    const std::optional<QStringList> names = list();
    stopDaemon();
    if (!startDaemon(ignoringCase, {u"-o"_s, u"no_detach,ignore_case"_s, m_image, m_root}, error))
        return std::nullopt;
    return names;
}

} // namespace quillfern
