#include "ui/ruleeditorview.h"

#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/commandfield.h"
#include "ui/loadpresetsheet.h"
#include "ui/nlsuggestionsview.h"
#include "ui/panedivider.h"
#include "ui/panelabel.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/rulerowview.h"
#include "ui/savepresetsheet.h"
#include "ui/symbolicons.h"

#include <QDragMoveEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int headerSymbolSize = 16;
constexpr int emptySymbolSize = 36;
constexpr int addSymbolSize = 14;
constexpr int dropIndicatorHeight = 2;

/// The id carried by a dragged rule row, or a null id for any other drag.
QUuid draggedRuleId(const QMimeData *mimeData)
{
    const QString format = QString::fromUtf16(RuleRowView::mimeType);
    return mimeData->hasFormat(format) ? QUuid::fromString(QString::fromLatin1(mimeData->data(format))) : QUuid();
}

} // namespace

RuleEditorView::RuleEditorView(AppViewModel *vm, PresetManager *presetManager, QWidget *parent)
    : QWidget(parent)
    , m_vm(vm)
    , m_presetManager(presetManager)
{
    setObjectName(u"ruleEditorView"_s);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_header = makeHeader();
    layout->addWidget(m_header);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    layout->addWidget(makeRuleList(), 1);
    layout->addWidget(makeAddRuleBar());

    // The suggestions float over the add bar, so they are not part of the layout.
    m_suggestions = new NLSuggestionsView(m_vm, this);
    m_dismissShortcut = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    m_dismissShortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(m_dismissShortcut, &QShortcut::activated, this, &RuleEditorView::dismissSuggestions);
    // Connected after the card's own update, so it is placed with its new rows.
    connect(m_vm, &AppViewModel::nlSuggestionsChanged, this, [this] {
        m_dismissShortcut->setEnabled(!m_vm->nlSuggestions().isEmpty());
        placeSuggestions();
    });
    m_dismissShortcut->setEnabled(!m_vm->nlSuggestions().isEmpty());
    // The buttons vanish with the card; the command field is where the keyboard user continues.
    connect(m_suggestions->applyAllButton(), &QPushButton::clicked, this, [this] {
        m_naturalLanguageField->setFocus(Qt::OtherFocusReason);
    });
    connect(m_suggestions->dismissButton(), &QPushButton::clicked, this, [this] {
        m_naturalLanguageField->setFocus(Qt::OtherFocusReason);
    });

    m_savePresetSheet = new SavePresetSheet(m_vm, m_presetManager, this);
    m_loadPresetSheet = new LoadPresetSheet(m_vm, m_presetManager, this);

    connect(m_vm, &AppViewModel::rulesChanged, this, &RuleEditorView::showRules);
    showRules();
}

bool RuleEditorView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_rowsContainer && handleDragEvent(event))
        return true;
    return QWidget::eventFilter(watched, event);
}

void RuleEditorView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOutAddButtons();
    placeSuggestions();
}

QWidget *RuleEditorView::makeHeader()
{
    auto *header = new QWidget(this);
    header->setObjectName(u"ruleEditorHeader"_s);

    auto *title = new PaneLabel(u"list.bullet.rectangle"_s, u"Rename Rules"_s, &RuleEditorStyle::primaryText, header);
    title->setObjectName(u"ruleEditorTitle"_s);
    title->setTextFont(AppFonts::label());

    const auto makeButton = [header](const QString &name, const QString &symbol, const QString &help) {
        auto *button = new QToolButton(header);
        button->setObjectName(name);
        button->setIcon(SymbolIcons::icon(symbol));
        button->setIconSize(QSize(headerSymbolSize, headerSymbolSize));
        button->setAutoRaise(true);
        button->setToolTip(help);
        button->setAccessibleName(help);
        button->setFocusPolicy(Qt::StrongFocus);
        return button;
    };
    m_loadPresetButton = makeButton(u"loadPresetButton"_s, u"tray.and.arrow.down"_s, u"Load Preset"_s);
    m_savePresetButton = makeButton(u"savePresetButton"_s, u"tray.and.arrow.up"_s, u"Save Preset"_s);
    connect(m_loadPresetButton, &QToolButton::clicked, this, [this] { m_loadPresetSheet->open(); });
    connect(m_savePresetButton, &QToolButton::clicked, this, [this] { m_savePresetSheet->open(); });

    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::xs, AppSpacing::sm, AppSpacing::xs);
    layout->setSpacing(AppSpacing::xs);
    layout->addWidget(title);
    layout->addStretch();
    layout->addWidget(m_loadPresetButton);
    layout->addWidget(m_savePresetButton);
    return header;
}

