#include "ui/contentview.h"

#include "model/counting.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/filelistview.h"
#include "ui/previewpanelview.h"
#include "ui/progressoverlayview.h"
#include "ui/prominentbutton.h"
#include "ui/renameresultview.h"
#include "ui/ruleeditorview.h"
#include "ui/symbolicons.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillfern {

namespace {

/// The widths a pane may take in the splitter; the ideal one is its width when the window opens.
struct PaneWidths
{
    int minimum;
    int ideal;
    int maximum;
};

constexpr PaneWidths ruleEditorWidths{260, 300, 380};
constexpr PaneWidths fileListWidths{340, 0, QWIDGETSIZE_MAX};
constexpr PaneWidths previewWidths{240, 280, 360};

constexpr int logoGroupWidth = 220;
constexpr int logoHeight = 20;
constexpr int dividerHeight = 22;
constexpr int historyIconSize = 18;
constexpr int renameButtonWidth = 110;
constexpr int badgeSpacing = 3;
constexpr int pillSpacing = 4;
constexpr int pillVerticalPadding = 3;
constexpr int alertIconSize = 64;
constexpr int alertMessageWidth = 320;

/// A tooltip naming its shortcut as the platform writes it: "Undo (Ctrl+Z)", or "Undo (⌘Z)" on macOS.
QString withShortcut(const QString &text, const QKeySequence &shortcut)
{
    return text + u" ("_s + shortcut.toString(QKeySequence::NativeText) + u')';
}

void setForeground(QWidget *widget, const QColor &color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    widget->setPalette(palette);
}

QFont semibold(QFont font)
{
    font.setWeight(QFont::DemiBold);
    return font;
}

bool isDarkAppearance(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

/// The logo drawn for the current appearance: dark strokes on a light window, light ones on a dark window.
QIcon logoIcon(const QPalette &palette)
{
    return QIcon(isDarkAppearance(palette) ? u":/assets/LogoLight.svg"_s : u":/assets/LogoDark.svg"_s);
}

QFrame *makeDivider(Qt::Orientation orientation, QWidget *parent)
{
    auto *divider = new QFrame(parent);
    divider->setFrameShadow(QFrame::Plain);
    if (orientation == Qt::Vertical) {
        divider->setFrameShape(QFrame::VLine);
        divider->setFixedHeight(dividerHeight);
    } else {
        divider->setFrameShape(QFrame::HLine);
    }
    return divider;
}

/// A count in colour beside its caption, such as "12 selected".
QWidget *makeStatBadge(const QString &objectName, QLabel **count, QLabel **captionLabel, QWidget *parent)
{
    auto *badge = new QWidget(parent);
    badge->setObjectName(objectName);
    *count = new QLabel(badge);
    (*count)->setObjectName(objectName + u"Count"_s);
    (*count)->setFont(semibold(AppFonts::caption()));
    *captionLabel = new QLabel(badge);
    (*captionLabel)->setObjectName(objectName + u"Caption"_s);
    (*captionLabel)->setFont(AppFonts::caption());
    auto *layout = new QHBoxLayout(badge);
    layout->setContentsMargins({});
    layout->setSpacing(badgeSpacing);
    layout->addWidget(*count);
    layout->addWidget(*captionLabel);
    return badge;
}

void limitWidth(QWidget *pane, const PaneWidths &widths)
{
    pane->setMinimumWidth(widths.minimum);
    pane->setMaximumWidth(widths.maximum);
}

} // namespace

ContentView::ContentView(AppViewModel *vm, PresetManager *presetManager, QWidget *parent)
    : QWidget(parent)
    , m_vm(vm)
    , m_panelProvider(this)
{
    setObjectName(u"contentView"_s);
    m_vm->setPanelProvider(&m_panelProvider);

    m_body = new QWidget(this);
    m_body->setObjectName(u"contentBody"_s);
    auto *bodyLayout = new QVBoxLayout(m_body);
    bodyLayout->setContentsMargins({});
    bodyLayout->setSpacing(0);
    bodyLayout->addWidget(makeTopBar());
    auto *divider = makeDivider(Qt::Horizontal, m_body);
    m_dividers.append(divider);
    bodyLayout->addWidget(divider);
    m_splitter = makeMainContent(presetManager);
    bodyLayout->addWidget(m_splitter, 1);
    alignPaneBars();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_body);

