#include "cli/clioptions.h"
#include "cli/clitool.h"

#include <QCoreApplication>
#include <QTextStream>

#include <limits>

#ifdef __GLIBC__
#include <malloc.h>
#endif

int main(int argc, char *argv[])
{
#ifdef __GLIBC__
    // The tool runs one batch and exits. Memory handed back to the system in between would only be faulted in
    // afresh for the next list of the batch, a cost that shows at 100,000 files, so large blocks come from the
    // heap and the heap is never trimmed.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
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
