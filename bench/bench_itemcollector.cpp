// Weighs making the items of a folder listing on other cores while the listing goes on against making them on
// the listing thread, as addFiles does, on adding a folder of 10,000 and of 100,000 files on /dev/shm. The whole
// of AppViewModel::addFiles is timed too, so the difference can be read as a share of what adding a folder
// costs. Usage: bench_itemcollector [ROUNDS]   (default 30; run on a Release build)

#include "interleavedrounds.h"
#include "model/fileitem.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "state/folderenumerator_p.h"

#include <QFuture>
#include <QList>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

using Batch = std::vector<std::pair<NativePath, bool>>;

/// Large enough that handing a batch over costs little next to making it.
constexpr std::size_t batchSize = 1024;

void makeFiles(const NativePath &folder, int count)
{
    for (int i = 0; i < count; ++i) {
        const std::string name = "IMG_" + std::to_string(i) + " holiday photo.jpg";
        ::close(::open((folder / name.c_str()).c_str(), O_CREAT | O_WRONLY, 0644));
    }
}

QList<FileItem> itemsOf(Batch batch)
{
    QList<FileItem> items;
    items.reserve(qsizetype(batch.size()));
    for (auto &[location, isDirectory] : batch)
        items.emplaceBack(std::move(location), isDirectory);
    return items;
}

/// The items of the folder's entries, as addFiles makes them.
QList<FileItem> itemsMadeOnTheListingThread(const NativePath &folder)
{
    QList<FileItem> items;
    folderenumerator::forEachEntry(folder,
        [&](NativePath location, bool isDirectory) { items.emplaceBack(std::move(location), isDirectory); });
    return items;
}

/// The same items, each full batch made by a task of the global pool while the listing goes on, the last one on
/// the listing thread.
QList<FileItem> itemsMadeOnOtherCores(const NativePath &folder)
{
    QList<QFuture<QList<FileItem>>> madeBatches;
    Batch batch;
    folderenumerator::forEachEntry(folder, [&](NativePath location, bool isDirectory) {
        if (batch.empty())
            batch.reserve(batchSize);
        batch.emplace_back(std::move(location), isDirectory);
        if (batch.size() == batchSize)
            madeBatches.append(QtConcurrent::run(QThreadPool::globalInstance(), &itemsOf, std::exchange(batch, {})));
    });
    QList<FileItem> items;
    items.reserve(madeBatches.size() * qsizetype(batchSize) + qsizetype(batch.size()));
    for (QFuture<QList<FileItem>> &madeBatch : madeBatches)
        items.append(madeBatch.takeResult());
    items.append(itemsOf(std::move(batch)));
    return items;
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
            {"items made on the listing thread (as built)",
                [&] {
                    made += itemsMadeOnTheListingThread(folder).size();
                }},
            {"items made on other cores, batch by batch",
                [&] {
                    made += itemsMadeOnOtherCores(folder).size();
                }},
            {"AppViewModel::addFiles (as built)",
                [&] {
                    AppViewModel vm;
                    vm.setIncludeSubfolders(true);
                    vm.addFiles({folder});
                    made += vm.files().size();
                }},
        });
    std::printf("  making the items on other cores saves %.1f%% of the listing and %.1f%% of addFiles\n",
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
