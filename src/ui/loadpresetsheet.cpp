#include "ui/loadpresetsheet.h"

#include "model/counting.h"
#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/elidinglabel.h"
#include "ui/panedivider.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/sheetstyle.h"
#include "ui/symbolicons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int symbolSize = 18;
constexpr QSize minimumSheetSize{320, 360};
/// How close the sheet may come to the edges of the window it belongs to.
constexpr int windowMargin = AppSpacing::xl;

} // namespace

LoadPresetSheet::LoadPresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent)
    : QDialog(parent)
    , m_vm(vm)
    , m_presetManager(presetManager)
    , m_list(new QWidget)
{
    setObjectName(u"loadPresetSheet"_s);
    setWindowTitle(u"Load Preset"_s);
    SheetStyle::apply(this);
    setMinimumSize(minimumSheetSize);

    auto *headline = new QLabel(u"Load Preset"_s, this);
    headline->setObjectName(u"sheetHeadline"_s);
    headline->setFont(AppFonts::headline());

    m_list->setObjectName(u"presetList"_s);
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setObjectName(u"presetScrollArea"_s);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scrollArea->setWidget(m_list);
    auto *listLayout = new QVBoxLayout(m_list);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->setSpacing(AppSpacing::xs);
    showPresets();
    connect(m_presetManager, &PresetManager::presetsChanged, this, [this] {
        showPresets();
        if (isVisible())
            fitToContent();
    });

    auto *cancelButton = new QPushButton(u"Cancel"_s, this);
    cancelButton->setObjectName(u"cancelButton"_s);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancelButton);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(AppSpacing::xl, AppSpacing::xl, AppSpacing::xl, AppSpacing::lg);
    layout->setSpacing(AppSpacing::md);
    layout->addWidget(headline);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    layout->addWidget(m_scrollArea, 1);
    layout->addLayout(buttons);
}

void LoadPresetSheet::setVisible(bool visible)
{
    // Sized before it shows, so it opens centred over the window at its final size.
    if (visible)
        fitToContent();
    QDialog::setVisible(visible);
}

void LoadPresetSheet::fitToContent()
{
    // The rows at their natural size (every name whole) with the sheet around them, but never larger than the
    // window it belongs to nor smaller than its minimum; a name that then does not fit is cut.
    m_list->layout()->activate();
    const QSize rows = m_list->sizeHint();
    const QSize chrome = layout()->sizeHint() - m_scrollArea->sizeHint();
    QSize wanted = chrome + rows;
    QSize limit = wanted;
    if (const QWidget *parent = parentWidget())
        limit = parent->window()->size() - QSize(2 * windowMargin, 2 * windowMargin);
    // Rows taller than the room left scroll, and the scroll bar takes its own width.
    if (wanted.height() > limit.height())
        wanted.rwidth() += m_scrollArea->verticalScrollBar()->sizeHint().width();
    resize(wanted.boundedTo(limit).expandedTo(minimumSize()));
}

void LoadPresetSheet::showPresets()
{
    auto *layout = static_cast<QVBoxLayout *>(m_list->layout());
    while (QLayoutItem *item = layout->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const Preset &preset : m_presetManager->presets())
        layout->addWidget(makeRow(preset, m_list));
    layout->addStretch();
}

QWidget *LoadPresetSheet::makeRow(const Preset &preset, QWidget *parent)
{
    auto *row = new QWidget(parent);
    row->setObjectName(u"presetRow"_s);

    auto *symbol = new QLabel(row);
    symbol->setPixmap(SymbolIcons::icon(preset.icon, AppColors::accent()).pixmap(symbolSize, symbolSize));
    // A long name is cut to leave room for the Load button; the tooltip shows it whole.
    auto *name = new ElidingLabel(preset.name, row);
    name->setObjectName(u"presetName"_s);
    name->setFont(AppFonts::label());
    auto *count = new QLabel(counted(preset.rules.size(), u"rule"), row);
    count->setObjectName(u"presetRuleCount"_s);
    count->setFont(AppFonts::caption());
    RuleEditorStyle::makeSecondary(count);

    auto *loadButton = new QPushButton(u"Load"_s, row);
    loadButton->setObjectName(u"loadButton"_s);
    loadButton->setAccessibleName(u"Load "_s + preset.name);
    connect(loadButton, &QPushButton::clicked, this, [this, preset] {
        m_vm->loadPreset(preset);
        accept();
    });

    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(name);
    texts->addWidget(count);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(AppSpacing::xs, AppSpacing::xs, AppSpacing::xs, AppSpacing::xs);
    layout->setSpacing(AppSpacing::md);
    layout->addWidget(symbol);
    layout->addLayout(texts, 1);
    layout->addWidget(loadButton);
    return row;
}

} // namespace quillfern
