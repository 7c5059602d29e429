#include "ui/filelistview.h"

#include "model/counting.h"
#include "model/nativepath.h"
#include "state/appviewmodel.h"
#include "ui/actionmenu.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/colormix_p.h"
#include "ui/dropzoneview.h"
#include "ui/filemanagerreveal.h"
#include "ui/filetablemodel.h"
#include "ui/panedivider.h"
#include "ui/panelabel.h"
#include "ui/symbolicons.h"

#include <QComboBox>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int toolbarDividerHeight = 18;
constexpr int sortPickerWidth = 110;
constexpr int filterFieldCornerRadius = 6;
constexpr int filterFieldVerticalPadding = 4;

/// Column widths of the file table; the name column takes the rest.
constexpr int checkboxColumnWidth = 24;
constexpr int nameColumnMinimumWidth = 120;
constexpr int sizeColumnWidth = 70;
constexpr int modifiedColumnWidth = 120;
constexpr int typeColumnWidth = 60;

/// The local files among dropped URLs; other URLs are skipped.
QList<NativePath> droppedLocations(const QMimeData *mimeData)
{
    QList<NativePath> locations;
    for (const QUrl &url : mimeData->urls()) {
        if (const auto location = NativePath::fromLocalFileUrl(url))
            locations.append(*location);
    }
    return locations;
}

} // namespace

FileListView::FileListView(AppViewModel *vm, QWidget *parent)
    : QWidget(parent)
    , m_vm(vm)
    , m_model(new FileTableModel(vm, this))
    , m_dropZone(new DropZoneView(vm, this))
    , m_table(createTable())
    , m_content(new QStackedWidget(this))
    , m_reveal(&FileManagerReveal::reveal)
{
    setObjectName(u"fileListView"_s);
    setAcceptDrops(true);
    setAutoFillBackground(true);

    m_dropZone->setObjectName(u"dropZone"_s);
    m_content->addWidget(m_dropZone);
    m_content->addWidget(m_table);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_header = createToolbar();
    layout->addWidget(m_header);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    layout->addWidget(m_content, 1);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    m_footer = createStatusBar();
    layout->addWidget(m_footer);

    connect(vm, &AppViewModel::filesChanged, this, [this] {
        updateContent();
        updateStatus();
    });
    connect(vm, &AppViewModel::previewsChanged, this, &FileListView::updateStatus);
    connect(vm, &AppViewModel::selectedFileIDsChanged, this, &FileListView::showSelectedFileIDs);
    connect(m_model, &FileTableModel::modelReset, this, &FileListView::showSelectedFileIDs);
    for (auto changed : {&AppViewModel::filterTextChanged,
             &AppViewModel::sortOrderChanged,
             &AppViewModel::includeSubfoldersChanged,
             &AppViewModel::showOnlyFilesChanged,
             &AppViewModel::showOnlyFoldersChanged})
        connect(vm, changed, this, &FileListView::showSettings);

    showSettings();
    updateContent();
    updateStatus();
    showSelectedFileIDs();
    applyTheme();
}

void FileListView::setRevealFunction(RevealFunction reveal)
{
    m_reveal = std::move(reveal);
}

QWidget *FileListView::createToolbar()
{
    auto *toolbar = new QWidget(this);
    toolbar->setObjectName(u"fileListToolbar"_s);
    toolbar->setFont(AppFonts::callout());

    m_importButton = new QPushButton(u"Import"_s, toolbar);
    m_importButton->setObjectName(u"importButton"_s);
    connect(m_importButton, &QPushButton::clicked, m_vm, &AppViewModel::selectFiles);

    m_sortPicker = new QComboBox(toolbar);
    m_sortPicker->setObjectName(u"sortPicker"_s);
    m_sortPicker->setToolTip(u"Sort"_s);
    m_sortPicker->setAccessibleName(u"Sort"_s);
    m_sortPicker->setFixedWidth(sortPickerWidth);
    for (AppViewModel::SortOrder order : allCases<AppViewModel::SortOrder>())
        m_sortPicker->addItem(rawValue(order), QVariant::fromValue(order));
    connect(m_sortPicker, &QComboBox::activated, this, [this](int index) {
        m_vm->setSortOrder(m_sortPicker->itemData(index).value<AppViewModel::SortOrder>());
        m_vm->updatePreviews();
    });

    auto *layout = new QHBoxLayout(toolbar);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::sm, AppSpacing::md, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(m_importButton);
    layout->addWidget(new PaneDivider(Qt::Vertical, toolbarDividerHeight, toolbar));
    layout->addWidget(createFilterField(), 1);
    layout->addWidget(m_sortPicker);
    layout->addWidget(createOptionsButton());
    return toolbar;
}

