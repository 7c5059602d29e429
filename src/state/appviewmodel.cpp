#include "state/appviewmodel.h"

#include "engine/batchhistory.h"
#include "engine/batchrunner.h"
#include "engine/filemover.h"
#include "engine/renameengine.h"
#include "engine/systemfilemover.h"
#include "model/fileattributes.h"
#include "model/movedlocations.h"
#include "model/nativepath.h"
#include "parser/naturallanguageparser.h"
#include "presets/preset.h"
#include "state/filteredfiles_p.h"
#include "state/folderenumerator_p.h"
#include "state/panelprovider.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSaveFile>
#include <QThreadPool>

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

/// Sets a stored property and announces it, but only when the value really changes.
template<typename T, typename Signal>
void assign(AppViewModel *model, T &member, const T &value, Signal changed)
{
    if (member == value)
        return;
    member = value;
    Q_EMIT(model->*changed)();
}

} // namespace

AppViewModel::AppViewModel(QObject *parent)
    : QObject(parent)
    , m_fileMover(std::make_shared<SystemFileMover>())
    , m_historyFolder(BatchHistory::standardFolder())
    , m_isAlive(std::make_shared<std::atomic_bool>(true))
{
}

AppViewModel::~AppViewModel()
{
    m_isAlive->store(false);
}

void AppViewModel::setShowRenameResult(bool show)
{
    assign(this, m_showRenameResult, show, &AppViewModel::showRenameResultChanged);
}

void AppViewModel::setSortOrder(SortOrder order)
{
    invalidateFilteredFiles();
    assign(this, m_sortOrder, order, &AppViewModel::sortOrderChanged);
}

void AppViewModel::setFilterText(const QString &text)
{
    invalidateFilteredFiles();
    assign(this, m_filterText, text, &AppViewModel::filterTextChanged);
}

void AppViewModel::setIncludeSubfolders(bool include)
{
    assign(this, m_includeSubfolders, include, &AppViewModel::includeSubfoldersChanged);
}

void AppViewModel::setShowOnlyFiles(bool only)
{
    invalidateFilteredFiles();
    assign(this, m_showOnlyFiles, only, &AppViewModel::showOnlyFilesChanged);
}

void AppViewModel::setShowOnlyFolders(bool only)
{
    invalidateFilteredFiles();
    assign(this, m_showOnlyFolders, only, &AppViewModel::showOnlyFoldersChanged);
}

void AppViewModel::setNaturalLanguageInput(const QString &text)
{
    assign(this, m_naturalLanguageInput, text, &AppViewModel::naturalLanguageInputChanged);
}

void AppViewModel::setNlSuggestions(const QList<ParsedRule> &suggestions)
{
    m_nlSuggestions = suggestions;
    Q_EMIT nlSuggestionsChanged();
}

void AppViewModel::setShowNLPanel(bool show)
{
    assign(this, m_showNLPanel, show, &AppViewModel::showNLPanelChanged);
}

void AppViewModel::setSelectedFileIDs(const QSet<QUuid> &ids)
{
    assign(this, m_selectedFileIDs, ids, &AppViewModel::selectedFileIDsChanged);
}

void AppViewModel::setFileSelected(const QUuid &id, bool selected)
{
    const auto item = std::find_if(m_files.begin(), m_files.end(), [&](const FileItem &file) { return file.id == id; });
    if (item == m_files.end() || item->isSelected == selected)
        return;
    item->isSelected = selected;
    invalidateFilteredFiles();
    Q_EMIT filesChanged();
}

void AppViewModel::setFiles(QList<FileItem> files)
{
    m_files = std::move(files);
    invalidateFilteredFiles();
    Q_EMIT filesChanged();
}

void AppViewModel::setRules(QList<RenameRule> rules)
{
    m_rules = std::move(rules);
    Q_EMIT rulesChanged();
}