    m_overlay = new ProgressOverlayView(this);
    m_overlay->hide();

    connect(m_vm, &AppViewModel::filesChanged, this, [this] {
        updateCounters();
        updateRenameButton();
    });
    connect(m_vm, &AppViewModel::previewsChanged, this, &ContentView::updateCounters);
    connect(m_vm, &AppViewModel::rulesChanged, this, [this] {
        updateRulePill();
        updateRenameButton();
    });
    connect(m_vm, &AppViewModel::undoStackChanged, this, &ContentView::updateHistoryButtons);
    connect(m_vm, &AppViewModel::redoStackChanged, this, &ContentView::updateHistoryButtons);
    connect(m_vm, &AppViewModel::isRenamingChanged, this, &ContentView::updateRenaming);
    connect(m_vm, &AppViewModel::showRenameResultChanged, this, &ContentView::presentRenameResult);

    applyTheme();
    updateCounters();
    updateRulePill();
    updateHistoryButtons();
    updateRenaming();
}

ContentView::~ContentView()
{
    m_vm->setPanelProvider(nullptr);
}

QWidget *ContentView::makeTopBar()
{
    auto *bar = new QWidget(m_body);
    bar->setObjectName(u"topBar"_s);

    m_importButton = new QPushButton(u"Import"_s, bar);
    m_importButton->setObjectName(u"topBarImportButton"_s);
    m_importButton->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    m_importButton->setToolTip(withShortcut(u"Import Files"_s, m_importButton->shortcut()));
    connect(m_importButton, &QPushButton::clicked, m_vm, &AppViewModel::selectFiles);

    m_undoButton = new QToolButton(bar);
    m_undoButton->setObjectName(u"undoButton"_s);
    m_undoButton->setAutoRaise(true);
    m_undoButton->setIconSize({historyIconSize, historyIconSize});
    m_undoButton->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    m_undoButton->setToolTip(withShortcut(u"Undo"_s, m_undoButton->shortcut()));
    connect(m_undoButton, &QToolButton::clicked, m_vm, &AppViewModel::undoRename);

    m_redoButton = new QToolButton(bar);
    m_redoButton->setObjectName(u"redoButton"_s);
    m_redoButton->setAutoRaise(true);
    m_redoButton->setIconSize({historyIconSize, historyIconSize});
    m_redoButton->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));
    m_redoButton->setToolTip(withShortcut(u"Redo"_s, m_redoButton->shortcut()));
    connect(m_redoButton, &QToolButton::clicked, m_vm, &AppViewModel::redoRename);

    m_renameButton = new ProminentButton(u"Rename"_s, bar);
    m_renameButton->setObjectName(u"renameButton"_s);
    m_renameButton->setFont(semibold(AppFonts::body()));
    m_renameButton->setFixedWidth(renameButtonWidth);
    m_renameButton->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Return));
    m_renameButton->setToolTip(withShortcut(u"Rename Files"_s, m_renameButton->shortcut()));
    connect(m_renameButton, &QPushButton::clicked, this, &ContentView::confirmRename);

    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::sm, AppSpacing::md, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(makeLogoGroup());
    for (QWidget *control : std::initializer_list<QWidget *>{m_importButton, m_undoButton}) {
        auto *divider = makeDivider(Qt::Vertical, bar);
        m_dividers.append(divider);
        layout->addWidget(divider);
        layout->addWidget(control);
    }
    layout->addWidget(m_redoButton);
    layout->addStretch();
    layout->addWidget(makeCounters());
    layout->addStretch();
    layout->addWidget(makeRulePill());
    layout->addWidget(m_renameButton);
    return bar;
}

