#pragma once

#include <QWidget>

class QLabel;

namespace quillfern {

/// One labelled row of a rule editor: the label, then the control that edits the field it names.
class RuleEditorField final : public QWidget
{
    Q_OBJECT

public:
    RuleEditorField(const QString &label, QWidget *control, QWidget *parent = nullptr);

    [[nodiscard]] QString label() const;
    [[nodiscard]] QWidget *control() const { return m_control; }
    /// The width of the label column, so the fields of one editor line up.
    [[nodiscard]] int labelWidth() const;
    void setLabelWidth(int width);

private:
    QLabel *m_label;
    QWidget *m_control;
};

} // namespace quillfern
