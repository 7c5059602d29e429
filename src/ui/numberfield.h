#pragma once

#include <QLineEdit>

namespace quillfern {

/// A text field for one whole number within fixed bounds. Input that would leave the bounds (a minus sign where
/// negatives are not allowed, a number too large) is refused as it is typed; Up and Down step by one.
class NumberField final : public QLineEdit
{
    Q_OBJECT

public:
    NumberField(qint64 minimum, qint64 maximum, QWidget *parent = nullptr);

    [[nodiscard]] qint64 minimum() const { return m_minimum; }
    [[nodiscard]] qint64 maximum() const { return m_maximum; }
    /// The number shown; the last valid one while the text is empty or a lone minus sign.
    [[nodiscard]] qint64 value() const { return m_value; }
    /// Shows `value` (clamped to the bounds). A field being edited whose text is not yet a number keeps it.
    void setValue(qint64 value);
    /// Changes the value by `steps`, staying within the bounds, as a user edit.
    void stepBy(qint64 steps);

Q_SIGNALS:
    /// Fires when the user's typing or stepping makes a new valid number; not for setValue.
    void valueEdited(qint64 value);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void takeTypedText(const QString &text);

    qint64 m_minimum;
    qint64 m_maximum;
    qint64 m_value;
};

} // namespace quillfern