QList<FileItem> AppViewModel::filteredFiles() const
{
    if (m_filteredFiles)
        return *m_filteredFiles;
    const FileListFilter filter{m_filterText, m_showOnlyFiles, m_showOnlyFolders, m_sortOrder};
    QList<FileItem> items;
    const QList<qsizetype> order = filter.positions(m_files);
    items.reserve(order.size());
    for (qsizetype position : order)
        items.append(m_files[position]);
    // Sorting by name collates every name; with the list kept, a rule change does not pay for that again.
    if (!filter.readsFileSystem())
        m_filteredFiles = items;
    return items;
}

void AppViewModel::invalidateFilteredFiles()
{
    m_filteredFiles.reset();
}

qsizetype AppViewModel::selectedCount() const
{
    return std::count_if(m_files.cbegin(), m_files.cend(), [](const FileItem &item) { return item.isSelected; });
}

qsizetype AppViewModel::conflictCount() const
{
    const QList<PreviewEntry> &entries = previews();
    return std::count_if(entries.cbegin(), entries.cend(), [](const PreviewEntry &entry) { return entry.hasConflict; });
}

void AppViewModel::addFiles(const QList<NativePath> &locations)
{
    // Duplicates are judged against the list as it was before this call only: a location given twice in one
    // call is added twice.
    std::unordered_set<NativePath> existing;
    existing.reserve(std::size_t(m_files.size()));
    for (const FileItem &item : std::as_const(m_files))
        existing.insert(item.url);

    QList<FileItem> added;
    const auto addIfNew = [&](NativePath location, bool isDirectory) {
        if (!existing.contains(location))
            added.emplaceBack(std::move(location), isDirectory);
    };
    for (const NativePath &given : locations) {
        const NativePath location = given.withoutTrailingSeparator();
        const bool isDirectory = fileattributes::isDirectory(location);
        if (isDirectory && m_includeSubfolders)
            folderenumerator::forEachEntry(location, addIfNew);
        else
            addIfNew(location, isDirectory);
    }
    if (!added.isEmpty()) {
        if (m_files.isEmpty()) {
            setFiles(std::move(added));
        } else {
            QList<FileItem> files = m_files;
            files.append(std::move(added));
            setFiles(std::move(files));
        }
    }
    updatePreviews();
}

void AppViewModel::removeFiles(const QList<FileItem> &items)
{
    QSet<QUuid> ids;
    for (const FileItem &item : items)
        ids.insert(item.id);
    QList<FileItem> kept;
    kept.reserve(m_files.size());
    std::copy_if(m_files.cbegin(), m_files.cend(), std::back_inserter(kept), [&](const FileItem &item) {
        return !ids.contains(item.id);
    });
    if (kept.size() != m_files.size())
        setFiles(std::move(kept));
    updatePreviews();
}

void AppViewModel::clearFiles()
{
    setFiles({});
    m_pendingPreview.reset();
    m_previews.clear();
    Q_EMIT previewsChanged();
}

// The selection operations write every item and announce the list once: one signal per item would make a
// large list crawl, and observers only need the final state.
void AppViewModel::changeEverySelection(bool (*change)(bool isSelected))
{
    for (FileItem &item : m_files)
        item.isSelected = change(item.isSelected);
    invalidateFilteredFiles();
    Q_EMIT filesChanged();
}

void AppViewModel::selectAll()
{
    changeEverySelection([](bool) { return true; });
}

void AppViewModel::deselectAll()
{
    changeEverySelection([](bool) { return false; });
}

void AppViewModel::invertSelection()
{
    changeEverySelection([](bool isSelected) { return !isSelected; });
}

void AppViewModel::selectFiles()
{
    if (!m_panelProvider)
        return;
    if (const auto chosen = m_panelProvider->chooseFilesAndFolders(u"Add Files & Folders"_s))
        addFiles(*chosen);
}

