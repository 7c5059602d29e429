#include "app/quillfernapp.h"

#include <QApplication>
#include <QIcon>
#include <QMainWindow>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

/// The paths given on the command line (as a file manager's "Open with" passes them), made absolute. They are
/// taken from argv as bytes, after Qt has removed its own options, so names that are not UTF-8 survive.
QList<quillfern::NativePath> commandLineLocations(int argc, char *argv[])
{
    QList<quillfern::NativePath> locations;
    for (int index = 1; index < argc; ++index) {
        const std::filesystem::path given(argv[index]);
        std::error_code error;
        const std::filesystem::path location = std::filesystem::absolute(given, error);
        locations.append(error ? given : location);
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
