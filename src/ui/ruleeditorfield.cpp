#include "ui/ruleeditorfield.h"

#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/ruleeditorstyle_p.h"

#include <QHBoxLayout>
#include <QLabel>

namespace quillfern {

RuleEditorField::RuleEditorField(const QString &label, QWidget *control, QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(label, this))
    , m_control(control)
{
    m_label->setObjectName(QStringLiteral("fieldLabel"));
    m_label->setFont(AppFonts::callout());
    RuleEditorStyle::makeSecondary(m_label);
    // The label names the control for screen readers and for the mnemonic-free keyboard user alike.
    m_label->setBuddy(control);
    control->setAccessibleName(label);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(m_label);
    layout->addWidget(control, 1);
}

QString RuleEditorField::label() const
{
    return m_label->text();
}

int RuleEditorField::labelWidth() const
{
    return m_label->sizeHint().width();
}

void RuleEditorField::setLabelWidth(int width)
{
    m_label->setFixedWidth(width);
}

} // namespace quillfern
