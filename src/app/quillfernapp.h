#pragma once

#include "model/nativepath.h"
#include "presets/presetmanager.h"
#include "state/appviewmodel.h"

#include <QList>
#include <QSize>

#include <memory>

class QMainWindow;

namespace quillfern {

class ContentView;

/// The application: the one state object and the one preset store of the run, and the single main window
/// showing ContentView under the menu commands. Every view of the window shares the two; none makes its own.
class QuillfernApp final
{
public:
    /// Builds the window (not shown yet); loads the presets, writing the built-in ones into an empty store.
    QuillfernApp();
    ~QuillfernApp();
    QuillfernApp(const QuillfernApp &) = delete;
    QuillfernApp &operator=(const QuillfernApp &) = delete;

    [[nodiscard]] AppViewModel &vm() { return m_vm; }
    [[nodiscard]] PresetManager &presetManager() { return m_presetManager; }
    [[nodiscard]] QMainWindow &window() { return *m_window; }
    [[nodiscard]] ContentView &contentView() { return *m_contentView; }

    /// Adds locations to the working list, as when the desktop opens files with the application.
    void open(const QList<NativePath> &locations);

    /// The smallest size of the window's content.
    static constexpr QSize minimumContentSize{960, 600};

private:
    AppViewModel m_vm;
    PresetManager m_presetManager;
    // Destroyed before the two above, which its views use to the end.
    std::unique_ptr<QMainWindow> m_window;
    ContentView *m_contentView;
};

} // namespace quillfern
