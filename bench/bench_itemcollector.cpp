// Weighs making the items of a folder listing on another core while the listing goes on (ItemCollector) against
// making them on the listing thread, on adding a folder of 10,000 and of 100,000 files on /dev/shm. The whole of
// AppViewModel::addFiles is timed too, so the difference can be read as a share of what adding a folder costs.
// Usage: bench_itemcollector [ROUNDS]   (default 30; run on a Release build)

#include "interleavedrounds.h"
#include "model/fileitem.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "state/folderenumerator_p.h"
#include "state/itemcollector_p.h"

#include <QList>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

void makeFiles(const NativePath &folder, int count)
{
    for (int i = 0; i < count; ++i) {
        const std::string name = "IMG_" + std::to_string(i) + " holiday photo.jpg";
        ::close(::open((folder / name.c_str()).c_str(), O_CREAT | O_WRONLY, 0644));
    }
}

void compareOn(int count, int rounds)
{
    QTemporaryDir dir(u"/dev/shm/bench_itemcollector-XXXXXX"_s);
    const NativePath folder = NativePath::fromText(dir.path());
    makeFiles(folder, count);
    qsizetype made = 0;
    const std::vector<double> medians = bench::compare("add a folder of " + std::to_string(count) + " files",
        rounds,
        {
            {"items made on the listing thread",
                [&] {
                    QList<FileItem> items;
                    folderenumerator::forEachEntry(folder, [&](NativePath location, bool isDirectory) {
                        items.emplaceBack(std::move(location), isDirectory);
                    });
                    made += items.size();
                }},
            {"items made on another core (ItemCollector)",
                [&] {
                    ItemCollector collector;
                    folderenumerator::forEachEntry(folder, [&](NativePath location, bool isDirectory) {
                        collector.add(std::move(location), isDirectory);
                    });
                    made += collector.take().size();
                }},
            {"AppViewModel::addFiles (as built)",
                [&] {
                    AppViewModel vm;
                    vm.setIncludeSubfolders(true);
                    vm.addFiles({folder});
                    made += vm.files().size();
                }},
        });
    std::printf("  the item collector saves %.1f%% of the listing and %.1f%% of addFiles\n",
        100.0 * (medians[0] - medians[1]) / medians[0],
        100.0 * (medians[0] - medians[1]) / medians[2]);
    if (made != qsizetype(3) * rounds * count)
        std::printf("  unexpected: %lld items made\n", static_cast<long long>(made));
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    compareOn(10'000, rounds);
    compareOn(100'000, rounds);
    return 0;
}
