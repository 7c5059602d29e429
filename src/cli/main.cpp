#include "cli/clioptions.h"
#include "cli/clitool.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Quillfern"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLFERN_VERSION));

    QString error;
    const auto options = quillfern::CliOptions::parse(argc, argv, error);
    if (!options) {
        QTextStream(stderr) << "quillfern-cli: " << error << "\nRun 'quillfern-cli --help' for usage.\n";
        return quillfern::CliTool::BadInput;
    }
    return quillfern::CliTool(*options).run();
}