QWidget *FileListView::createFilterField()
{
    m_filterFrame = new QFrame(this);
    m_filterFrame->setObjectName(u"filterFieldFrame"_s);

    auto *symbol = new PaneLabel(u"magnifyingglass"_s, {}, &AppColors::secondary, m_filterFrame);
    symbol->setSymbolSize(QFontMetrics(AppFonts::caption()).height());

    m_filterField = new QLineEdit(m_filterFrame);
    m_filterField->setObjectName(u"filterField"_s);
    m_filterField->setPlaceholderText(u"Filter files..."_s);
    m_filterField->setFont(AppFonts::caption());
    m_filterField->setFrame(false);
    connect(m_filterField, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_vm->setFilterText(text);
        m_vm->updatePreviews();
    });

    m_clearFilterButton = new QToolButton(m_filterFrame);
    m_clearFilterButton->setObjectName(u"clearFilterButton"_s);
    m_clearFilterButton->setAutoRaise(true);
    m_clearFilterButton->setToolTip(u"Clear Filter"_s);
    m_clearFilterButton->setCursor(Qt::ArrowCursor);
    // As tall as the text, so the field keeps its height when the button appears.
    const int clearButtonSize = QFontMetrics(AppFonts::caption()).height();
    m_clearFilterButton->setFixedSize(clearButtonSize, clearButtonSize);
    m_clearFilterButton->setIconSize(QSize(clearButtonSize, clearButtonSize));
    m_clearFilterButton->setStyleSheet(u"QToolButton { border: none; padding: 0; }"_s);
    connect(m_clearFilterButton, &QToolButton::clicked, this, [this] {
        m_vm->setFilterText({});
        m_vm->updatePreviews();
    });

    auto *layout = new QHBoxLayout(m_filterFrame);
    layout->setContentsMargins(AppSpacing::sm, filterFieldVerticalPadding, AppSpacing::sm, filterFieldVerticalPadding);
    layout->setSpacing(AppSpacing::xs);
    layout->addWidget(symbol);
    layout->addWidget(m_filterField, 1);
    layout->addWidget(m_clearFilterButton);
    return m_filterFrame;
}

