// Weighs sorting names of printable ASCII by their bytes against sorting them by collation keys, in the C locale
// (ICU's en_US_POSIX), whose collation orders such names as their bytes: 10,000 and 100,000 names, through
// FileListFilter as the state object sorts them. Usage: LANG=C.UTF-8 bench_namesort [ROUNDS]   (default 30)

#include "interleavedrounds.h"
#include "model/fileitem.h"
#include "model/nativepath.h"
#include "state/filteredfiles_p.h"

#include <QList>
#include <QRandomGenerator>

#include <unicode/locid.h>

#include <cstdlib>
#include <cstring>
#include <string>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

QList<FileItem> shuffledAsciiNames(int count)
{
    static const QStringList words{u"IMG"_s, u"holiday"_s, u"Report final"_s, u"scan copy"_s, u"notes"_s};
    QRandomGenerator random(42);
    QList<FileItem> items;
    items.reserve(count);
    for (int i = 0; i < count; ++i) {
        const QString name = u"%1_%2 (v%3).txt"_s.arg(words[random.bounded(int(words.size()))])
                                 .arg(random.bounded(1'000'000))
                                 .arg(i % 7);
        items.append(FileItem(NativePath::fromText(u"/nonexistent/"_s + name), false));
    }
    return items;
}

void setDefaultLocale(const char *name)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(name), status);
    if (U_FAILURE(status))
        std::exit(2);
}

void compareOn(int count, int rounds)
{
    const QList<FileItem> items = shuffledAsciiNames(count);
    const FileListFilter filter;
    // The same collation under a name the byte shortcut does not look for: ICU's collators ignore the calendar.
    const char *const collationOnly = "en_US_POSIX@calendar=gregorian";
    setDefaultLocale(collationOnly);
    const QList<qsizetype> byCollation = filter.positions(items);
    setDefaultLocale("en_US_POSIX");
    if (filter.positions(items) != byCollation)
        std::printf("  the two orders differ\n");
    qsizetype sorted = 0;
    bench::compare("sort " + std::to_string(count) + " ASCII names by name",
        rounds,
        {
            {"collation keys",
                [&] {
                    setDefaultLocale(collationOnly);
                    sorted += filter.positions(items).size();
                }},
            {"bytes",
                [&] {
                    setDefaultLocale("en_US_POSIX");
                    sorted += filter.positions(items).size();
                }},
        });
    setDefaultLocale("en_US_POSIX");
    if (sorted != qsizetype(2) * rounds * count)
        std::printf("  unexpected: %lld positions sorted\n", static_cast<long long>(sorted));
}

} // namespace

int main(int argc, char *argv[])
{
    if (std::strcmp(icu::Locale::getDefault().getName(), "en_US_POSIX") != 0) {
        std::fprintf(stderr,
            "run in the C locale (LANG=C.UTF-8): ICU's default is %s\n",
            icu::Locale::getDefault().getName());
        return 2;
    }
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 30;
    compareOn(10'000, rounds);
    compareOn(100'000, rounds);
    return 0;
}
