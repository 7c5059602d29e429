#pragma once

// Small helpers shared by the widget tests.

#include "engine/systemfilemover.h"
#include "model/nativepath.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QPalette>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace quillfern::uitest {

/// The visible top-level window of type T with this object name (dialogs, alerts, sheets), or null.
template<typename T>
T *visibleTopLevel(const QString &objectName)
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (auto *found = qobject_cast<T *>(window); found && found->isVisible() && found->objectName() == objectName)
            return found;
    }
    return nullptr;
}

/// Calls `answer` with the top-level window of type T and this object name as soon as it shows, from the event
/// loop of whatever runs then (a modal dialog's own loop included). Gives up with the window after `timeoutMs`.
template<typename T>
void answerWhenShown(const QString &objectName, std::function<void(T *)> answer, int timeoutMs = 5000)
{
    auto *poll = new QTimer(qApp);
    auto deadline = std::make_shared<QDeadlineTimer>(timeoutMs);
    QObject::connect(poll, &QTimer::timeout, poll, [poll, objectName, answer = std::move(answer), deadline] {
        if (T *window = visibleTopLevel<T>(objectName)) {
            poll->deleteLater();
            poll->stop();
            answer(window);
        } else if (deadline->hasExpired()) {
            poll->deleteLater();
            poll->stop();
        }
    });
    poll->start(10);
}

/// Creates empty files with these names in `directory` and returns their paths in the same order.
inline QList<quillfern::NativePath> createFiles(const QTemporaryDir &directory, const QStringList &names)
{
    QList<quillfern::NativePath> paths;
    for (const QString &name : names) {
        const QString path = QDir(directory.path()).filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot create a test file");
        paths.append(NativePath::fromText(path));
    }
    return paths;
}

/// A dark palette like the Fusion style's, for checking the dark appearance.
inline QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2B, 0x2B, 0x2E));
    palette.setColor(QPalette::WindowText, QColor(0xEC, 0xEC, 0xEE));
    palette.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x20));
    palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x26, 0x29));
    palette.setColor(QPalette::Text, QColor(0xEC, 0xEC, 0xEE));
    palette.setColor(QPalette::Button, QColor(0x3A, 0x3A, 0x3E));
    palette.setColor(QPalette::ButtonText, QColor(0xEC, 0xEC, 0xEE));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3A, 0x3E));
    palette.setColor(QPalette::ToolTipText, QColor(0xEC, 0xEC, 0xEE));
    palette.setColor(QPalette::PlaceholderText, QColor(0x8E, 0x8E, 0x93));
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x6F, 0xDB));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Light, QColor(0x4A, 0x4A, 0x4F));
    palette.setColor(QPalette::Mid, QColor(0x3F, 0x3F, 0x44));
    palette.setColor(QPalette::Dark, QColor(0x18, 0x18, 0x1A));
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x7A, 0x7A, 0x80));
    return palette;
}

/// While it lives, the application has the dark palette when `isDark` (the light one it had otherwise); the
/// palette it had comes back when it goes.
class PaletteScope final
{
public:
    explicit PaletteScope(bool isDark)
        : m_original(QApplication::palette())
    {
        if (isDark)
            QApplication::setPalette(darkPalette());
    }
    ~PaletteScope() { QApplication::setPalette(m_original); }
    PaletteScope(const PaletteScope &) = delete;
    PaletteScope &operator=(const PaletteScope &) = delete;

private:
    QPalette m_original;
};

/// Saves `picture` as <name>.png when QUILLFERN_SCREENSHOTS names a folder; does nothing otherwise.
inline void saveScreenshot(const QPixmap &picture, const QString &name)
{
    const QString folder = qEnvironmentVariable("QUILLFERN_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    QDir().mkpath(folder);
    picture.save(QDir(folder).filePath(name + QStringLiteral(".png")));
}

/// Saves a picture of `widget` as <name>.png when QUILLFERN_SCREENSHOTS names a folder; does nothing otherwise.
inline void saveScreenshot(QWidget *widget, const QString &name)
{
    if (!qEnvironmentVariableIsEmpty("QUILLFERN_SCREENSHOTS"))
        saveScreenshot(widget->grab(), name);
}

/// Moves files on the real file system, but each move waits until release() is called, so a test can look at
/// the window while a rename runs.
class BlockingFileMover final : public FileMover
{
public:
    void release()
    {
        std::lock_guard lock(m_mutex);
        m_isReleased = true;
        m_released.notify_all();
    }

    std::optional<MoveError> move(const quillfern::NativePath &from, const quillfern::NativePath &to) override
    {
        std::unique_lock lock(m_mutex);
        m_released.wait(lock, [this] { return m_isReleased; });
        return m_system.move(from, to);
    }
    bool isSameItem(const quillfern::NativePath &first, const quillfern::NativePath &second) override
    {
        return m_system.isSameItem(first, second);
    }
    bool exists(const quillfern::NativePath &path) override { return m_system.exists(path); }
    std::optional<ItemIdentity> identity(const quillfern::NativePath &path) override { return m_system.identity(path); }

private:
    SystemFileMover m_system;
    std::mutex m_mutex;
    std::condition_variable m_released;
    bool m_isReleased = false;
};

} // namespace quillfern::uitest