QToolButton *FileListView::createOptionsButton()
{
    auto *menu = new ActionMenu(this);
    menu->setObjectName(u"optionsMenu"_s);
    const auto addToggle = [menu](const QString &text, const QString &name) {
        QAction *action = menu->addAction(text);
        action->setObjectName(name);
        action->setCheckable(true);
        return action;
    };
    m_includeSubfoldersAction = addToggle(u"Include Subfolders"_s, u"includeSubfoldersAction"_s);
    connect(m_includeSubfoldersAction, &QAction::triggered, m_vm, &AppViewModel::setIncludeSubfolders);
    menu->addSeparator();
    m_filesOnlyAction = addToggle(u"Files Only"_s, u"filesOnlyAction"_s);
    connect(m_filesOnlyAction, &QAction::triggered, this, [this](bool checked) {
        m_vm->setShowOnlyFiles(checked);
        if (checked)
            m_vm->setShowOnlyFolders(false);
        m_vm->updatePreviews();
    });
    m_foldersOnlyAction = addToggle(u"Folders Only"_s, u"foldersOnlyAction"_s);
    connect(m_foldersOnlyAction, &QAction::triggered, this, [this](bool checked) {
        m_vm->setShowOnlyFolders(checked);
        if (checked)
            m_vm->setShowOnlyFiles(false);
        m_vm->updatePreviews();
    });
    menu->addSeparator();
    menu->addAction(u"Select All"_s, m_vm, &AppViewModel::selectAll)->setObjectName(u"selectAllAction"_s);
    menu->addAction(u"Deselect All"_s, m_vm, &AppViewModel::deselectAll)->setObjectName(u"deselectAllAction"_s);
    menu->addAction(u"Invert Selection"_s, m_vm, &AppViewModel::invertSelection)
        ->setObjectName(u"invertSelectionAction"_s);
    menu->addSeparator();
    QAction *clearList = menu->addDestructiveAction(u"Clear List"_s);
    clearList->setObjectName(u"clearListAction"_s);
    connect(clearList, &QAction::triggered, m_vm, &AppViewModel::clearFiles);

    m_optionsButton = new QToolButton(this);
    m_optionsButton->setObjectName(u"optionsButton"_s);
    m_optionsButton->setToolTip(u"Options"_s);
    m_optionsButton->setAutoRaise(true);
    m_optionsButton->setPopupMode(QToolButton::InstantPopup);
    m_optionsButton->setMenu(menu);
    m_optionsButton->setStyleSheet(u"QToolButton::menu-indicator { image: none; }"_s);
    return m_optionsButton;
}

QWidget *FileListView::createStatusBar()
{
    auto *bar = new QWidget(this);
    bar->setObjectName(u"fileListStatusBar"_s);
    m_statusLabel = new PaneLabel({}, {}, &AppColors::secondary, bar);
    m_statusLabel->setObjectName(u"statusLabel"_s);
    m_statusLabel->setTextFont(AppFonts::caption());
    m_conflictLabel = new PaneLabel(u"exclamationmark.triangle.fill"_s, {}, &AppColors::warning, bar);
    m_conflictLabel->setObjectName(u"conflictLabel"_s);
    m_conflictLabel->setTextFont(AppFonts::caption());

    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::sm, AppSpacing::md, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(m_statusLabel);
    layout->addStretch();
    layout->addWidget(m_conflictLabel);
    return bar;
}

QTableView *FileListView::createTable()
{
    auto *table = new QTableView(this);
    table->setObjectName(u"fileTable"_s);
    table->setModel(m_model);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setAlternatingRowColors(true);
    table->setFrameShape(QFrame::NoFrame);
    table->setIconSize(QSize(FileTableModel::iconSize, FileTableModel::iconSize));
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // Rows are highlighted whole; a focus frame around one cell would only add noise.
    table->setStyleSheet(u"QTableView { outline: 0; }"_s);

    // Every row has the same height, so the view never measures rows: a long list scrolls as fast as a short one.
    QHeaderView *rows = table->verticalHeader();
    rows->hide();
    rows->setSectionResizeMode(QHeaderView::Fixed);
    rows->setDefaultSectionSize(QFontMetrics(AppFonts::mono()).height() + AppSpacing::sm);

    QHeaderView *columns = table->horizontalHeader();
    columns->setHighlightSections(false);
    columns->setSectionsClickable(false);
    columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    columns->setFont(AppFonts::sectionHeader());
    columns->setMinimumSectionSize(checkboxColumnWidth);
    const std::pair<int, int> fixedWidths[] = {{FileTableModel::SelectedColumn, checkboxColumnWidth},
        {FileTableModel::SizeColumn, sizeColumnWidth},
        {FileTableModel::ModifiedColumn, modifiedColumnWidth},
        {FileTableModel::TypeColumn, typeColumnWidth}};
    for (const auto &[column, width] : fixedWidths) {
        columns->setSectionResizeMode(column, QHeaderView::Fixed);
        columns->resizeSection(column, width);
    }
    columns->setSectionResizeMode(FileTableModel::NameColumn, QHeaderView::Fixed);
    // The name column takes the width the others leave, but never less than its minimum: a narrower pane
    // scrolls sideways instead of squeezing names away.
    table->viewport()->installEventFilter(this);

    connect(table->selectionModel(),
        &QItemSelectionModel::selectionChanged,
        this,
        &FileListView::tableSelectionChanged);
    connect(table, &QTableView::customContextMenuRequested, this, &FileListView::showContextMenu);
    return table;
}

