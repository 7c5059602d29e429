// Times the engine on large batches and prints the medians as a table. Run on a Release build:
//   bench_engine [runs]   (default 7 runs; the rename part works in a temporary folder under /dev/shm)
#include "engine/renameengine.h"
#include "model/nativepath.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>
#include <stdio.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr int previewFileCount = 100'000;
constexpr int renameFileCount = 10'000;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double processCpuMilliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double millisecondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

QList<RenameRule> previewRules()
{
    RenameRule digits(RuleType::Replace);
    digits.findText = u"(\\d+)"_s;
    digits.replaceText = u"#$1"_s;
    digits.useRegex = true;
    RenameRule title(RuleType::CaseConversion);
    title.caseType = CaseConversionType::TitleCase;
    RenameRule cleanup(RuleType::Cleanup);
    cleanup.replaceSpacesWithUnderscores = true;
    cleanup.removeSpecialChars = true;
    return {digits, title, RenameRule(RuleType::Numbering), cleanup};
}

QList<FileItem> previewFiles()
{
    static const QStringList words{u"holiday"_s, u"IMG"_s, u"report final"_s, u"scan  copy"_s, u"Übersicht"_s};
    QList<FileItem> files;
    files.reserve(previewFileCount);
    for (int i = 0; i < previewFileCount; ++i) {
        const QString name = u"%1 %2 (v%3)!.jpg"_s.arg(words[i % words.size()]).arg(i).arg(i % 7);
        files.append(FileItem(NativePath::fromText(u"/nonexistent/folder/"_s + name)));
    }
    return files;
}

/// Creates the files prefix0 .. prefixN-1 in the folder.
void createFiles(const fs::path &folder, const char *prefix)
{
    for (int i = 0; i < renameFileCount; ++i) {
        const fs::path file = folder / (prefix + std::to_string(i));
        const int descriptor = ::open(file.c_str(), O_CREAT | O_WRONLY, 0644);
        ::close(descriptor);
    }
}

/// Renames the files from_0 .. to to_0 .. through the engine.
double timeEngineRename(const fs::path &folder, const std::string &from, const std::string &to)
{
    QList<FileItem> files;
    for (int i = 0; i < renameFileCount; ++i)
        files.append(FileItem(folder / (from + std::to_string(i))));
    RenameRule rule(RuleType::Replace);
    rule.findText = QString::fromStdString(from);
    rule.replaceText = QString::fromStdString(to);
    rule.isCaseSensitive = true;
    qsizetype succeeded = 0;
    const double elapsed = millisecondsOf([&] {
        for (const RenameResult &result : RenameEngine::rename(files, {rule}))
            succeeded += result.success;
    });
    if (succeeded != renameFileCount)
        std::fprintf(stderr, "engine renamed only %lld files\n", static_cast<long long>(succeeded));
    return elapsed;
}

/// Renames the same way with a bare loop of no-replace renames over prepared paths.
double timeBareLoop(const fs::path &folder, const std::string &from, const std::string &to)
{
    std::vector<std::pair<std::string, std::string>> names;
    for (int i = 0; i < renameFileCount; ++i)
        names.emplace_back((folder / (from + std::to_string(i))).string(),
            (folder / (to + std::to_string(i))).string());
    int failures = 0;
    const double elapsed = millisecondsOf([&] {
        for (const auto &[source, destination] : names)
            failures += renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, destination.c_str(), RENAME_NOREPLACE) != 0;
    });
    if (failures != 0)
        std::fprintf(stderr, "bare loop failed %d renames\n", failures);
    return elapsed;
}

double timePerlRename(const fs::path &folder)
{
    QStringList arguments{u"s/^c_/d_/"_s};
    for (int i = 0; i < renameFileCount; ++i)
        arguments.append(u"c_%1"_s.arg(i));
    QProcess perl;
    perl.setWorkingDirectory(NativePath(folder).toText());
    const double elapsed = millisecondsOf([&] {
        perl.start(u"file-rename"_s, arguments);
        perl.waitForFinished(-1);
    });
    if (perl.exitCode() != 0)
        std::fprintf(stderr, "file-rename failed: %s\n", perl.readAllStandardError().constData());
    return elapsed;
}

} // namespace

int main(int argc, char *argv[])
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;

    const QList<RenameRule> rules = previewRules();
    const QList<FileItem> files = previewFiles();
    std::vector<double> preview;
    std::vector<double> previewCpu;
    for (int run = 0; run < runs; ++run) {
        const double cpuBefore = processCpuMilliseconds();
        preview.push_back(millisecondsOf([&] { (void)RenameEngine::preview(rules, files); }));
        previewCpu.push_back(processCpuMilliseconds() - cpuBefore);
    }

    std::vector<double> engine;
    std::vector<double> bare;
    std::vector<double> perl;
    for (int run = 0; run < runs; ++run) {
        QTemporaryDir dir(u"/dev/shm/bench_engine-XXXXXX"_s);
        const fs::path folder = NativePath::fromText(dir.path()).toStdPath();
        createFiles(folder, "a_");
        // Alternate which goes first, so that neither always meets the freshly created files.
        if (run % 2 == 0) {
            engine.push_back(timeEngineRename(folder, "a_", "b_"));
            bare.push_back(timeBareLoop(folder, "b_", "c_"));
        } else {
            bare.push_back(timeBareLoop(folder, "a_", "b_"));
            engine.push_back(timeEngineRename(folder, "b_", "c_"));
        }
        perl.push_back(timePerlRename(folder));
    }

    std::printf("%-52s %10s\n", "benchmark (median of runs)", "ms");
    std::printf("%-52s %10.1f\n", "preview, 100,000 files, regex+title+numbering+cleanup", median(preview));
    std::printf("%-52s %10.1f\n", "  the same, CPU time of all threads", median(previewCpu));
    std::printf("%-52s %10.1f\n", "rename, 10,000 files, RenameEngine::rename", median(engine));
    std::printf("%-52s %10.1f\n", "rename, 10,000 files, bare renameat2 loop", median(bare));
    std::printf("%-52s %10.1f\n", "rename, 10,000 files, file-rename (perl)", median(perl));
    std::printf("%-52s %10.2f\n", "engine / bare loop", median(engine) / median(bare));
    std::printf("(%d runs)\n", runs);
    return 0;
}
