// Times a title-case preview of 100,000 names with and without the engine's plain ASCII title-case shortcut,
// in alternate rounds (the order swapped every other round) so that a machine whose speed drifts affects both
// alike, and prints both medians. Run on a Release build:
//   bench_titlecase [rounds]   (default 21)
#include "engine/casemapper_p.h"
#include "engine/renameengine.h"
#include "model/nativepath.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

constexpr int fileCount = 100'000;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

QList<FileItem> files()
{
    // The names of the engine benchmark: mostly ASCII, one in five not.
    static const QStringList words{u"holiday"_s, u"IMG"_s, u"report final"_s, u"scan  copy"_s, u"Übersicht"_s};
    QList<FileItem> made;
    made.reserve(fileCount);
    for (int i = 0; i < fileCount; ++i) {
        const QString name = u"%1 %2 (v%3)!.jpg"_s.arg(words[i % words.size()]).arg(i).arg(i % 7);
        made.append(FileItem(NativePath::fromText(u"/nonexistent/folder/"_s + name), false));
    }
    return made;
}

double previewMilliseconds(const QList<RenameRule> &rules, const QList<FileItem> &items, bool withShortcut)
{
    CaseMapper::setPlainAsciiTitleShortcut(withShortcut);
    QElapsedTimer timer;
    timer.start();
    const QList<PreviewEntry> entries = RenameEngine::preview(rules, items);
    const double elapsed = double(timer.nsecsElapsed()) / 1e6;
    if (entries.size() != items.size())
        std::fprintf(stderr, "the preview has %lld entries\n", static_cast<long long>(entries.size()));
    return elapsed;
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 21;
    RenameRule title(RuleType::CaseConversion);
    title.caseType = CaseConversionType::TitleCase;
    const QList<RenameRule> rules{title};
    const QList<FileItem> items = files();

    // One untimed run each, so that neither pays for the first break iterator or the thread pool's start.
    previewMilliseconds(rules, items, true);
    previewMilliseconds(rules, items, false);
    std::vector<double> withShortcut;
    std::vector<double> icuAlone;
    for (int round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            withShortcut.push_back(previewMilliseconds(rules, items, true));
            icuAlone.push_back(previewMilliseconds(rules, items, false));
        } else {
            icuAlone.push_back(previewMilliseconds(rules, items, false));
            withShortcut.push_back(previewMilliseconds(rules, items, true));
        }
    }
    CaseMapper::setPlainAsciiTitleShortcut(true);

    const double fast = median(withShortcut);
    const double slow = median(icuAlone);
    std::printf("title-case preview of %d names, median of %d interleaved rounds\n", fileCount, rounds);
    std::printf("%-28s %9.1f ms  (fastest %.1f ms)\n",
        "with the ASCII shortcut",
        fast,
        *std::min_element(withShortcut.begin(), withShortcut.end()));
    std::printf("%-28s %9.1f ms  (fastest %.1f ms)\n",
        "ICU alone",
        slow,
        *std::min_element(icuAlone.begin(), icuAlone.end()));
    std::printf("the shortcut saves %.1f%% of the preview\n", 100.0 * (slow - fast) / slow);
    return 0;
}