bool FileListView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_table->viewport() && event->type() == QEvent::Resize)
        fitNameColumn();
    return QWidget::eventFilter(watched, event);
}

int FileListView::fullTableWidth() const
{
    const QHeaderView *columns = m_table->horizontalHeader();
    int width = nameColumnMinimumWidth;
    for (int column = 0; column < FileTableModel::ColumnCount; ++column) {
        if (column != FileTableModel::NameColumn)
            width += columns->sectionSize(column);
    }
    // The scroll bar is counted whether or not it shows, so a list that grows longer hides no column.
    return width + m_table->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_table)
        + 2 * m_table->frameWidth();
}

void FileListView::fitNameColumn()
{
    QHeaderView *columns = m_table->horizontalHeader();
    int othersWidth = 0;
    for (int column = 0; column < FileTableModel::ColumnCount; ++column) {
        if (column != FileTableModel::NameColumn)
            othersWidth += columns->sectionSize(column);
    }
    columns->resizeSection(FileTableModel::NameColumn,
        std::max(nameColumnMinimumWidth, m_table->viewport()->width() - othersWidth));
}

void FileListView::showContextMenu(const QPoint &position)
{
    const QSet<QUuid> ids = contextMenuIDs(m_table->indexAt(position));
    if (ids.isEmpty())
        return;
    auto *menu = new ActionMenu(m_table);
    menu->setObjectName(u"fileContextMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *remove = menu->addAction(u"Remove from List"_s);
    remove->setObjectName(u"removeFromListAction"_s);
    connect(remove, &QAction::triggered, this, [this, ids] { m_vm->removeFiles(filesWithIDs(ids)); });
    menu->addSeparator();
    QAction *reveal = menu->addAction(FileManagerReveal::actionTitle());
    reveal->setObjectName(u"revealAction"_s);
    connect(reveal, &QAction::triggered, this, [this, ids] {
        QList<NativePath> locations;
        for (const FileItem &item : filesWithIDs(ids))
            locations.append(item.url);
        m_reveal(locations);
    });
    menu->popup(m_table->viewport()->mapToGlobal(position));
}

QSet<QUuid> FileListView::contextMenuIDs(const QModelIndex &clicked) const
{
    if (!clicked.isValid())
        return {};
    const QUuid id = m_model->file(clicked.row()).id;
    const QSet<QUuid> &selection = m_vm->selectedFileIDs();
    return selection.contains(id) ? selection : QSet<QUuid>{id};
}

QList<FileItem> FileListView::filesWithIDs(const QSet<QUuid> &ids) const
{
    QList<FileItem> chosen;
    for (const FileItem &item : m_vm->files()) {
        if (ids.contains(item.id))
            chosen.append(item);
    }
    return chosen;
}

void FileListView::tableSelectionChanged()
{
    if (m_isSyncingSelection)
        return;
    QSet<QUuid> ids;
    for (const QItemSelectionRange &range : m_table->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            ids.insert(m_model->file(row).id);
    }
    m_isSyncingSelection = true;
    m_vm->setSelectedFileIDs(ids);
    m_isSyncingSelection = false;
}

void FileListView::showSelectedFileIDs()
{
    if (m_isSyncingSelection)
        return;
    // Consecutive selected rows become one range, so selecting everything in a long list stays one range.
    QItemSelection selection;
    const QSet<QUuid> &ids = m_vm->selectedFileIDs();
    const int lastColumn = m_model->columnCount() - 1;
    int runStart = -1;
    const int rowCount = ids.isEmpty() ? 0 : m_model->rowCount();
    for (int row = 0; row <= rowCount; ++row) {
        const bool isSelected = row < rowCount && ids.contains(m_model->file(row).id);
        if (isSelected && runStart < 0)
            runStart = row;
        if (!isSelected && runStart >= 0) {
            selection.select(m_model->index(runStart, 0), m_model->index(row - 1, lastColumn));
            runStart = -1;
        }
    }
    m_isSyncingSelection = true;
    m_table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    m_isSyncingSelection = false;
}

void FileListView::showSettings()
{
    if (m_filterField->text() != m_vm->filterText())
        m_filterField->setText(m_vm->filterText());
    m_clearFilterButton->setVisible(!m_vm->filterText().isEmpty());
    m_sortPicker->setCurrentIndex(m_sortPicker->findData(QVariant::fromValue(m_vm->sortOrder())));
    m_includeSubfoldersAction->setChecked(m_vm->includeSubfolders());
    m_filesOnlyAction->setChecked(m_vm->showOnlyFiles());
    m_foldersOnlyAction->setChecked(m_vm->showOnlyFolders());
}

void FileListView::updateContent()
{
    m_content->setCurrentWidget(m_vm->files().isEmpty() ? static_cast<QWidget *>(m_dropZone) : m_table);
}

void FileListView::updateStatus()
{
    m_statusLabel->setText(
        counted(m_vm->files().size(), u"file") + u" · "_s + QString::number(m_vm->selectedCount()) + u" selected"_s);
    const qsizetype conflicts = m_vm->conflictCount();
    m_conflictLabel->setText(counted(conflicts, u"conflict"));
    m_conflictLabel->setVisible(conflicts > 0);
}

void FileListView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!event->mimeData()->hasUrls())
        return;
    event->acceptProposedAction();
    setDropTargeted(true);
}