QWidget *RuleEditorView::makeEmptyState()
{
    auto *empty = new QWidget(this);
    empty->setObjectName(u"emptyState"_s);

    auto *symbol = new PaneLabel(u"wand.and.stars"_s, {}, &AppColors::secondary, empty);
    symbol->setSymbolSize(emptySymbolSize);
    auto *title = new PaneLabel({}, u"No rules yet"_s, &AppColors::secondary, empty);
    title->setObjectName(u"emptyStateTitle"_s);
    title->setTextFont(AppFonts::callout());
    auto *hint = new PaneLabel({}, u"Add rules below or use natural language"_s, &AppColors::tertiary, empty);
    hint->setObjectName(u"emptyStateHint"_s);
    hint->setTextFont(AppFonts::caption());
    hint->setAlignment(Qt::AlignHCenter);
    hint->setWordWrap(true);

    auto *layout = new QVBoxLayout(empty);
    layout->setContentsMargins(AppSpacing::lg, AppSpacing::lg, AppSpacing::lg, AppSpacing::lg);
    layout->setSpacing(AppSpacing::sm);
    layout->addStretch();
    layout->addWidget(symbol, 0, Qt::AlignHCenter);
    layout->addWidget(title, 0, Qt::AlignHCenter);
    // Full width, so the hint wraps within the pane instead of being cut.
    layout->addWidget(hint);
    layout->addStretch();
    return empty;
}

QWidget *RuleEditorView::makeRuleList()
{
    m_listStack = new QStackedWidget(this);
    m_listStack->setObjectName(u"ruleList"_s);
    m_emptyState = makeEmptyState();
    m_listStack->addWidget(m_emptyState);

    m_rowsContainer = new QWidget;
    m_rowsContainer->setObjectName(u"ruleRows"_s);
    m_rowsContainer->setAcceptDrops(true);
    m_rowsContainer->installEventFilter(this);
    m_rowsLayout = new QVBoxLayout(m_rowsContainer);
    m_rowsLayout->setContentsMargins(AppSpacing::sm, AppSpacing::sm, AppSpacing::sm, AppSpacing::sm);
    m_rowsLayout->setSpacing(AppSpacing::xs);
    m_rowsLayout->addStretch();

    m_dropIndicator = new QWidget(m_rowsContainer);
    m_dropIndicator->setObjectName(u"dropIndicator"_s);
    m_dropIndicator->setAutoFillBackground(true);
    QPalette indicatorPalette = m_dropIndicator->palette();
    indicatorPalette.setColor(QPalette::Window, AppColors::accent());
    m_dropIndicator->setPalette(indicatorPalette);
    m_dropIndicator->hide();

    auto *scrollArea = new QScrollArea(m_listStack);
    scrollArea->setObjectName(u"ruleScrollArea"_s);
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setWidgetResizable(true);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Tab goes from row to row; the area scrolls to the focused one by itself.
    scrollArea->setFocusPolicy(Qt::NoFocus);
    scrollArea->setWidget(m_rowsContainer);
    m_listStack->addWidget(scrollArea);
    return m_listStack;
}

