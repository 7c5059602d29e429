#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A temporary folder for tests that move files: made from a listing, and read back as one.
class TestFolder final
{
public:
    [[nodiscard]] bool isValid() const { return m_dir.isValid(); }
    [[nodiscard]] QString path() const { return m_dir.path(); }
    [[nodiscard]] QString path(const QString &relative) const { return m_dir.filePath(relative); }

    /// Makes the files and folders of a listing like "a b d/ d/x", each file holding its own relative path.
    void create(const QString &listing) const
    {
        for (const QString &entry : listing.split(u' ', Qt::SkipEmptyParts)) {
            if (entry.endsWith(u'/')) {
                QDir(m_dir.path()).mkpath(entry);
                continue;
            }
            QFile file(path(entry));
            if (!file.open(QIODevice::WriteOnly))
                qFatal("cannot make a test file");
            file.write(entry.toUtf8());
        }
    }

    [[nodiscard]] QString contentOf(const QString &relative) const
    {
        QFile file(path(relative));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("(missing)");
    }

    /// Every entry, hidden ones included, sorted: folders as "d/", files as "name=content".
    [[nodiscard]] QString listing() const
    {
        QStringList entries;
        QList<QString> pending{QString()};
        while (!pending.isEmpty()) {
            const QString folder = pending.takeFirst();
            for (const QFileInfo &info :
                QDir(path(folder)).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
                const QString relative = folder + info.fileName();
                if (info.isDir()) {
                    entries.append(relative + u'/');
                    pending.append(relative + u'/');
                } else {
                    entries.append(relative + u'=' + contentOf(relative));
                }
            }
        }
        entries.sort();
        return entries.join(u' ');
    }

private:
    QTemporaryDir m_dir;
};
