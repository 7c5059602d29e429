#include "ui/insertruleeditor.h"

#include "ui/numberfield.h"
#include "ui/ruleeditorfield.h"

#include <QLineEdit>

namespace quillfern {

using namespace Qt::StringLiterals;

InsertRuleEditor::InsertRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Text"_s, bindText(u"insertText"_s, &RenameRule::insertText, u"Text to insert"_s));
    addField(u"Position"_s, bindPicker(u"insertPosition"_s, &RenameRule::insertPosition, allChoices<InsertPosition>()));
    RuleEditorField *index =
        addField(u"Index"_s, bindNumber(u"insertIndex"_s, &RenameRule::insertIndex, u"0"_s, 0, largestNumber));
    RuleEditorField *anchor =
        addField(u"Anchor"_s, bindText(u"insertAnchorText"_s, &RenameRule::insertAnchorText, u"Anchor text"_s));
    // Hiding a row keeps its value in the rule, so switching back finds it unchanged.
    onShow([this, index, anchor] {
        const InsertPosition position = this->rule().insertPosition;
        index->setVisible(position == InsertPosition::AtIndex);
        anchor->setVisible(position == InsertPosition::BeforeText || position == InsertPosition::AfterText);
    });

    alignLabels();
    setRule(rule);
}

} // namespace quillfern
