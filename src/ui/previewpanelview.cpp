#include "ui/previewpanelview.h"

#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/panedivider.h"
#include "ui/panelabel.h"
#include "ui/previewlistmodel.h"
#include "ui/previewrowview.h"
#include "ui/symbolicons.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QListView>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int emptyStateSymbolSize = 36;

QColor primaryText()
{
    return QApplication::palette().color(QPalette::WindowText);
}

} // namespace

PreviewPanelView::PreviewPanelView(AppViewModel *vm, QWidget *parent)
    : QWidget(parent)
    , m_vm(vm)
    , m_model(new PreviewListModel(vm, this))
    , m_rowView(new PreviewRowView(this))
{
    setObjectName(u"previewPanelView"_s);
    setAutoFillBackground(true);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_header = createHeader();
    layout->addWidget(m_header);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    layout->addWidget(createList(), 1);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    m_footer = createFooter();
    layout->addWidget(m_footer);

    connect(m_model, &PreviewListModel::modelReset, this, &PreviewPanelView::update);
    connect(vm, &AppViewModel::filesChanged, this, &PreviewPanelView::update);
    update();
    applyTheme();
}

QWidget *PreviewPanelView::createHeader()
{
    auto *header = new QWidget(this);
    header->setObjectName(u"previewHeader"_s);
    auto *title = new PaneLabel(u"eye"_s, u"Live Preview"_s, &primaryText, header);
    title->setObjectName(u"previewTitle"_s);
    title->setTextFont(AppFonts::label());
    m_conflictLabel = new PaneLabel(u"exclamationmark.triangle.fill"_s, {}, &AppColors::warning, header);
    m_conflictLabel->setObjectName(u"previewConflictLabel"_s);
    m_conflictLabel->setTextFont(AppFonts::caption());
    m_checkMark = new PaneLabel(u"checkmark.circle.fill"_s, {}, &AppColors::success, header);
    m_checkMark->setObjectName(u"previewCheckMark"_s);
    m_checkMark->setSymbolSize(QFontMetrics(AppFonts::caption()).height());

    auto *layout = new QHBoxLayout(header);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::sm, AppSpacing::md, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(title);
    layout->addStretch();
    layout->addWidget(m_conflictLabel);
    layout->addWidget(m_checkMark);
    return header;
}

QWidget *PreviewPanelView::createList()
{
    m_list = new QListView(this);
    m_list->setObjectName(u"previewList"_s);
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_rowView);
    // A changed name takes two lines, an unchanged one a single line.
    m_list->setUniformItemSizes(false);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setMouseTracking(true);
    m_list->viewport()->setAttribute(Qt::WA_Hover);
    m_list->viewport()->setAutoFillBackground(false);

    m_emptyState = createEmptyState(u"emptyState"_s,
        u"eye.slash"_s,
        u"Preview will appear here"_s,
        u"Add files and rename rules to see results"_s);
    m_noRulesState = createEmptyState(u"noRulesState"_s, u"wand.and.stars"_s, u"Add rules to see preview"_s, {});

    // The rows sit a little away from the dividers above and below them.
    auto *listFrame = new QWidget(this);
    auto *listLayout = new QVBoxLayout(listFrame);
    listLayout->setContentsMargins(0, AppSpacing::xs, 0, AppSpacing::xs);
    listLayout->addWidget(m_list);

    m_content = new QStackedWidget(this);
    m_content->addWidget(listFrame);
    m_content->addWidget(m_emptyState);
    m_content->addWidget(m_noRulesState);
    return m_content;
}

QWidget *PreviewPanelView::createEmptyState(const QString &name,
    const QString &symbolName,
    const QString &text,
    const QString &detail)
{
    auto *state = new QWidget(this);
    state->setObjectName(name);
    auto *symbol = new PaneLabel(symbolName, {}, &AppColors::secondary, state);
    symbol->setSymbolSize(emptyStateSymbolSize);
    auto *message = new PaneLabel({}, text, &AppColors::secondary, state);
    message->setObjectName(name + u"Message"_s);
    message->setTextFont(AppFonts::callout());

    auto *layout = new QVBoxLayout(state);
    layout->setContentsMargins(AppSpacing::lg, AppSpacing::lg, AppSpacing::lg, AppSpacing::lg);
    layout->setSpacing(AppSpacing::md);
    layout->addStretch();
    layout->addWidget(symbol, 0, Qt::AlignHCenter);
    layout->addWidget(message, 0, Qt::AlignHCenter);
    if (!detail.isEmpty()) {
        auto *detailLabel = new PaneLabel({}, detail, &AppColors::tertiary, state);
        detailLabel->setObjectName(name + u"Detail"_s);
        detailLabel->setTextFont(AppFonts::caption());
        detailLabel->setAlignment(Qt::AlignHCenter);
        detailLabel->setWordWrap(true);
        // Given the full width, the text wraps only when the pane is too narrow for it.
        layout->addWidget(detailLabel);
    }
    layout->addStretch();
    return state;
}

QWidget *PreviewPanelView::createFooter()
{
    auto *footer = new QWidget(this);
    footer->setObjectName(u"previewFooter"_s);
    m_changesLabel = new PaneLabel({}, {}, &AppColors::secondary, footer);
    m_changesLabel->setObjectName(u"changesLabel"_s);
    m_changesLabel->setTextFont(AppFonts::caption());

    m_exportButton = new QToolButton(footer);
    m_exportButton->setObjectName(u"exportButton"_s);
    m_exportButton->setToolTip(u"Export CSV"_s);
    m_exportButton->setAutoRaise(true);
    connect(m_exportButton, &QToolButton::clicked, this, [this] { m_vm->exportCSVToFile(u"CSV files (*.csv)"_s); });

    auto *layout = new QHBoxLayout(footer);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::sm, AppSpacing::md, AppSpacing::sm);
    layout->addWidget(m_changesLabel);
    layout->addStretch();
    layout->addWidget(m_exportButton);
    return footer;
}

void PreviewPanelView::update()
{
    const bool hasPreviews = m_model->rowCount() > 0;
    if (hasPreviews)
        m_content->setCurrentIndex(0);
    else
        m_content->setCurrentWidget(m_vm->files().isEmpty() ? m_emptyState : m_noRulesState);

    const qsizetype conflicts = m_vm->conflictCount();
    m_conflictLabel->setText(QString::number(conflicts));
    m_conflictLabel->setVisible(conflicts > 0);
    m_checkMark->setVisible(conflicts == 0 && hasPreviews);
    m_changesLabel->setText(QString::number(m_model->changedCount()) + u" changes"_s);
}

void PreviewPanelView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange
        || event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange)
        applyTheme();
}

void PreviewPanelView::applyTheme()
{
    m_exportButton->setIcon(SymbolIcons::icon(u"square.and.arrow.up"_s));
    m_rowView->clearCaches();
    // Rows are measured again, as the font may have changed their height.
    m_list->doItemsLayout();
    m_list->viewport()->update();
}

} // namespace quillfern