QWidget *RuleEditorView::makeAddRuleBar()
{
    auto *bar = new QWidget(this);
    bar->setObjectName(u"addRuleBar"_s);

    for (RuleType type : allCases<RuleType>()) {
        auto *button = new QToolButton(bar);
        button->setText(rawValue(type));
        button->setToolTip(rawValue(type));
        button->setIcon(SymbolIcons::icon(systemImage(type)));
        button->setIconSize(QSize(addSymbolSize, addSymbolSize));
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setFont(AppFonts::caption());
        button->setFocusPolicy(Qt::StrongFocus);
        // The columns share the bar's width; a long kind name must not widen the pane.
        button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        connect(button, &QToolButton::clicked, this, [this, type] { m_vm->addRule(RenameRule(type)); });
        m_addButtons.append(button);
    }
    auto *buttons = new QWidget(bar);
    m_addButtonsLayout = new QGridLayout(buttons);
    m_addButtonsLayout->setContentsMargins(0, 0, 0, 0);
    m_addButtonsLayout->setSpacing(AppSpacing::xs);
    layOutAddButtons();

    auto *layout = new QVBoxLayout(bar);
    layout->setContentsMargins(AppSpacing::sm, AppSpacing::sm, AppSpacing::sm, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, bar));
    layout->addWidget(buttons);
    layout->addWidget(makeNaturalLanguageBar(bar));
    return bar;
}

