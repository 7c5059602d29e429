#pragma once

#include "ui/rulekindeditor.h"

class QLabel;

namespace quillfern {

/// Edits a numbering rule: position, start, step, padding (with a stepper and a live sample of the first
/// number) and separator.
class NumberingRuleEditor final : public RuleKindEditor
{
    Q_OBJECT

public:
    explicit NumberingRuleEditor(const RenameRule &rule, QWidget *parent = nullptr);

    /// The full sample text, such as "→ 001", before any eliding to the available width.
    [[nodiscard]] QString sampleText() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *paddingControl();
    void showSample();

    QLabel *m_sample = nullptr;
};

} // namespace quillfern