QWidget *ContentView::makeLogoGroup()
{
    auto *group = new QWidget(m_body);
    group->setObjectName(u"logoGroup"_s);
    group->setFixedWidth(logoGroupWidth);
    m_logo = new QLabel(group);
    m_logo->setObjectName(u"logo"_s);
    auto *title = new QLabel(u"Quillfern"_s, group);
    title->setObjectName(u"appTitle"_s);
    title->setFont(AppFonts::headline());
    auto *layout = new QHBoxLayout(group);
    layout->setContentsMargins({});
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(m_logo);
    layout->addWidget(title);
    layout->addStretch();
    return group;
}

QWidget *ContentView::makeCounters()
{
    m_counters = new QWidget(m_body);
    m_counters->setObjectName(u"counters"_s);
    auto *layout = new QHBoxLayout(m_counters);
    layout->setContentsMargins(AppSpacing::sm, 0, AppSpacing::sm, 0);
    layout->setSpacing(AppSpacing::md);
    layout->addWidget(makeStatBadge(u"filesBadge"_s, &m_filesCount, &m_filesCaption, m_counters));
    layout->addWidget(makeStatBadge(u"selectedBadge"_s, &m_selectedCount, &m_selectedCaption, m_counters));
    m_selectedCaption->setText(u"selected"_s);
    m_conflictsBadge = makeStatBadge(u"conflictsBadge"_s, &m_conflictsCount, &m_conflictsCaption, m_counters);
    layout->addWidget(m_conflictsBadge);
    return m_counters;
}

QWidget *ContentView::makeRulePill()
{
    m_rulePill = new QWidget(m_body);
    m_rulePill->setObjectName(u"rulePill"_s);
    m_rulePill->setAttribute(Qt::WA_StyledBackground);
    m_rulePillIcon = new QLabel(m_rulePill);
    m_rulePillText = new QLabel(m_rulePill);
    m_rulePillText->setObjectName(u"rulePillText"_s);
    m_rulePillText->setFont(AppFonts::caption());
    auto *layout = new QHBoxLayout(m_rulePill);
    layout->setContentsMargins(AppSpacing::sm, pillVerticalPadding, AppSpacing::sm, pillVerticalPadding);
    layout->setSpacing(pillSpacing);
    layout->addWidget(m_rulePillIcon);
    layout->addWidget(m_rulePillText);
    m_rulePill->setFixedHeight(QFontMetrics(AppFonts::caption()).height() + 2 * pillVerticalPadding);
    return m_rulePill;
}

QSplitter *ContentView::makeMainContent(PresetManager *presetManager)
{
    auto *splitter = new QSplitter(Qt::Horizontal, m_body);
    splitter->setObjectName(u"mainSplitter"_s);
    splitter->setChildrenCollapsible(false);
    auto *ruleEditor = new RuleEditorView(m_vm, presetManager, splitter);
    auto *fileList = new FileListView(m_vm, splitter);
    m_fileList = fileList;
    auto *preview = new PreviewPanelView(m_vm, splitter);
    m_paneHeaders = {ruleEditor->header(), fileList->header(), preview->header()};
    m_paneFooters = {fileList->footer(), preview->footer()};
    limitWidth(ruleEditor, ruleEditorWidths);
    limitWidth(fileList, fileListWidths);
    limitWidth(preview, previewWidths);
    for (QWidget *pane : std::initializer_list<QWidget *>{ruleEditor, fileList, preview})
        splitter->addWidget(pane);
    // The file list takes whatever the side panes leave.
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 0);
    // Widths the user chose by dragging are theirs: nothing is owed back any more.
    connect(splitter, &QSplitter::splitterMoved, this, [this] {
        m_lentByPreview = 0;
        m_lentByRuleEditor = 0;
    });
    return splitter;
}

void ContentView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_hasSizedPanes)
        return;
    m_hasSizedPanes = true;
    const int fileListWidth =
        m_splitter->width() - ruleEditorWidths.ideal - previewWidths.ideal - 2 * m_splitter->handleWidth();
    m_splitter->setSizes(
        {ruleEditorWidths.ideal, std::max(fileListWidth, fileListWidths.minimum), previewWidths.ideal});
    balancePanes();
}

void ContentView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    // The layout has already given the splitter its new width, which it shared out by its stretch factors.
    if (m_hasSizedPanes)
        balancePanes();
}

