#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits an insert rule: the text, where it goes, and the index or the anchor text where the position needs one.
class InsertRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit InsertRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
