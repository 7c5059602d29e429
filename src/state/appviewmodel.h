#pragma once

#include "engine/previewentry.h"
#include "model/enumtraits.h"
#include "model/fileitem.h"
#include "model/nativepath.h"
#include "model/renameresult.h"
#include "model/renamerule.h"
#include "parser/parsedrule.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QUuid>

#include <atomic>
#include <memory>
#include <optional>

namespace quillfern {

class FileMover;
class PanelProvider;
struct Preset;

/// The one observable state object of the application: the working list of files, the rule chain, the live
/// previews, the batch rename with undo and redo, the CSV export and the natural-language suggestions. Every
/// operation runs on the main thread; each stored property announces its changes through its own signal.
class AppViewModel final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<FileItem> files READ files NOTIFY filesChanged)
    Q_PROPERTY(QList<RenameRule> rules READ rules NOTIFY rulesChanged)
    Q_PROPERTY(QList<PreviewEntry> previews READ previews NOTIFY previewsChanged)
    Q_PROPERTY(bool isRenaming READ isRenaming NOTIFY isRenamingChanged)
    Q_PROPERTY(bool showRenameResult READ showRenameResult WRITE setShowRenameResult NOTIFY showRenameResultChanged)
    Q_PROPERTY(QList<RenameResult> lastRenameResults READ lastRenameResults NOTIFY lastRenameResultsChanged)
    Q_PROPERTY(SortOrder sortOrder READ sortOrder WRITE setSortOrder NOTIFY sortOrderChanged)
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    Q_PROPERTY(bool includeSubfolders READ includeSubfolders WRITE setIncludeSubfolders NOTIFY includeSubfoldersChanged)
    Q_PROPERTY(bool showOnlyFiles READ showOnlyFiles WRITE setShowOnlyFiles NOTIFY showOnlyFilesChanged)
    Q_PROPERTY(bool showOnlyFolders READ showOnlyFolders WRITE setShowOnlyFolders NOTIFY showOnlyFoldersChanged)
    Q_PROPERTY(QString naturalLanguageInput READ naturalLanguageInput WRITE setNaturalLanguageInput NOTIFY
            naturalLanguageInputChanged)
    Q_PROPERTY(QList<ParsedRule> nlSuggestions READ nlSuggestions WRITE setNlSuggestions NOTIFY nlSuggestionsChanged)
    Q_PROPERTY(bool showNLPanel READ showNLPanel WRITE setShowNLPanel NOTIFY showNLPanelChanged)
    Q_PROPERTY(QSet<QUuid> selectedFileIDs READ selectedFileIDs WRITE setSelectedFileIDs NOTIFY selectedFileIDsChanged)
    Q_PROPERTY(QList<QList<FileItem>> undoStack READ undoStack NOTIFY undoStackChanged)
    Q_PROPERTY(QList<QList<FileItem>> redoStack READ redoStack NOTIFY redoStackChanged)

