#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits a case conversion rule: the case style.
class CaseRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit CaseRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
