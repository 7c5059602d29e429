// Measures the state object with a 100,000-entry list: addFiles of a folder tree (subfolders on),
// updatePreviews with a four-rule chain, filteredFiles with a filter text, sorting by name, size and date,
// and the memory the list holds. Usage: bench_state [FOLDER] (default: a fresh folder under /dev/shm).

#include "presets/preset.h"
#include "state/appviewmodel.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr int folderCount = 100;
constexpr int filesPerFolder = 999; // with the folders themselves: 100,000 entries

/// Resident memory of this process in kilobytes.
long residentKilobytes()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    }
    return -1;
}

void makeTree(const fs::path &root)
{
    fs::create_directories(root);
    for (int folder = 0; folder < folderCount; ++folder) {
        const fs::path directory = root / ("Folder " + std::to_string(folder));
        fs::create_directory(directory);
        for (int file = 0; file < filesPerFolder; ++file)
            std::ofstream(directory / ("IMG_" + std::to_string(file) + " holiday photo.jpg")) << file;
    }
}

double medianMilliseconds(int runs, const std::function<void()> &work)
{
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

QList<RenameRule> fourRuleChain()
{
    RenameRule regex(RuleType::Replace);
    regex.useRegex = true;
    regex.findText = u"(\\d+)"_s;
    regex.replaceText = u"#$1"_s;
    RenameRule titleCase(RuleType::CaseConversion);
    titleCase.caseType = CaseConversionType::TitleCase;
    RenameRule numbering(RuleType::Numbering);
    RenameRule cleanup(RuleType::Cleanup);
    cleanup.replaceSpacesWithUnderscores = true;
    cleanup.removeSpecialChars = true;
    return {regex, titleCase, numbering, cleanup};
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    const fs::path root = argc > 1 ? fs::path(argv[1]) : fs::path("/dev/shm/quillfern-bench-state");
    const bool ownsTree = argc <= 1;
    if (ownsTree) {
        fs::remove_all(root);
        makeTree(root);
    }

    const long baseline = residentKilobytes();
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    QElapsedTimer timer;
    timer.start();
    vm.addFiles({root});
    // The window reads the previews as soon as they change; they are computed on that first read.
    (void)vm.previews();
    const double addMilliseconds = double(timer.nsecsElapsed()) / 1e6;
    const long afterAdd = residentKilobytes();

    const QList<RenameRule> rules = fourRuleChain();
    vm.loadPreset(Preset(u"bench"_s, rules));
    const double previewMilliseconds = medianMilliseconds(5, [&] {
        vm.updatePreviews();
        (void)vm.previews();
    });

    // Setting the filter text forgets the kept list, so each run filters and collates afresh.
    const double filterNameMilliseconds = medianMilliseconds(5, [&] {
        vm.setFilterText(u"photo"_s);
        (void)vm.filteredFiles();
    });
    vm.setFilterText({});
    vm.setSortOrder(AppViewModel::SortOrder::Size);
    const double sizeMilliseconds = medianMilliseconds(3, [&] { (void)vm.filteredFiles(); });
    vm.setSortOrder(AppViewModel::SortOrder::Date);
    const double dateMilliseconds = medianMilliseconds(3, [&] { (void)vm.filteredFiles(); });
    const long afterAll = residentKilobytes();

    out << "entries:                       " << vm.files().size() << '\n'
        << "addFiles + first preview read: " << addMilliseconds << " ms   (target 1500 ms)\n"
        << "updatePreviews + read:         " << previewMilliseconds << " ms   (target 200 ms)\n"
        << "filter + sort by name:         " << filterNameMilliseconds << " ms   (target 300 ms)\n"
        << "sort by size:                  " << sizeMilliseconds << " ms\n"
        << "sort by date:                  " << dateMilliseconds << " ms\n"
        << "memory of the list:            " << (afterAdd - baseline) / 1024 << " MB after adding, "
        << (afterAll - baseline) / 1024 << " MB with previews   (target 300 MB)\n";

    if (ownsTree)
        fs::remove_all(root);
    return 0;
}