public:
    /// The sort key of filteredFiles; the raw value is the display name.
    enum class SortOrder {
        Name,
        Date,
        Size,
        Type,
    };
    Q_ENUM(SortOrder)

    explicit AppViewModel(QObject *parent = nullptr);
    ~AppViewModel() override;

    // Stored properties.
    [[nodiscard]] const QList<FileItem> &files() const { return m_files; }
    [[nodiscard]] const QList<RenameRule> &rules() const { return m_rules; }
    [[nodiscard]] const QList<PreviewEntry> &previews() const;
    [[nodiscard]] bool isRenaming() const { return m_isRenaming; }
    [[nodiscard]] bool showRenameResult() const { return m_showRenameResult; }
    [[nodiscard]] const QList<RenameResult> &lastRenameResults() const { return m_lastRenameResults; }
    [[nodiscard]] SortOrder sortOrder() const { return m_sortOrder; }
    [[nodiscard]] const QString &filterText() const { return m_filterText; }
    [[nodiscard]] bool includeSubfolders() const { return m_includeSubfolders; }
    [[nodiscard]] bool showOnlyFiles() const { return m_showOnlyFiles; }
    [[nodiscard]] bool showOnlyFolders() const { return m_showOnlyFolders; }
    [[nodiscard]] const QString &naturalLanguageInput() const { return m_naturalLanguageInput; }
    [[nodiscard]] const QList<ParsedRule> &nlSuggestions() const { return m_nlSuggestions; }
    [[nodiscard]] bool showNLPanel() const { return m_showNLPanel; }
    [[nodiscard]] const QSet<QUuid> &selectedFileIDs() const { return m_selectedFileIDs; }
    [[nodiscard]] const QList<QList<FileItem>> &undoStack() const { return m_undoStack; }
    [[nodiscard]] const QList<QList<FileItem>> &redoStack() const { return m_redoStack; }

    void setShowRenameResult(bool show);
    void setSortOrder(SortOrder order);
    void setFilterText(const QString &text);
    void setIncludeSubfolders(bool include);
    void setShowOnlyFiles(bool only);
    void setShowOnlyFolders(bool only);
    void setNaturalLanguageInput(const QString &text);
    void setNlSuggestions(const QList<ParsedRule> &suggestions);
    void setShowNLPanel(bool show);
    void setSelectedFileIDs(const QSet<QUuid> &ids);
    /// Sets isSelected of the item with this id (the row checkbox of the file table); unknown ids do nothing.
    void setFileSelected(const QUuid &id, bool selected);

    // Derived values, computed afresh on every read.
    /// The files that pass the filter and the files-only/folders-only flags, stably sorted by sortOrder.
    [[nodiscard]] QList<FileItem> filteredFiles() const;
    /// How many items of all files are selected (the filter does not matter).
    [[nodiscard]] qsizetype selectedCount() const;
    /// How many previews are marked as conflicts.
    [[nodiscard]] qsizetype conflictCount() const;

    // File collection.
    /// Adds items for the locations (a folder's whole contents when includeSubfolders is on), skipping
    /// locations already in the list before the call, then refreshes the previews.
    void addFiles(const QList<NativePath> &locations);
    /// Removes the items with these ids, then refreshes the previews.
    void removeFiles(const QList<FileItem> &items);
    /// Empties the list and the previews; rules and the undo history stay.
    void clearFiles();
    void selectAll();
    void deselectAll();
    void invertSelection();
    /// Asks the panel provider for files and folders titled "Add Files & Folders" and adds the chosen ones.
    void selectFiles();

    // Rules and previews.
    void addRule(const RenameRule &rule);
    /// Removes the rules at these offsets (into the list as it stands before the call).
    void removeRule(const QSet<qsizetype> &offsets);
    /// Moves the rules at these offsets, keeping their order, to just before the rule at `destination` (the
    /// list's size means the end).
    void moveRule(const QSet<qsizetype> &offsets, qsizetype destination);
    /// Replaces the rule with the same id; does nothing when there is none.
    void updateRule(const RenameRule &rule);
    /// Recomputes previews from the enabled rules and filteredFiles.
    void updatePreviews();

    // Batch rename, undo and redo.
    /// Starts a batch rename of the selected files on a worker thread unless one is running; the results are
    /// applied on the main thread, then isRenaming clears and showRenameResult is set.
    void performRename();
    /// Restores the file list from the top of the undo stack (the disk is not touched).
    void undoRename();
    /// Restores the file list from the top of the redo stack (the disk is not touched).
    void redoRename();

    // CSV export and natural-language glue.
    /// The preview as CSV text: a header line, then one line per preview, each ended by a line feed.
    [[nodiscard]] QString exportCSV() const;
    /// Asks for a save location (proposing "rename_preview.csv") and writes exportCSV() there atomically as
    /// UTF-8; a cancelled panel or a failed write changes nothing. `nameFilter` restricts the panel's types.
    void exportCSVToFile(const QString &nameFilter = {});
    /// Fills nlSuggestions from naturalLanguageInput unless the input is empty.
    void parseNaturalLanguage();
    /// Appends every suggested rule, clears the suggestions and the input, refreshes the previews.
    void applyNLSuggestions();
    /// Replaces the rules by the preset's rules and refreshes the previews.
    void loadPreset(const Preset &preset);

    // Collaborators supplied by the application or a test.
    /// The file choosers; not owned. Without one, selectFiles and exportCSVToFile do nothing.
    void setPanelProvider(PanelProvider *provider);
    /// The move primitive of batch renames; the real file system when none is set.
    void setFileMover(std::shared_ptr<FileMover> mover);
    /// The folder that keeps the journal of every batch rename, so that an interrupted batch can be recovered
    /// and any batch undone on disk; the user's standard history folder until set.
    void setHistoryFolder(const QString &folder);

