#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits a remove rule: what to remove, then the text, count, positions or markers that target needs.
class RemoveRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit RemoveRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
