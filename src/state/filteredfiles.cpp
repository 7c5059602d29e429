#include "engine/parallelchunks.h"
#include "model/fileattributes.h"
#include "model/icutext_p.h"
#include "state/filteredfiles_p.h"

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <algorithm>
#include <array>
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

/// The key of a sort key buffer, without the zero byte that ends it.
std::string withoutTerminator(const char *key, int32_t length)
{
    return std::string(key, std::size_t(std::max(length, 1) - 1));
}

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

/// The positions stably sorted by the keys of their items, each read once, `before` deciding the order of two
/// keys. The keys are computed on every core; each range of positions gets its own key function from
/// `makeKeyOf`, since ICU collators are not shared between threads.
template<typename Key, typename MakeKeyOf, typename Before>
QList<qsizetype>
stablySorted(const QList<FileItem> &files, QList<qsizetype> positions, MakeKeyOf makeKeyOf, Before before)
{
    std::vector<Key> keys(std::size_t(files.size()));
    parallelchunks::run(positions.size(), [&](qsizetype begin, qsizetype end) {
        const auto keyOf = makeKeyOf();
        for (qsizetype index = begin; index < end; ++index)
            keys[std::size_t(positions[index])] = keyOf(files[positions[index]]);
    });
    std::stable_sort(positions.begin(), positions.end(), [&](qsizetype left, qsizetype right) {
        return before(keys[std::size_t(left)], keys[std::size_t(right)]);
    });
    return positions;
}

QList<qsizetype>
sortedPositions(const QList<FileItem> &files, QList<qsizetype> positions, AppViewModel::SortOrder order)
{
    switch (order) {
    case AppViewModel::SortOrder::Name:
    case AppViewModel::SortOrder::Type: {
        // Both compare text in the user's locale: the full name, or the extension (an empty one first).
        const bool byName = order == AppViewModel::SortOrder::Name;
        return stablySorted<std::string>(
            files,
            std::move(positions),
            [byName] {
                return [byName, collation = CollationKeys()](const FileItem &item) {
                    return collation.keyOf(byName ? item.originalName() : item.fileExtension());
                };
            },
            std::less<>());
    }
    case AppViewModel::SortOrder::Date:
        // Newest first; an unreadable date counts as the most distant past.
        return stablySorted<qint64>(
            files,
            std::move(positions),
            [] {
                return [](const FileItem &item) {
                    const auto date = fileattributes::modificationDate(item.url);
                    return date ? date->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
                };
            },
            std::greater<>());
    case AppViewModel::SortOrder::Size:
        // Largest first; folders and unreadable sizes count as 0.
        return stablySorted<qint64>(
            files,
            std::move(positions),
            [] {
                return [](const FileItem &item) {
                    return fileattributes::fileSize(item.url).value_or(0);
                };
            },
            std::greater<>());
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
