#include "engine/parallelchunks.h"
#include "model/fileattributes.h"
#include "model/icutext_p.h"
#include "state/caselesstext_p.h"
#include "state/filteredfiles_p.h"

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace quillfern {

namespace {

/// Case-insensitive (full case folding), diacritic-sensitive substring test that holds canonically equivalent
/// texts equal, however each is composed.
class FoldedSubstring final
{
public:
    explicit FoldedSubstring(const QString &needle)
        : m_needle(caselesstext::caselessForm(needle))
    {
    }

    [[nodiscard]] bool isIn(const QString &haystack) const
    {
        return caselesstext::caselessForm(haystack).contains(m_needle);
    }

private:
    QString m_needle;
};

/// The key of a sort key buffer, without the zero byte that ends it.
std::string withoutTerminator(const char *key, int32_t length)
{
    return std::string(key, std::size_t(std::max(length, 1) - 1));
}

/// Sort keys of a locale's collation: comparing keys orders like a locale-aware compare, which is not
/// numeric-aware ("file10" before "file2"). Each thread needs its own: ICU collators are not thread-safe.
class CollationKeys final
{
public:
    explicit CollationKeys(const icu::Collator *collator)
        : m_collator(collator ? collator->clone() : nullptr)
    {
    }

    [[nodiscard]] std::string keyOf(const QString &text) const
    {
        if (!m_collator)
            return text.toStdString();
        const icu::UnicodeString unicode = icutext::alias(text);
        // Most keys fit the buffer; the key string then takes only the bytes it needs.
        std::array<uint8_t, 128> buffer{};
        int32_t length = m_collator->getSortKey(unicode, buffer.data(), int32_t(buffer.size()));
        if (length <= int32_t(buffer.size()))
            return withoutTerminator(reinterpret_cast<const char *>(buffer.data()), length);
        std::string key(std::size_t(length), '\0');
        length = m_collator->getSortKey(unicode, reinterpret_cast<uint8_t *>(key.data()), length);
        return withoutTerminator(key.data(), length);
    }

private:
    std::unique_ptr<icu::Collator> m_collator;
};

std::unique_ptr<icu::Collator> defaultLocaleCollator()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale::getDefault(), status));
    return icutext::succeeded(status) ? std::move(collator) : nullptr;
}

/// Whether the current locale's collation orders printable ASCII text exactly as its bytes: ICU's stand-in for
/// the C locale does (tests hold it to that). The whole name is compared, since a keyword (a case-first
/// setting) could change the order. Sorting by the bytes takes under a third of the time collation keys take
/// for 10,000 names and under half for 100,000 (bench_namesort).
bool collatesPrintableAsciiAsBytes()
{
    return std::strcmp(icu::Locale::getDefault().getName(), "en_US_POSIX") == 0;
}

/// A name as the location spells it (bytes on POSIX systems, UTF-16 on Windows), without a copy.
using NameView = NativePath::view_type;

/// The names of the items at `positions`, at the items' indexes in `files`, when every one of them is printable
/// ASCII; none otherwise. Such a name is its own text, so comparing the views orders as comparing the texts.
std::optional<std::vector<NameView>> printableAsciiNames(const QList<FileItem> &files,
    const QList<qsizetype> &positions)
{
    std::vector<NameView> names(std::size_t(files.size()));
    for (const qsizetype position : positions) {
        const NativePath &location = files[position].url;
        const NameView name = NameView(location.native()).sliced(location.fileNameOffset());
        const bool isPrintableAscii = std::all_of(name.begin(), name.end(), [](auto unit) {
            // A byte of 0x80 or more is below the space as a signed char and above the tilde as an unsigned one.
            if constexpr (std::is_same_v<decltype(unit), QChar>)
                return unit >= u' ' && unit <= u'~';
            else
                return unit >= ' ' && unit <= '~';
        });
        if (!isPrintableAscii)
            return std::nullopt;
        names[std::size_t(position)] = name;
    }
    return names;
}

