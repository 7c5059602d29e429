#include "ui/filemanagerreveal.h"

#include "model/nativepath.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QProcess>
#include <QSet>
#include <QUrl>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

#if !defined(Q_OS_MACOS) && !defined(Q_OS_WIN)
/// Opens each distinct folder holding the items: the best that can be done without a FileManager1 service.
void openFolders(const QList<NativePath> &locations)
{
    QSet<QString> opened;
    for (const NativePath &location : locations) {
        const QString folder = location.parent().toText();
        if (!opened.contains(folder)) {
            opened.insert(folder);
            QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
        }
    }
}

/// The argument dbus-send reads as an array of strings. Its items are separated by commas, so commas inside
/// the URLs are percent-encoded (which leaves the URLs equivalent).
QString uriArrayArgument(const QList<NativePath> &locations)
{
    QStringList uris;
    for (const NativePath &location : locations) {
        const QUrl url = QUrl::fromLocalFile(location.toText());
        uris << QString::fromUtf8(url.toEncoded()).replace(u',', u"%2C"_s);
    }
    return u"array:string:"_s + uris.join(u',');
}
#endif

} // namespace

QString FileManagerReveal::actionTitle()
{
#if defined(Q_OS_MACOS)
    return u"Reveal in Finder"_s;
#elif defined(Q_OS_WIN)
    return u"Show in Explorer"_s;
#else
    return u"Show in File Manager"_s;
#endif
}

void FileManagerReveal::reveal(const QList<NativePath> &locations)
{
    if (locations.isEmpty())
        return;
#if defined(Q_OS_MACOS)
    QStringList arguments{u"-R"_s};
    for (const NativePath &location : locations)
        arguments << location.toText();
    QProcess::startDetached(u"open"_s, arguments);
#elif defined(Q_OS_WIN)
    // Explorer selects one item per window: the first is shown. The path is quoted by hand because Explorer
    // does not read "/select," and a quoted path as one argument.
    QProcess explorer;
    explorer.setProgram(u"explorer.exe"_s);
    explorer.setNativeArguments(u"/select,\""_s + QDir::toNativeSeparators(locations.first().toText()) + u'"');
    explorer.startDetached();
#else
    auto *process = new QProcess(QCoreApplication::instance());
    QObject::connect(process, &QProcess::finished, process, [process, locations](int exitCode) {
        if (process->exitStatus() != QProcess::NormalExit || exitCode != 0)
            openFolders(locations);
        process->deleteLater();
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [process, locations](QProcess::ProcessError error) {
        // A dbus-send that cannot start never finishes; one that crashed is handled by finished().
        if (error == QProcess::FailedToStart) {
            openFolders(locations);
            process->deleteLater();
        }
    });
    process->start(u"dbus-send"_s,
        {u"--session"_s,
            u"--print-reply"_s,
            u"--dest=org.freedesktop.FileManager1"_s,
            u"--type=method_call"_s,
            u"/org/freedesktop/FileManager1"_s,
            u"org.freedesktop.FileManager1.ShowItems"_s,
            uriArrayArgument(locations),
            u"string:"_s});
#endif
}

} // namespace quillfern
