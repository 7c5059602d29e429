#include "ui/cleanupruleeditor.h"

#include <QCheckBox>

namespace quillfern {

using namespace Qt::StringLiterals;

CleanupRuleEditor::CleanupRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addRow(bindToggle(u"trimWhitespace"_s, &RenameRule::trimWhitespace, u"Trim whitespace"_s));
    addRow(bindToggle(u"removeDuplicateSpaces"_s, &RenameRule::removeDuplicateSpaces, u"Remove duplicate spaces"_s));
    addRow(bindToggle(u"replaceSpacesWithUnderscores"_s,
        &RenameRule::replaceSpacesWithUnderscores,
        u"Replace spaces with underscores"_s));
    addRow(bindToggle(u"removeSpecialChars"_s, &RenameRule::removeSpecialChars, u"Remove special characters"_s));
    setRule(rule);
}

} // namespace quillfern
