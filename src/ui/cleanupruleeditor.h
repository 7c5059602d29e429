#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits a clean-up rule: its four switches.
class CleanupRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit CleanupRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
