#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// What one run of the built quillfern-cli gave.
struct CliRun
{
    int exitCode = -1;
    QString out;
    QString err;
    /// Standard output as written, before decoding.
    QByteArray outBytes;
};

/// Runs the built quillfern-cli as a user would, in `folder`, with the given environment, feeding `input` on
/// standard input; exit code -2 when it crashed or was killed, -1 when it did not start or end in a minute.
inline CliRun runCli(const QStringList &arguments,
    const QString &folder,
    const QProcessEnvironment &environment,
    const QByteArray &input = {})
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(QStringLiteral(QUILLFERN_CLI), arguments);
    if (!process.waitForStarted())
        return {};
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000))
        return {};
    const QByteArray out = process.readAllStandardOutput();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2,
        QString::fromUtf8(out),
        QString::fromUtf8(process.readAllStandardError()),
        out};
}
