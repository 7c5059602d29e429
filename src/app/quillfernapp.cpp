#include "app/quillfernapp.h"

#include "app/appmenus.h"
#include "ui/contentview.h"

#include <QMainWindow>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// The window's size when it opens: room for every pane at its ideal width.
constexpr QSize initialSize{1200, 760};

} // namespace

QuillfernApp::QuillfernApp()
    : m_window(std::make_unique<QMainWindow>())
    , m_contentView(new ContentView(&m_vm, &m_presetManager))
{
    m_window->setObjectName(u"mainWindow"_s);
    m_window->setWindowTitle(u"Quillfern"_s);
    m_contentView->setMinimumSize(minimumContentSize);
    m_window->setCentralWidget(m_contentView);
    new AppMenus(&m_vm, m_window->menuBar());
    m_window->resize(initialSize);
}

QuillfernApp::~QuillfernApp() = default;

void QuillfernApp::open(const QList<NativePath> &locations)
{
    if (!locations.isEmpty())
        m_vm.addFiles(locations);
}

} // namespace quillfern
