#pragma once

#include "model/fileitem.h"
#include "model/nativepath.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// The current names of the items, in order.
inline QStringList names(const QList<quillfern::FileItem> &items)
{
    QStringList result;
    for (const quillfern::FileItem &item : items)
        result << item.originalName();
    return result;
}

/// Creates files and folders below a temporary folder for state tests.
class TestFiles final
{
public:
    [[nodiscard]] quillfern::NativePath path(const QString &relative) const
    {
        return quillfern::NativePath::fromText(m_dir.filePath(relative));
    }

    quillfern::NativePath file(const QString &relative, const QByteArray &content = {}) const
    {
        const QString full = m_dir.filePath(relative);
        QDir().mkpath(QFileInfo(full).absolutePath());
        QFile file(full);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot create test file");
        return path(relative);
    }

    quillfern::NativePath folder(const QString &relative) const
    {
        QDir().mkpath(m_dir.filePath(relative));
        return path(relative);
    }

    [[nodiscard]] bool exists(const QString &relative) const { return QFileInfo::exists(m_dir.filePath(relative)); }

private:
    QTemporaryDir m_dir;
};
