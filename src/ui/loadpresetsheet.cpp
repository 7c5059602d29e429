#include "ui/loadpresetsheet.h"

#include "model/counting.h"
#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/panedivider.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/symbolicons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int symbolSize = 18;

} // namespace

LoadPresetSheet::LoadPresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent)
    : QDialog(parent)
    , m_vm(vm)
    , m_presetManager(presetManager)
    , m_list(new QWidget)
{
    setObjectName(u"loadPresetSheet"_s);
    setWindowTitle(u"Load Preset"_s);
    setWindowModality(Qt::WindowModal);
    setMinimumSize(320, 360);

    auto *headline = new QLabel(u"Load Preset"_s, this);
    headline->setObjectName(u"sheetHeadline"_s);
    headline->setFont(AppFonts::headline());

    m_list->setObjectName(u"presetList"_s);
    auto *scrollArea = new QScrollArea(this);
    scrollArea->setWidgetResizable(true);
    scrollArea->setFrameShape(QFrame::NoFrame);
    scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea->setWidget(m_list);
    auto *listLayout = new QVBoxLayout(m_list);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->setSpacing(AppSpacing::xs);
    showPresets();
    connect(m_presetManager, &PresetManager::presetsChanged, this, &LoadPresetSheet::showPresets);

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
    layout->addWidget(scrollArea, 1);
    layout->addLayout(buttons);
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
    auto *name = new QLabel(preset.name, row);
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
