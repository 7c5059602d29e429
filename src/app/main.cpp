#include "app/quillfernapp.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>

#include <system_error>

using namespace Qt::StringLiterals;

namespace {

/// The paths given on the command line (as a file manager's "Open with" passes them), made absolute. They are
/// taken from argv as bytes, after Qt has removed its own options, so names that are not UTF-8 survive.
QList<std::filesystem::path> commandLineLocations(int argc, char *argv[])
{
    QList<std::filesystem::path> locations;
    for (int index = 1; index < argc; ++index) {
        std::error_code error;
        std::filesystem::path location = std::filesystem::absolute(argv[index], error);
        locations.append(error ? std::filesystem::path(argv[index]) : location);
    }
    return locations;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"Quillfern"_s);
    QApplication::setApplicationVersion(QStringLiteral(QUILLFERN_VERSION));
    QApplication::setDesktopFileName(u"org.quillfern.Quillfern"_s);
    QApplication::setWindowIcon(QIcon::fromTheme(u"org.quillfern.Quillfern"_s, QIcon(u":/assets/LogoDark.svg"_s)));

    quillfern::QuillfernApp app;
    app.window().show();
    app.open(commandLineLocations(argc, argv));
    return QApplication::exec();
}