Q_SIGNALS:
    /// Each stored property's signal fires after the property changed.
    void filesChanged();
    void rulesChanged();
    void previewsChanged();
    void isRenamingChanged();
    void showRenameResultChanged();
    void lastRenameResultsChanged();
    void sortOrderChanged();
    void filterTextChanged();
    void includeSubfoldersChanged();
    void showOnlyFilesChanged();
    void showOnlyFoldersChanged();
    void naturalLanguageInputChanged();
    void nlSuggestionsChanged();
    void showNLPanelChanged();
    void selectedFileIDsChanged();
    void undoStackChanged();
    void redoStackChanged();

private:
    void setFiles(QList<FileItem> files);
    void setRules(QList<RenameRule> rules);
    void completeRename(const QList<RenameResult> &results);
    /// Sets every item's isSelected to `change` of its current value and announces the list once.
    void changeEverySelection(bool (*change)(bool isSelected));

    /// One of the two snapshot stacks and its change signal.
    struct SnapshotStack
    {
        QList<QList<FileItem>> AppViewModel::*stack;
        void (AppViewModel::*changed)();
    };
    /// Undo and redo alike: pops the top of `from` (nothing when empty), pushes the current list onto `to`,
    /// restores the popped list and refreshes the previews.
    void restoreSnapshot(SnapshotStack from, SnapshotStack to);
    /// Forgets the cached filteredFiles; called whenever an item, the list or a filter or sort setting changes.
    void invalidateFilteredFiles();

    QList<FileItem> m_files;
    QList<RenameRule> m_rules;
    /// The enabled rules and the filtered files of the last updatePreviews, kept until the previews are read
    /// and computed from them: a caller that never reads them (the command line renaming with --yes) never
    /// pays for them, and one that does sees exactly what an immediate computation would have given.
    struct PendingPreview
    {
        QList<RenameRule> rules;
        QList<FileItem> files;
    };
    mutable std::optional<PendingPreview> m_pendingPreview;
    mutable QList<PreviewEntry> m_previews;
    bool m_isRenaming = false;
    bool m_showRenameResult = false;
    QList<RenameResult> m_lastRenameResults;
    SortOrder m_sortOrder = SortOrder::Name;
    QString m_filterText;
    bool m_includeSubfolders = false;
    bool m_showOnlyFiles = false;
    bool m_showOnlyFolders = false;
    QString m_naturalLanguageInput;
    QList<ParsedRule> m_nlSuggestions;
    bool m_showNLPanel = false;
    QSet<QUuid> m_selectedFileIDs;
    QList<QList<FileItem>> m_undoStack;
    QList<QList<FileItem>> m_redoStack;

    PanelProvider *m_panelProvider = nullptr;
    std::shared_ptr<FileMover> m_fileMover;
    QString m_historyFolder;
    /// Cleared when the object is destroyed, so a rename task that has not started yet stops.
    std::shared_ptr<std::atomic_bool> m_isAlive;
    /// filteredFiles, kept while neither the items nor the settings change. Orders that read dates or sizes are
    /// never kept: the file system may have changed.
    mutable std::optional<QList<FileItem>> m_filteredFiles;
};

template<>
struct EnumTraits<AppViewModel::SortOrder>
{
    static constexpr std::array<std::pair<AppViewModel::SortOrder, std::u16string_view>, 4> cases{{
        {AppViewModel::SortOrder::Name, u"Name"},
        {AppViewModel::SortOrder::Date, u"Date Modified"},
        {AppViewModel::SortOrder::Size, u"Size"},
        {AppViewModel::SortOrder::Type, u"Type"},
    }};
};

} // namespace quillfern