void FileListView::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void FileListView::dragLeaveEvent(QDragLeaveEvent *)
{
    setDropTargeted(false);
}

void FileListView::dropEvent(QDropEvent *event)
{
    setDropTargeted(false);
    if (!event->mimeData()->hasUrls())
        return;
    event->acceptProposedAction();
    // URLs that are not local files are skipped silently; a drop of nothing but those adds nothing.
    const QList<NativePath> locations = droppedLocations(event->mimeData());
    if (!locations.isEmpty())
        m_vm->addFiles(locations);
}

void FileListView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        applyTheme();
}

void FileListView::setDropTargeted(bool targeted)
{
    if (m_isDropTargeted == targeted)
        return;
    m_isDropTargeted = targeted;
    m_dropZone->setTargeted(targeted);
    showDropTint();
}

void FileListView::applyTheme()
{
    m_importButton->setIcon(SymbolIcons::icon(u"plus"_s));
    m_optionsButton->setIcon(SymbolIcons::icon(u"ellipsis.circle"_s));
    m_clearFilterButton->setIcon(SymbolIcons::icon(u"xmark.circle.fill"_s, AppColors::secondary()));
    m_filterFrame->setStyleSheet(u"#filterFieldFrame { background: %1; border-radius: %2px; }"_s.arg(
        AppColors::sidebarBackground().name(QColor::HexArgb),
        QString::number(filterFieldCornerRadius)));
    m_filterField->setStyleSheet(u"QLineEdit { background: transparent; }"_s);
    showDropTint();
}

void FileListView::showDropTint()
{
    // A list that already has files shows a drag over it by tinting the table.
    QPalette tablePalette = palette();
    if (m_isDropTargeted) {
        const QColor base = tablePalette.color(QPalette::Base);
        tablePalette.setColor(QPalette::Base, mixColors(base, AppColors::accent(), 0.05));
    }
    m_table->setPalette(tablePalette);
}

} // namespace quillfern