void ContentView::balancePanes()
{
    QList<int> sizes = m_splitter->sizes();
    const int preview = 2;
    const int fileList = 1;
    const int ruleEditor = 0;
    const int room = sizes.at(fileList) - m_fileList->fullTableWidth();
    if (room < 0) {
        // A narrower window takes from the file list alone, until its table would scroll sideways and cut the
        // last columns; then the preview gives way, and the rule editor after it, each down to its minimum.
        int missing = -room;
        const int fromPreview = std::clamp(sizes.at(preview) - previewWidths.minimum, 0, missing);
        missing -= fromPreview;
        const int fromRuleEditor = std::clamp(sizes.at(ruleEditor) - ruleEditorWidths.minimum, 0, missing);
        if (fromPreview + fromRuleEditor == 0)
            return;
        sizes[preview] -= fromPreview;
        sizes[ruleEditor] -= fromRuleEditor;
        sizes[fileList] += fromPreview + fromRuleEditor;
        m_lentByPreview += fromPreview;
        m_lentByRuleEditor += fromRuleEditor;
    } else {
        // A wider window gives the side panes back what they lent, the rule editor first.
        int spare = room;
        const int toRuleEditor = std::min(spare, m_lentByRuleEditor);
        spare -= toRuleEditor;
        const int toPreview = std::min(spare, m_lentByPreview);
        if (toRuleEditor + toPreview == 0)
            return;
        sizes[ruleEditor] += toRuleEditor;
        sizes[preview] += toPreview;
        sizes[fileList] -= toRuleEditor + toPreview;
        m_lentByRuleEditor -= toRuleEditor;
        m_lentByPreview -= toPreview;
    }
    m_splitter->setSizes(sizes);
}

void ContentView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyTheme();
    else if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        alignPaneBars();
}

void ContentView::alignPaneBars()
{
    // The lines under the panes' headers, and those over their bottom bars, run on as one: each bar is as tall
    // as the tallest of its row needs.
    for (const QList<QWidget *> *bars : {&m_paneHeaders, &m_paneFooters}) {
        int height = 0;
        for (QWidget *bar : *bars) {
            bar->setMinimumHeight(0);
            bar->setMaximumHeight(QWIDGETSIZE_MAX);
            height = std::max(height, bar->sizeHint().height());
        }
        for (QWidget *bar : *bars)
            bar->setFixedHeight(height);
    }
}

void ContentView::confirmRename()
{
    if (m_confirmAlert)
        return;
    const qsizetype conflictCount = m_vm->conflictCount();
    const QString title = u"Rename "_s + counted(m_vm->selectedCount(), u"file") + u'?';

    auto *alert = new QMessageBox(this);
    alert->setObjectName(u"renameConfirmAlert"_s);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowModality(Qt::WindowModal);
    alert->setWindowTitle(title);
    alert->setText(title);
    // The warning replaces the reassurance: with conflicts, what matters is that some files will be skipped.
    alert->setInformativeText(conflictCount > 0
            ? u"Warning: "_s + counted(conflictCount, u"conflict") + u" detected. Conflicting files will be skipped."_s
            : u"This action will rename the selected files on disk. It can be undone."_s);
    alert->setIconPixmap(logoIcon(palette()).pixmap(alertIconSize, alertIconSize));
    // The question stands out above its explanation, and the explanation reads better on fewer lines than a
    // message box gives it by default (the width of its longest word).
    if (auto *question = alert->findChild<QLabel *>(u"qt_msgbox_label"_s))
        question->setFont(semibold(question->font()));
    if (auto *message = alert->findChild<QLabel *>(u"qt_msgbox_informativelabel"_s))
        message->setMinimumWidth(alertMessageWidth);
    QPushButton *cancel = alert->addButton(u"Cancel"_s, QMessageBox::RejectRole);
    QPushButton *rename = alert->addButton(u"Rename"_s, QMessageBox::DestructiveRole);
    // Return must not rename by accident: it answers Cancel, as Escape does.
    alert->setDefaultButton(cancel);
    alert->setEscapeButton(cancel);
    connect(alert, &QMessageBox::buttonClicked, this, [this, rename](QAbstractButton *clicked) {
        if (clicked == rename)
            m_vm->performRename();
    });
    connect(alert, &QDialog::finished, this, [this] { m_showRenameConfirm = false; });
    m_showRenameConfirm = true;
    m_confirmAlert = alert;
    alert->open();
}

