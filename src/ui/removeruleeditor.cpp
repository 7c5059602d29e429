#include "ui/removeruleeditor.h"

#include "ui/appspacing.h"
#include "ui/numberfield.h"
#include "ui/ruleeditorfield.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

namespace quillfern {

using namespace Qt::StringLiterals;

RemoveRuleEditor::RemoveRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Remove"_s, bindPicker(u"removeTarget"_s, &RenameRule::removeTarget, allChoices<RemoveTarget>()));
    RuleEditorField *text =
        addField(u"Text"_s, bindText(u"removeText"_s, &RenameRule::removeText, u"Text to remove"_s));
    RuleEditorField *count =
        addField(u"Count"_s, bindNumber(u"removeCount"_s, &RenameRule::removeCount, u"1"_s, 0, largestNumber));

    // Negative counts and positions stop the engine, so these fields refuse them.
    auto *range = new QWidget(this);
    auto *rangeLayout = new QHBoxLayout(range);
    rangeLayout->setContentsMargins(0, 0, 0, 0);
    rangeLayout->setSpacing(AppSpacing::sm);
    rangeLayout->addWidget(bindNumber(u"removeFromIndex"_s, &RenameRule::removeFromIndex, u"0"_s, 0, largestNumber), 1);
    rangeLayout->addWidget(new QLabel(u"to"_s, range));
    rangeLayout->addWidget(bindNumber(u"removeToIndex"_s, &RenameRule::removeToIndex, {}, 0, largestNumber), 1);
    RuleEditorField *fromTo = addField(u"From"_s, range);

    RuleEditorField *start =
        addField(u"Start"_s, bindText(u"removeBetweenStart"_s, &RenameRule::removeBetweenStart, u"Start marker"_s));
    RuleEditorField *end =
        addField(u"End"_s, bindText(u"removeBetweenEnd"_s, &RenameRule::removeBetweenEnd, u"End marker"_s));

    onShow([this, text, count, fromTo, start, end] {
        const RemoveTarget target = this->rule().removeTarget;
        text->setVisible(target == RemoveTarget::Text);
        count->setVisible(target == RemoveTarget::FirstN || target == RemoveTarget::LastN);
        fromTo->setVisible(target == RemoveTarget::FromTo);
        start->setVisible(target == RemoveTarget::BetweenText);
        end->setVisible(target == RemoveTarget::BetweenText);
    });

    alignLabels();
    setRule(rule);
}

} // namespace quillfern