QWidget *RuleEditorView::makeNaturalLanguageBar(QWidget *parent)
{
    m_naturalLanguageBar = new QWidget(parent);
    m_naturalLanguageBar->setObjectName(u"naturalLanguageBar"_s);

    // The field wraps, so its placeholder (the example included) reads whole in a pane of the default width.
    m_naturalLanguageField = new CommandField(m_naturalLanguageBar);
    m_naturalLanguageField->setObjectName(u"naturalLanguageField"_s);
    m_naturalLanguageField->setPlaceholderText(u"Natural language... (e.g. Replace TERVANE with Solutions)"_s);
    m_naturalLanguageField->setAccessibleName(u"Natural language command"_s);
    m_naturalLanguageField->setText(m_vm->naturalLanguageInput());
    m_parseButton = new QPushButton(u"Parse"_s, m_naturalLanguageBar);
    m_parseButton->setObjectName(u"parseButton"_s);

    // Typing only updates the input; parsing waits for Return or "Parse".
    connect(m_naturalLanguageField, &CommandField::textChanged, m_vm, [this] {
        m_vm->setNaturalLanguageInput(m_naturalLanguageField->text());
    });
    connect(m_vm, &AppViewModel::naturalLanguageInputChanged, m_naturalLanguageField, [this] {
        if (m_naturalLanguageField->text() != m_vm->naturalLanguageInput())
            m_naturalLanguageField->setText(m_vm->naturalLanguageInput());
    });
    connect(m_naturalLanguageField, &CommandField::submitted, m_vm, &AppViewModel::parseNaturalLanguage);
    connect(m_parseButton, &QPushButton::clicked, m_vm, &AppViewModel::parseNaturalLanguage);

    auto *layout = new QHBoxLayout(m_naturalLanguageBar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(AppSpacing::sm);
    auto *symbol = new PaneLabel(u"wand.and.stars"_s, {}, &AppColors::accent, m_naturalLanguageBar);
    symbol->setSymbolSize(addSymbolSize);
    layout->addWidget(symbol);
    layout->addWidget(m_naturalLanguageField, 1);
    layout->addWidget(m_parseButton);
    return m_naturalLanguageBar;
}

void RuleEditorView::showRules()
{
    QHash<QUuid, RuleRowView *> previousRows;
    for (RuleRowView *row : std::as_const(m_rows))
        previousRows.insert(row->rule().id, row);

    QList<RuleRowView *> rows;
    for (const RenameRule &rule : m_vm->rules()) {
        RuleRowView *row = previousRows.take(rule.id);
        if (row && row->rule().type == rule.type) {
            // In place, so the field being typed in keeps its focus and cursor.
            row->setRule(rule);
        } else {
            if (row)
                previousRows.insert(rule.id, row);
            row = makeRow(rule);
        }
        rows.append(row);
    }
    // Later, not now: a row may be removed from inside its own key or menu handler.
    for (RuleRowView *row : std::as_const(previousRows)) {
        m_rowsLayout->removeWidget(row);
        row->hide();
        row->deleteLater();
    }

    if (rows != m_rows) {
        for (RuleRowView *row : std::as_const(rows))
            m_rowsLayout->removeWidget(row);
        for (qsizetype index = 0; index < rows.size(); ++index)
            m_rowsLayout->insertWidget(int(index), rows.at(index));
        m_rows = rows;
        updateTabOrder();
    }
    for (RuleRowView *row : std::as_const(m_rows))
        row->setExpanded(row->rule().id == m_expandedRuleId);
    m_listStack->setCurrentIndex(m_rows.isEmpty() ? 0 : 1);
}

RuleRowView *RuleEditorView::makeRow(const RenameRule &rule)
{
    auto *row = new RuleRowView(rule, m_rowsContainer);
    const QUuid id = rule.id;
    connect(row, &RuleRowView::ruleEdited, m_vm, &AppViewModel::updateRule);
    connect(row, &RuleRowView::expansionToggled, this, [this, id] { toggleExpansion(id); });
    connect(row, &RuleRowView::deleteRequested, this, [this, row] { deleteRow(row); });
    connect(row, &RuleRowView::moveRequested, this, [this, row](int offset) { moveRow(row, offset); });
    return row;
}

void RuleEditorView::toggleExpansion(const QUuid &ruleId)
{
    m_expandedRuleId = m_expandedRuleId == ruleId ? QUuid() : ruleId;
    for (RuleRowView *row : std::as_const(m_rows))
        row->setExpanded(row->rule().id == m_expandedRuleId);
}

void RuleEditorView::deleteRow(RuleRowView *row)
{
    const qsizetype index = m_rows.indexOf(row);
    if (index < 0)
        return;
    const bool hadFocus = row->isAncestorOf(focusWidget());
    m_vm->removeRule({index});
    if (!hadFocus)
        return;
    // The selection passes to the row that took the deleted one's place, so Delete can be pressed again.
    if (!m_rows.isEmpty())
        m_rows.at(std::min(index, m_rows.size() - 1))->header()->setFocus(Qt::OtherFocusReason);
    else
        m_addButtons.constFirst()->setFocus(Qt::OtherFocusReason);
}

void RuleEditorView::moveRow(RuleRowView *row, int offset)
{
    const qsizetype index = m_rows.indexOf(row);
    const qsizetype target = index + offset;
    if (index < 0 || target < 0 || target >= m_rows.size())
        return;
    // The destination is the offset before which the rule lands, counted in the list before the move.
    m_vm->moveRule({index}, offset < 0 ? target : target + 1);
}

void RuleEditorView::layOutAddButtons()
{
    int widest = 0;
    for (const QToolButton *button : std::as_const(m_addButtons))
        widest = std::max(widest, button->sizeHint().width());
    const int available = m_addButtonsLayout->parentWidget()->width();
    const int spacing = m_addButtonsLayout->horizontalSpacing();
    // As many columns as fit the longest name, but never fewer than two: a single column would crowd out
    // the rules on a short window.
    const int columns = std::max(2, (available + spacing) / (widest + spacing));
    if (columns == m_addButtonColumns)
        return;
    m_addButtonColumns = columns;
    for (QToolButton *button : std::as_const(m_addButtons))
        m_addButtonsLayout->removeWidget(button);
    for (qsizetype index = 0; index < m_addButtons.size(); ++index)
        m_addButtonsLayout->addWidget(m_addButtons.at(index), int(index / columns), int(index % columns));
}

void RuleEditorView::placeSuggestions()
{
    if (m_vm->nlSuggestions().isEmpty())
        return;
    const int width = m_naturalLanguageBar->width();
    const int height =
        m_suggestions->hasHeightForWidth() ? m_suggestions->heightForWidth(width) : m_suggestions->sizeHint().height();
    const QPoint barTopLeft = m_naturalLanguageBar->mapTo(this, QPoint(0, 0));
    m_suggestions->setGeometry(barTopLeft.x(), std::max(0, barTopLeft.y() - height - AppSpacing::xs), width, height);
    m_suggestions->raise();
}

void RuleEditorView::dismissSuggestions()
{
    m_vm->setNlSuggestions({});
    m_naturalLanguageField->setFocus(Qt::ShortcutFocusReason);
}

void RuleEditorView::updateTabOrder()
{
    QList<QWidget *> order{m_loadPresetButton, m_savePresetButton};
    for (RuleRowView *row : std::as_const(m_rows)) {
        // Children in creation order are the row's own visual order: header first, then the editor's fields.
        const QList<QWidget *> children = row->findChildren<QWidget *>();
        std::copy_if(children.cbegin(), children.cend(), std::back_inserter(order), [](const QWidget *child) {
            return !child->isWindow() && (child->focusPolicy() & Qt::TabFocus);
        });
    }
    order.append(QList<QWidget *>(m_addButtons.cbegin(), m_addButtons.cend()));
    order.append(
        {m_naturalLanguageField, m_parseButton, m_suggestions->applyAllButton(), m_suggestions->dismissButton()});
    for (qsizetype index = 1; index < order.size(); ++index)
        QWidget::setTabOrder(order.at(index - 1), order.at(index));
}

qsizetype RuleEditorView::dropDestination(int y) const
{
    const auto below = std::find_if(m_rows.cbegin(), m_rows.cend(), [y](const RuleRowView *row) {
        return y < row->geometry().center().y();
    });
    return below - m_rows.cbegin();
}

void RuleEditorView::showDropIndicator(qsizetype destination)
{
    if (m_rows.isEmpty())
        return;
    const int gap = m_rowsLayout->spacing();
    const int y = destination < m_rows.size()
        ? m_rows.at(destination)->geometry().top() - (gap + dropIndicatorHeight) / 2
        : m_rows.constLast()->geometry().bottom() + (gap - dropIndicatorHeight) / 2 + 1;
    const QRect rows = m_rows.constFirst()->geometry();
    m_dropIndicator->setGeometry(rows.left(), y, rows.width(), dropIndicatorHeight);
    m_dropIndicator->show();
    m_dropIndicator->raise();
}

bool RuleEditorView::handleDragEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto *drag = static_cast<QDragMoveEvent *>(event);
        const QUuid id = draggedRuleId(drag->mimeData());
        const bool isOwnRow =
            std::any_of(m_rows.cbegin(), m_rows.cend(), [&](const RuleRowView *row) { return row->rule().id == id; });
        if (!isOwnRow) {
            drag->ignore();
            return true;
        }
        drag->setDropAction(Qt::MoveAction);
        drag->accept();
        showDropIndicator(dropDestination(drag->position().toPoint().y()));
        return true;
    }
    case QEvent::DragLeave:
        m_dropIndicator->hide();
        return true;
    case QEvent::Drop: {
        auto *drop = static_cast<QDropEvent *>(event);
        m_dropIndicator->hide();
        const QUuid id = draggedRuleId(drop->mimeData());
        const auto source =
            std::find_if(m_rows.cbegin(), m_rows.cend(), [&](const RuleRowView *row) { return row->rule().id == id; });
        if (source == m_rows.cend()) {
            drop->ignore();
            return true;
        }
        drop->setDropAction(Qt::MoveAction);
        drop->accept();
        m_vm->moveRule({source - m_rows.cbegin()}, dropDestination(drop->position().toPoint().y()));
        return true;
    }
    default:
        return false;
    }
}

} // namespace quillfern
