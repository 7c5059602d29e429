// Weighs the move primitive's kept folder (renames named relative to the folder opened once per batch) against
// moving by whole paths, in interleaved rounds. Each round renames 10,000 files of one folder and back again.
// Run on a Release build: bench_keptfolder [rounds]   (default 30; folders under /dev/shm and /var/tmp)
#include "engine/posixmove_p.h"
#include "engine/systemfilemover.h"
#include "interleavedrounds.h"

#include <QDir>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

constexpr int fileCount = 10'000;

struct Names
{
    std::vector<NativePath> from;
    std::vector<NativePath> to;
};

Names makeFiles(const QString &folder)
{
    Names names;
    for (int i = 0; i < fileCount; ++i) {
        const QString name = u"file_%1.txt"_s.arg(i, 6, 10, QChar(u'0'));
        names.from.push_back(NativePath::fromText(folder + u"/f"_s + name));
        names.to.push_back(NativePath::fromText(folder + u"/g"_s + name));
        close(open(names.from.back().c_str(), O_CREAT | O_WRONLY, 0644));
    }
    return names;
}

/// Moves by whole paths: the general path the kept folder stands in for.
void moveByPaths(const std::vector<NativePath> &from, const std::vector<NativePath> &to)
{
    posixmove::Protection protection = posixmove::Protection::Atomic;
    for (std::size_t i = 0; i < from.size(); ++i) {
        if (posixmove::move({AT_FDCWD, from[i].c_str()}, {AT_FDCWD, to[i].c_str()}, protection))
            std::abort();
    }
}

void moveInKeptFolder(const std::vector<NativePath> &from, const std::vector<NativePath> &to)
{
    SystemFileMover mover;
    for (std::size_t i = 0; i < from.size(); ++i) {
        if (mover.move(from[i], to[i]))
            std::abort();
    }
    mover.finishBatch();
}

} // namespace

int main(int argc, char **argv)
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    for (const char *parent : {"/dev/shm", "/var/tmp"}) {
        QTemporaryDir folder(QString::fromLatin1(parent) + u"/quillfern-keptfolder-XXXXXX"_s);
        const Names names = makeFiles(folder.path());
        bench::compare(std::string("rename 10,000 files and back in ") + parent,
            rounds,
            {{"whole paths",
                 [&] {
                     moveByPaths(names.from, names.to), moveByPaths(names.to, names.from);
                 }},
                {"kept folder", [&] {
                     moveInKeptFolder(names.from, names.to);
                     moveInKeptFolder(names.to, names.from);
                 }}});
    }
    return 0;
}
