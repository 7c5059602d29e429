#include "model/fileattributes.h"
#include "model/icutext_p.h"
#include "state/filteredfiles_p.h"

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace quillfern {

namespace {

/// Case-insensitive (full case folding), diacritic-sensitive substring test.
class FoldedSubstring final
{
public:
    explicit FoldedSubstring(const QString &needle)
        : m_needle(folded(needle))
    {
    }

    [[nodiscard]] bool isIn(const QString &haystack) const { return folded(haystack).contains(m_needle); }

private:
    static QString folded(const QString &text)
    {
        icu::UnicodeString unicode = icutext::alias(text);
        return icutext::toQString(unicode.foldCase());
    }

    QString m_needle;
};

/// Sort keys of the current locale's collation: comparing keys orders like a locale-aware compare, which is
/// not numeric-aware ("file10" before "file2").
class CollationKeys final
{
public:
    CollationKeys()
    {
        UErrorCode status = U_ZERO_ERROR;
        m_collator.reset(icu::Collator::createInstance(icu::Locale::getDefault(), status));
        if (!icutext::succeeded(status))
            m_collator.reset();
    }

    [[nodiscard]] std::string keyOf(const QString &text) const
    {
        if (!m_collator)
            return text.toStdString();
        const icu::UnicodeString unicode = icutext::alias(text);
        std::string key(64, '\0');
        int32_t length = m_collator->getSortKey(unicode, reinterpret_cast<uint8_t *>(key.data()), int32_t(key.size()));
        if (length > int32_t(key.size())) {
            key.resize(std::size_t(length));
            length = m_collator->getSortKey(unicode, reinterpret_cast<uint8_t *>(key.data()), length);
        }
        key.resize(std::size_t(std::max(length, 1) - 1)); // the key ends with a terminating zero byte
        return key;
    }

private:
    std::unique_ptr<icu::Collator> m_collator;
};

/// The items stably sorted by their keys (each read once), `before` deciding the order of two keys.
template<typename Key, typename KeyOf, typename Before>
QList<FileItem> stablySorted(const QList<FileItem> &items, KeyOf keyOf, Before before)
{
    std::vector<Key> keys;
    keys.reserve(std::size_t(items.size()));
    for (const FileItem &item : items)
        keys.push_back(keyOf(item));
    std::vector<qsizetype> order(std::size_t(items.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](qsizetype left, qsizetype right) {
        return before(keys[std::size_t(left)], keys[std::size_t(right)]);
    });
    QList<FileItem> sorted;
    sorted.reserve(items.size());
    for (qsizetype index : order)
        sorted.append(items[index]);
    return sorted;
}

QList<FileItem> sortedItems(const QList<FileItem> &items, AppViewModel::SortOrder order)
{
    switch (order) {
    case AppViewModel::SortOrder::Name: {
        const CollationKeys collation;
        return stablySorted<std::string>(
            items,
            [&](const FileItem &item) { return collation.keyOf(item.originalName()); },
            std::less<>());
    }
    case AppViewModel::SortOrder::Type: {
        const CollationKeys collation;
        return stablySorted<std::string>(
            items,
            [&](const FileItem &item) { return collation.keyOf(item.fileExtension()); },
            std::less<>());
    }
    case AppViewModel::SortOrder::Date:
        // Newest first; an unreadable date counts as the most distant past.
        return stablySorted<qint64>(
            items,
            [](const FileItem &item) {
                const auto date = fileattributes::modificationDate(item.url);
                return date ? date->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
            },
            std::greater<>());
    case AppViewModel::SortOrder::Size:
        // Largest first; folders and unreadable sizes count as 0.
        return stablySorted<qint64>(
            items,
            [](const FileItem &item) { return fileattributes::fileSize(item.url).value_or(0); },
            std::greater<>());
    }
    return items;
}

} // namespace

QList<FileItem> FileListFilter::apply(const QList<FileItem> &files) const
{
    QList<FileItem> kept;
    kept.reserve(files.size());
    const FoldedSubstring filter(filterText);
    for (const FileItem &item : files) {
        if (!filterText.isEmpty() && !filter.isIn(item.originalName()))
            continue;
        if (showOnlyFiles && item.isDirectory)
            continue;
        if (showOnlyFolders && !item.isDirectory)
            continue;
        kept.append(item);
    }
    return sortedItems(kept, sortOrder);
}

} // namespace quillfern
