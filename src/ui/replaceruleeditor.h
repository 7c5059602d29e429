#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits a replace rule, and a regular-expression rule alike (pattern in the find text, template in the
/// replacement): find and replacement texts, case sensitivity and whether the find text is a pattern.
class ReplaceRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit ReplaceRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
