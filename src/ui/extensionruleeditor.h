#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits an extension change rule: the new extension, blank to remove it.
class ExtensionRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit ExtensionRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
