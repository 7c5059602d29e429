#pragma once

#include "model/renamerule.h"

#include <QComboBox>
#include <QList>
#include <QWidget>

#include <functional>
#include <utility>

class QCheckBox;
class QLineEdit;
class QVBoxLayout;

namespace quillfern {

class NumberField;
class RuleEditorField;

/// The common base of the per-kind rule editors. An editor holds a copy of one rule, shows its fields in
/// controls, and announces the whole edited rule on every change the user makes; it keeps no other state.
class RuleKindEditor : public QWidget
{
    Q_OBJECT

public:
    [[nodiscard]] const RenameRule &rule() const { return m_rule; }
    /// Shows the rule's values. Controls that already show their value are left alone, so the field being
    /// typed in keeps its cursor and selection.
    void setRule(const RenameRule &rule);
    /// The labelled rows in layout order, hidden ones included.
    [[nodiscard]] QList<RuleEditorField *> fields() const;

Q_SIGNALS:
    /// Fires on every edit by the user (each keystroke, toggle and choice), never for setRule.
    void ruleEdited(const RenameRule &rule);

protected:
    /// The largest count, position, start or step a number field accepts. With start and step within this bound a
    /// numbering of nine million files still fits in 64 bits.
    static constexpr qint64 largestNumber = 1'000'000'000'000;
    /// The largest numbering padding a field accepts.
    static constexpr qint64 largestPadding = 255;

    RuleKindEditor(const RenameRule &rule, QWidget *parent);

    /// A text field with a placeholder bound to a text field of the rule.
    QLineEdit *bindText(const QString &name, QString RenameRule::*field, const QString &placeholder);
    /// A check box bound to a flag of the rule.
    QCheckBox *bindToggle(const QString &name, bool RenameRule::*field, const QString &text);
    /// A number field with a placeholder bound to an integer field of the rule, refusing values outside the
    /// bounds.
    NumberField *bindNumber(const QString &name,
        qint64 RenameRule::*field,
        const QString &placeholder,
        qint64 minimum,
        qint64 maximum);
    /// A picker over the given choices, each shown by its text, bound to an enumeration field of the rule. A value
    /// outside the choices shows no choice.
    template<typename Enum>
    QComboBox *bindPicker(const QString &name, Enum RenameRule::*field, const QList<std::pair<Enum, QString>> &choices)
    {
        auto *picker = new QComboBox(this);
        picker->setObjectName(name);
        for (const auto &[value, text] : choices)
            picker->addItem(text, QVariant::fromValue(int(value)));
        connect(picker, &QComboBox::currentIndexChanged, this, [this, picker, field](int index) {
            if (index >= 0)
                edit([&](RenameRule &rule) { rule.*field = Enum(picker->itemData(index).toInt()); });
        });
        onShow([this, picker, field] { picker->setCurrentIndex(picker->findData(int(m_rule.*field))); });
        return picker;
    }

    /// Every case of the enumeration with its display text, in declaration order: the choices of a picker.
    template<typename Enum>
    static QList<std::pair<Enum, QString>> allChoices()
    {
        QList<std::pair<Enum, QString>> choices;
        for (Enum value : allCases<Enum>())
            choices.append({value, rawValue(value)});
        return choices;
    }

    /// Appends a labelled row for the control.
    RuleEditorField *addField(const QString &label, QWidget *control);
    /// Appends a row without a label (a row of toggles, a caption).
    void addRow(QWidget *widget);
    /// Runs `show` whenever the rule's values are shown (after setRule and after each edit).
    void onShow(std::function<void()> show);
    /// Lines up the labels of every row; call once all rows are added.
    void alignLabels();
    /// Applies `change` to the rule and announces the edited rule.
    void edit(const std::function<void(RenameRule &)> &change);

private:
    void showRule();

    RenameRule m_rule;
    QVBoxLayout *m_layout;
    QList<std::function<void()>> m_shows;
    /// True while controls are being set from the rule, when their change signals are not user edits.
    bool m_isShowing = false;
};

} // namespace quillfern
