// Weighs the filter's ASCII pass against ICU's caseless form on the filter's own workload: every name of a list
// of 100,000 turned into the form it is compared in, and searched for a text that no name holds. The earlier
// form, folded without normalising, is timed too, as the baseline the ASCII names must not lose to.
// Usage: bench_filter [ROUNDS]   (default 30; run on a Release build)

#include "interleavedrounds.h"
#include "model/fileitem.h"
#include "model/icutext_p.h"
#include "model/nativepath.h"
#include "state/caselesstext_p.h"

#include <QList>

#include <cstdlib>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

constexpr int itemCount = 100'000;

QList<FileItem> itemsNamed(const QString &pattern)
{
    QList<FileItem> items;
    items.reserve(itemCount);
    for (int i = 0; i < itemCount; ++i)
        items.append(FileItem(NativePath::fromText(u"/nonexistent/"_s + pattern.arg(i)), false));
    return items;
}

/// How many names hold the needle once `formOf` made both comparable, as the filter decides it.
template<typename FormOf>
qsizetype countFound(const QList<FileItem> &items, const QString &needle, FormOf formOf)
{
    const QString neededForm = formOf(needle);
    qsizetype found = 0;
    for (const FileItem &item : items)
        found += formOf(item.originalName()).contains(neededForm);
    return found;
}

QString foldedOnly(const QString &text)
{
    icu::UnicodeString unicode = icutext::alias(text);
    return icutext::toQString(unicode.foldCase());
}

void compareOn(const QString &workload, const QList<FileItem> &items, int rounds)
{
    const QString needle = u"zzz"_s;
    qsizetype found = 0;
    bench::compare(workload.toStdString(),
        rounds,
        {
            {"ICU, every name",
                [&] {
                    found += countFound(items, needle, caselesstext::caselessFormByIcu);
                }},
            {"ASCII pass where it applies, else ICU",
                [&] {
                    found += countFound(items, needle, caselesstext::caselessForm);
                }},
            {"folded without normalising (baseline)",
                [&] {
                    found += countFound(items, needle, foldedOnly);
                }},
        });
    if (found != 0)
        std::printf("  unexpected: %lld names held the needle\n", static_cast<long long>(found));
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    compareOn(u"filter 100,000 ASCII names"_s, itemsNamed(u"IMG_%1 Holiday Photo.JPG"_s), rounds);
    compareOn(u"filter 100,000 names whose last letter is not ASCII"_s,
        itemsNamed(u"IMG_%1 Holiday Photo.JPÉ"_s),
        rounds);
    return 0;
}
