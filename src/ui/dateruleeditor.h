#pragma once

#include "ui/rulekindeditor.h"

namespace quillfern {

/// Edits a date-stamp rule: the date pattern and whether the date goes before or after the name.
class DateRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit DateRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);
};

} // namespace quillfern