void ContentView::updateCounters()
{
    m_counters->setVisible(!m_vm->files().isEmpty());
    const qsizetype fileCount = m_vm->files().size();
    m_filesCount->setText(QString::number(fileCount));
    m_filesCaption->setText(plural(fileCount, u"file"));
    m_selectedCount->setText(QString::number(m_vm->selectedCount()));
    const qsizetype conflictCount = m_vm->conflictCount();
    m_conflictsCount->setText(QString::number(conflictCount));
    m_conflictsCaption->setText(plural(conflictCount, u"conflict"));
    m_conflictsBadge->setVisible(conflictCount > 0);
}

void ContentView::updateRulePill()
{
    const qsizetype ruleCount = m_vm->rules().size();
    m_rulePill->setVisible(ruleCount > 0);
    m_rulePillText->setText(counted(ruleCount, u"rule"));
}

void ContentView::updateHistoryButtons()
{
    m_undoButton->setEnabled(!m_vm->undoStack().isEmpty());
    m_redoButton->setEnabled(!m_vm->redoStack().isEmpty());
}

void ContentView::updateRenameButton()
{
    const QList<RenameRule> &rules = m_vm->rules();
    const bool hasEnabledRule =
        std::any_of(rules.cbegin(), rules.cend(), [](const RenameRule &rule) { return rule.isEnabled; });
    m_renameButton->setEnabled(m_vm->selectedCount() > 0 && hasEnabledRule && !m_vm->isRenaming());
}

void ContentView::updateRenaming()
{
    const bool isRenaming = m_vm->isRenaming();
    m_renameButton->setBusy(isRenaming);
    m_renameButton->setText(isRenaming ? u"Renaming..."_s : u"Rename"_s);
    updateRenameButton();
    // The content is disabled as well as covered, so neither the keyboard nor a shortcut reaches it.
    m_body->setEnabled(!isRenaming);
    m_overlay->setVisible(isRenaming);
    if (isRenaming) {
        m_overlay->raise();
        m_overlay->setFocus();
    }
}

void ContentView::presentRenameResult()
{
    if (!m_vm->showRenameResult() || m_resultView)
        return;
    auto *sheet = new RenameResultView(m_vm, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    m_resultView = sheet;
    sheet->open();
}

void ContentView::applyTheme()
{
    const QPalette &currentPalette = palette();
    m_logo->setPixmap(logoIcon(currentPalette).pixmap(logoHeight, logoHeight));
    m_importButton->setIcon(SymbolIcons::icon(u"plus.circle"_s));
    m_undoButton->setIcon(SymbolIcons::icon(u"arrow.uturn.backward"_s));
    m_redoButton->setIcon(SymbolIcons::icon(u"arrow.uturn.forward"_s));
    // White on the accent; disabled, in the palette's colour for disabled text.
    m_renameButton->setIcon(SymbolIcons::icon(u"play.fill"_s, Qt::white));

    setForeground(m_filesCount, AppColors::secondary());
    setForeground(m_selectedCount, AppColors::accent());
    setForeground(m_conflictsCount, AppColors::warning());
    for (QLabel *caption : {m_filesCaption, m_selectedCaption, m_conflictsCaption})
        setForeground(caption, AppColors::secondary());
    for (QWidget *divider : std::as_const(m_dividers))
        setForeground(divider, AppColors::separator());

    const QColor accent = AppColors::accent();
    m_rulePill->setStyleSheet(u"#rulePill { background: %1; border-radius: %2px; }"_s.arg(
        AppColors::withOpacity(accent, 0.12).name(QColor::HexArgb),
        QString::number(m_rulePill->height() / 2)));
    const int pillIconSize = QFontMetrics(AppFonts::caption()).height();
    m_rulePillIcon->setPixmap(SymbolIcons::icon(u"list.bullet.rectangle"_s, accent).pixmap(pillIconSize, pillIconSize));
    setForeground(m_rulePillText, accent);
}

} // namespace quillfern
