#include "ui/rulekindeditor.h"

#include "ui/appspacing.h"
#include "ui/numberfield.h"
#include "ui/ruleeditorfield.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

namespace quillfern {

RuleKindEditor::RuleKindEditor(const RenameRule &rule, QWidget *parent)
    : QWidget(parent)
    , m_rule(rule)
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(AppSpacing::sm);
}

void RuleKindEditor::setRule(const RenameRule &rule)
{
    m_rule = rule;
    showRule();
}

QList<RuleEditorField *> RuleKindEditor::fields() const
{
    return findChildren<RuleEditorField *>(Qt::FindDirectChildrenOnly);
}

QLineEdit *RuleKindEditor::bindText(const QString &name, QString RenameRule::*field, const QString &placeholder)
{
    auto *lineEdit = new QLineEdit(this);
    lineEdit->setObjectName(name);
    lineEdit->setPlaceholderText(placeholder);
    lineEdit->setClearButtonEnabled(false);
    connect(lineEdit, &QLineEdit::textChanged, this, [this, field](const QString &text) {
        edit([&](RenameRule &rule) { rule.*field = text; });
    });
    onShow([this, lineEdit, field] {
        if (lineEdit->text() != m_rule.*field)
            lineEdit->setText(m_rule.*field);
    });
    return lineEdit;
}

QCheckBox *RuleKindEditor::bindToggle(const QString &name, bool RenameRule::*field, const QString &text)
{
    auto *toggle = new QCheckBox(text, this);
    toggle->setObjectName(name);
    connect(toggle, &QCheckBox::toggled, this, [this, field](bool isOn) {
        edit([&](RenameRule &rule) { rule.*field = isOn; });
    });
    onShow([this, toggle, field] { toggle->setChecked(m_rule.*field); });
    return toggle;
}

NumberField *RuleKindEditor::bindNumber(const QString &name,
    qint64 RenameRule::*field,
    const QString &placeholder,
    qint64 minimum,
    qint64 maximum)
{
    auto *number = new NumberField(minimum, maximum, this);
    number->setObjectName(name);
    number->setPlaceholderText(placeholder);
    connect(number, &NumberField::valueEdited, this, [this, field](qint64 value) {
        edit([&](RenameRule &rule) { rule.*field = value; });
    });
    onShow([this, number, field] { number->setValue(m_rule.*field); });
    return number;
}

RuleEditorField *RuleKindEditor::addField(const QString &label, QWidget *control)
{
    auto *field = new RuleEditorField(label, control, this);
    m_layout->addWidget(field);
    return field;
}

void RuleKindEditor::addRow(QWidget *widget)
{
    m_layout->addWidget(widget);
}

void RuleKindEditor::onShow(std::function<void()> show)
{
    m_shows.append(std::move(show));
}

void RuleKindEditor::alignLabels()
{
    const QList<RuleEditorField *> rows = fields();
    int width = 0;
    for (const RuleEditorField *row : rows)
        width = std::max(width, row->labelWidth());
    for (RuleEditorField *row : rows)
        row->setLabelWidth(width);
}

void RuleKindEditor::edit(const std::function<void(RenameRule &)> &change)
{
    if (m_isShowing)
        return;
    change(m_rule);
    // Rows that depend on the edited value (the insert editor's index and anchor) follow at once.
    showRule();
    Q_EMIT ruleEdited(m_rule);
}

void RuleKindEditor::showRule()
{
    m_isShowing = true;
    for (const std::function<void()> &show : std::as_const(m_shows))
        show();
    m_isShowing = false;
}

} // namespace quillfern