void AppViewModel::addRule(const RenameRule &rule)
{
    setRules(m_rules + QList<RenameRule>{rule});
    updatePreviews();
}

void AppViewModel::removeRule(const QSet<qsizetype> &offsets)
{
    QList<RenameRule> kept;
    for (qsizetype index = 0; index < m_rules.size(); ++index) {
        if (!offsets.contains(index))
            kept.append(m_rules[index]);
    }
    setRules(std::move(kept));
    updatePreviews();
}

void AppViewModel::moveRule(const QSet<qsizetype> &offsets, qsizetype destination)
{
    QList<RenameRule> moved;
    QList<RenameRule> before;
    QList<RenameRule> after;
    for (qsizetype index = 0; index < m_rules.size(); ++index) {
        if (offsets.contains(index))
            moved.append(m_rules[index]);
        else if (index < destination)
            before.append(m_rules[index]);
        else
            after.append(m_rules[index]);
    }
    setRules(before + moved + after);
    updatePreviews();
}

void AppViewModel::updateRule(const RenameRule &rule)
{
    const auto found = std::find_if(m_rules.cbegin(), m_rules.cend(), [&](const RenameRule &candidate) {
        return candidate.id == rule.id;
    });
    if (found == m_rules.cend())
        return;
    QList<RenameRule> rules = m_rules;
    rules[found - m_rules.cbegin()] = rule;
    setRules(std::move(rules));
    updatePreviews();
}

void AppViewModel::updatePreviews()
{
    QList<RenameRule> enabled;
    std::copy_if(m_rules.cbegin(), m_rules.cend(), std::back_inserter(enabled), [](const RenameRule &rule) {
        return rule.isEnabled;
    });
    m_pendingPreview = PendingPreview{std::move(enabled), filteredFiles()};
    Q_EMIT previewsChanged();
}

const QList<PreviewEntry> &AppViewModel::previews() const
{
    if (m_pendingPreview) {
        m_previews = RenameEngine::preview(m_pendingPreview->rules, m_pendingPreview->files);
        m_pendingPreview.reset();
    }
    return m_previews;
}

void AppViewModel::performRename()
{
    if (m_isRenaming)
        return;
    m_isRenaming = true;
    Q_EMIT isRenamingChanged();
    m_undoStack.append(m_files);
    Q_EMIT undoStackChanged();
    m_redoStack.clear();
    Q_EMIT redoStackChanged();

    // The work is captured here, on the main thread, so the worker never reads this object's members while the
    // main thread may change them.
    QList<FileItem> selected;
    std::copy_if(m_files.cbegin(), m_files.cend(), std::back_inserter(selected), [](const FileItem &item) {
        return item.isSelected;
    });
    QThreadPool::globalInstance()->start([selected = std::move(selected),
                                             rules = m_rules,
                                             mover = m_fileMover,
                                             historyFolder = m_historyFolder,
                                             isAlive = m_isAlive,
                                             self = QPointer(this)] {
        if (!isAlive->load())
            return;
        BatchRunner runner(*mover);
        runner.setHistoryFolder(historyFolder);
        const QList<RenameResult> results = RenameEngine::rename(selected, rules, runner);
        // The completion runs on the main thread, where checking the guard is safe.
        QMetaObject::invokeMethod(QCoreApplication::instance(), [self, results] {
            if (self)
                self->completeRename(results);
        });
    });
}

