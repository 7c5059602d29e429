#include "ui/replaceruleeditor.h"

#include "ui/appspacing.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLineEdit>

namespace quillfern {

using namespace Qt::StringLiterals;

ReplaceRuleEditor::ReplaceRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Find"_s, bindText(u"findText"_s, &RenameRule::findText, u"Text to find"_s));
    addField(u"Replace with"_s, bindText(u"replaceText"_s, &RenameRule::replaceText, u"Replacement text"_s));

    auto *toggles = new QWidget(this);
    auto *togglesLayout = new QHBoxLayout(toggles);
    togglesLayout->setContentsMargins(0, 0, 0, 0);
    togglesLayout->setSpacing(AppSpacing::md);
    togglesLayout->addWidget(bindToggle(u"isCaseSensitive"_s, &RenameRule::isCaseSensitive, u"Case sensitive"_s));
    togglesLayout->addWidget(bindToggle(u"useRegex"_s, &RenameRule::useRegex, u"Use regex"_s));
    togglesLayout->addStretch();
    addRow(toggles);

    alignLabels();
    setRule(rule);
}

} // namespace quillfern
