#include "ui/caseruleeditor.h"

namespace quillfern {

using namespace Qt::StringLiterals;

CaseRuleEditor::CaseRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Case Style"_s, bindPicker(u"caseType"_s, &RenameRule::caseType, allChoices<CaseConversionType>()));
    alignLabels();
    setRule(rule);
}

} // namespace quillfern
