#include "ui/extensionruleeditor.h"

#include "ui/ruleeditorstyle_p.h"

#include <QLabel>
#include <QLineEdit>

namespace quillfern {

using namespace Qt::StringLiterals;

ExtensionRuleEditor::ExtensionRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"New extension"_s, bindText(u"newExtension"_s, &RenameRule::newExtension, u"jpg"_s));
    auto *caption = new QLabel(u"(leave blank to remove extension)"_s, this);
    caption->setObjectName(u"extensionCaption"_s);
    RuleEditorStyle::makeCaption(caption);
    addRow(caption);
    alignLabels();
    setRule(rule);
}

} // namespace quillfern
