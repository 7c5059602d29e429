#include "ui/dateruleeditor.h"

#include <QLineEdit>

namespace quillfern {

using namespace Qt::StringLiterals;

DateRuleEditor::DateRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Format"_s, bindText(u"dateFormat"_s, &RenameRule::dateFormat, u"yyyy-MM-dd"_s));
    // The date goes only before or after the whole name; the other insert positions are not offered.
    addField(u"Position"_s,
        bindPicker(u"datePosition"_s,
            &RenameRule::datePosition,
            {{InsertPosition::Beginning, u"Prefix"_s}, {InsertPosition::End, u"Suffix"_s}}));
    alignLabels();
    setRule(rule);
}

} // namespace quillfern