/// The key of every item at `positions`, at the item's index in `files`. The keys are computed on every core;
/// each range of positions gets its own key function from `makeKeyOf`.
template<typename Key, typename MakeKeyOf>
std::vector<Key> keysOf(const QList<FileItem> &files, const QList<qsizetype> &positions, MakeKeyOf makeKeyOf)
{
    std::vector<Key> keys(std::size_t(files.size()));
    parallelchunks::run(positions.size(), [&](qsizetype begin, qsizetype end) {
        const auto keyOf = makeKeyOf();
        for (qsizetype index = begin; index < end; ++index)
            keys[std::size_t(positions[index])] = keyOf(files[positions[index]]);
    });
    return keys;
}

/// The positions stably sorted by their items' keys, `before` deciding the order of two keys.
template<typename Key, typename Before>
QList<qsizetype> sortedByKeys(QList<qsizetype> positions, const std::vector<Key> &keys, Before before)
{
    std::stable_sort(positions.begin(), positions.end(), [&](qsizetype left, qsizetype right) {
        return before(keys[std::size_t(left)], keys[std::size_t(right)]);
    });
    return positions;
}

/// The positions sorted by a text of their items compared in the user's locale.
template<typename TextOf>
QList<qsizetype> sortedByText(const QList<FileItem> &files, QList<qsizetype> positions, TextOf textOf)
{
    const std::unique_ptr<icu::Collator> collator = defaultLocaleCollator();
    const auto keys = keysOf<std::string>(files, positions, [&] {
        return [&textOf, collation = CollationKeys(collator.get())](const FileItem &item) {
            return collation.keyOf(textOf(item));
        };
    });
    return sortedByKeys(std::move(positions), keys, std::less<>());
}

/// The positions sorted by a value read from the file system for each item, largest first. Each item is read
/// once, before the sort compares anything.
template<typename Key, typename KeyOf>
QList<qsizetype> sortedByKeyDescending(const QList<FileItem> &files, QList<qsizetype> positions, KeyOf keyOf)
{
    const auto keys = keysOf<Key>(files, positions, [&] { return keyOf; });
    return sortedByKeys(std::move(positions), keys, std::greater<>());
}

QList<qsizetype>
sortedPositions(const QList<FileItem> &files, QList<qsizetype> positions, AppViewModel::SortOrder order)
{
    switch (order) {
    case AppViewModel::SortOrder::Name:
        if (collatesPrintableAsciiAsBytes()) {
            if (const auto names = printableAsciiNames(files, positions))
                return sortedByKeys(std::move(positions), *names, std::less<>());
        }
        return sortedByText(files, std::move(positions), [](const FileItem &item) { return item.originalName(); });
    case AppViewModel::SortOrder::Type:
        // An empty extension sorts first.
        return sortedByText(files, std::move(positions), [](const FileItem &item) { return item.fileExtension(); });
    case AppViewModel::SortOrder::Date:
        // Newest first, to the finest difference the file system keeps: files saved within one millisecond
        // still have an order. An unreadable date counts as the most distant past.
        return sortedByKeyDescending<std::filesystem::file_time_type>(files,
            std::move(positions),
            [](const FileItem &item) {
                return fileattributes::modificationTime(item.url).value_or(std::filesystem::file_time_type::min());
            });
    case AppViewModel::SortOrder::Size:
        // Largest first; folders and unreadable sizes count as 0.
        return sortedByKeyDescending<qint64>(files, std::move(positions), [](const FileItem &item) {
            return fileattributes::fileSize(item.url).value_or(0);
        });
    }
    return positions;
}

} // namespace

QList<qsizetype> FileListFilter::positions(const QList<FileItem> &files) const
{
    QList<qsizetype> kept;
    kept.reserve(files.size());
    const FoldedSubstring filter(filterText);
    for (qsizetype position = 0; position < files.size(); ++position) {
        const FileItem &item = files[position];
        if (!filterText.isEmpty() && !filter.isIn(item.originalName()))
            continue;
        if (showOnlyFiles && item.isDirectory)
            continue;
        if (showOnlyFolders && !item.isDirectory)
            continue;
        kept.append(position);
    }
    return sortedPositions(files, std::move(kept), sortOrder);
}

bool FileListFilter::readsFileSystem() const
{
    return sortOrder == AppViewModel::SortOrder::Date || sortOrder == AppViewModel::SortOrder::Size;
}

} // namespace quillfern