void AppViewModel::completeRename(const QList<RenameResult> &results)
{
    QList<FileItem> files = m_files;
    // Each renamed item replaces the first item listed at its old location that was not replaced yet; the
    // positions are looked up by location so a large batch stays linear.
    std::unordered_map<NativePath, std::deque<qsizetype>> positions;
    for (qsizetype index = 0; index < files.size(); ++index)
        positions[files[index].url].push_back(index);
    std::vector<bool> isReplaced(std::size_t(files.size()), false);
    MovedLocations moved;
    for (const RenameResult &result : results) {
        if (!result.success)
            continue;
        const auto found = positions.find(result.originalURL);
        if (found == positions.end() || found->second.empty())
            continue;
        const qsizetype index = found->second.front();
        found->second.pop_front();
        if (files[index].isDirectory)
            moved.record(result.originalURL, result.newURL);
        files[index] = FileItem(result.newURL);
        isReplaced[std::size_t(index)] = true;
    }
    // Items inside a renamed folder moved with it: they are followed to where they are now and stay who they
    // are, so the next rename does not fail on a stale location.
    for (qsizetype index = 0; index < files.size(); ++index) {
        if (!isReplaced[std::size_t(index)])
            files[index].url = moved.currentLocation(files[index].url);
    }
    setFiles(std::move(files));
    m_lastRenameResults = results;
    Q_EMIT lastRenameResultsChanged();
    m_isRenaming = false;
    Q_EMIT isRenamingChanged();
    m_showRenameResult = true;
    Q_EMIT showRenameResultChanged();
    updatePreviews();
}

void AppViewModel::restoreSnapshot(SnapshotStack from, SnapshotStack to)
{
    QList<QList<FileItem>> &source = this->*from.stack;
    if (source.isEmpty())
        return;
    QList<FileItem> snapshot = source.takeLast();
    Q_EMIT(this->*from.changed)();
    (this->*to.stack).append(m_files);
    Q_EMIT(this->*to.changed)();
    setFiles(std::move(snapshot));
    updatePreviews();
}

void AppViewModel::undoRename()
{
    restoreSnapshot({&AppViewModel::m_undoStack, &AppViewModel::undoStackChanged},
        {&AppViewModel::m_redoStack, &AppViewModel::redoStackChanged});
}

void AppViewModel::redoRename()
{
    restoreSnapshot({&AppViewModel::m_redoStack, &AppViewModel::redoStackChanged},
        {&AppViewModel::m_undoStack, &AppViewModel::undoStackChanged});
}

QString AppViewModel::exportCSV() const
{
    // Names are written as they are, without escaping quotes or commas.
    QString text = u"Original Name,New Name,Has Conflict\n"_s;
    for (const PreviewEntry &entry : previews()) {
        text += u'"' + entry.original + u"\",\""_s + entry.preview + u"\","_s
            + (entry.hasConflict ? u"true"_s : u"false"_s) + u'\n';
    }
    return text;
}

void AppViewModel::exportCSVToFile(const QString &nameFilter)
{
    const QString text = exportCSV();
    if (!m_panelProvider)
        return;
    const auto location = m_panelProvider->chooseSaveLocation(u"rename_preview.csv"_s, nameFilter);
    if (!location)
        return;
    // A failed write leaves nothing behind and is not reported.
    QSaveFile file(location->toText());
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(text.toUtf8());
    (void)file.commit();
}

void AppViewModel::parseNaturalLanguage()
{
    if (m_naturalLanguageInput.isEmpty())
        return;
    setNlSuggestions(NaturalLanguageParser::parse(m_naturalLanguageInput));
}

void AppViewModel::applyNLSuggestions()
{
    for (const ParsedRule &suggestion : std::as_const(m_nlSuggestions))
        setRules(m_rules + QList<RenameRule>{suggestion.rule});
    setNlSuggestions({});
    m_naturalLanguageInput.clear();
    Q_EMIT naturalLanguageInputChanged();
    updatePreviews();
}

void AppViewModel::loadPreset(const Preset &preset)
{
    setRules(preset.rules);
    updatePreviews();
}

void AppViewModel::setPanelProvider(PanelProvider *provider)
{
    m_panelProvider = provider;
}

void AppViewModel::setFileMover(std::shared_ptr<FileMover> mover)
{
    m_fileMover = std::move(mover);
}

void AppViewModel::setHistoryFolder(const QString &folder)
{
    m_historyFolder = folder;
}

} // namespace quillfern
