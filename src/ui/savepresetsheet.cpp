#include "ui/savepresetsheet.h"

#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/prominentbutton.h"
#include "ui/sheetstyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

SavePresetSheet::SavePresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent)
    : QDialog(parent)
    , m_vm(vm)
    , m_presetManager(presetManager)
    , m_nameField(new QLineEdit(this))
    , m_saveButton(new ProminentButton(u"Save"_s, this))
{
    setObjectName(u"savePresetSheet"_s);
    setWindowTitle(u"Save Preset"_s);
    SheetStyle::apply(this);
    setMinimumWidth(300);

    auto *headline = new QLabel(u"Save Preset"_s, this);
    headline->setObjectName(u"sheetHeadline"_s);
    headline->setFont(AppFonts::headline());

    m_nameField->setObjectName(u"presetNameField"_s);
    m_nameField->setPlaceholderText(u"Preset name"_s);
    m_nameField->setAccessibleName(u"Preset name"_s);

    auto *cancelButton = new QPushButton(u"Cancel"_s, this);
    cancelButton->setObjectName(u"cancelButton"_s);
    cancelButton->setAutoDefault(false);
    m_saveButton->setObjectName(u"saveButton"_s);
    m_saveButton->setDefault(true);
    m_saveButton->setEnabled(false);

    connect(m_nameField, &QLineEdit::textChanged, this, [this](const QString &name) {
        m_saveButton->setEnabled(!name.isEmpty());
    });
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_saveButton, &QPushButton::clicked, this, &SavePresetSheet::save);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(AppSpacing::sm);
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(m_saveButton);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(AppSpacing::xl, AppSpacing::xl, AppSpacing::xl, AppSpacing::lg);
    layout->setSpacing(AppSpacing::lg);
    layout->addWidget(headline);
    layout->addWidget(m_nameField);
    layout->addLayout(buttons);
}

QString SavePresetSheet::presetName() const
{
    return m_nameField->text();
}

void SavePresetSheet::save()
{
    m_presetManager->save(Preset(presetName(), m_vm->rules()));
    accept();
    m_nameField->clear();
}

} // namespace quillfern
