#include "ui/numberfield.h"

#include <QKeyEvent>
#include <QValidator>

#include <algorithm>
#include <optional>

namespace quillfern {

namespace {

using namespace Qt::StringLiterals;

/// The text as a whole number within the bounds, or none.
std::optional<qint64> parsedValue(const QString &text, qint64 minimum, qint64 maximum)
{
    bool isNumber = false;
    const qint64 value = text.toLongLong(&isNumber);
    if (!isNumber || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

/// Accepts whole numbers within the bounds as they are typed: the empty text and a lone minus sign (where
/// negatives are allowed) are on the way to one, anything else is refused.
class BoundedIntegerValidator final : public QValidator
{
public:
    BoundedIntegerValidator(qint64 minimum, qint64 maximum, QObject *parent)
        : QValidator(parent)
        , m_minimum(minimum)
        , m_maximum(maximum)
    {
    }

    State validate(QString &input, int &) const override
    {
        if (input.isEmpty() || (input == u"-"_s && m_minimum < 0))
            return Intermediate;
        // Only plain digits: no plus sign, no spaces, no group separators.
        const qsizetype firstDigit = input.startsWith(u'-') ? 1 : 0;
        const bool isDigits = std::all_of(input.cbegin() + firstDigit, input.cend(), [](QChar character) {
            return character >= u'0' && character <= u'9';
        });
        if (!isDigits)
            return Invalid;
        return parsedValue(input, m_minimum, m_maximum) ? Acceptable : Invalid;
    }

private:
    qint64 m_minimum;
    qint64 m_maximum;
};

} // namespace

NumberField::NumberField(qint64 minimum, qint64 maximum, QWidget *parent)
    : QLineEdit(parent)
    , m_minimum(minimum)
    , m_maximum(maximum)
    , m_value(std::clamp<qint64>(0, minimum, maximum))
{
    Q_ASSERT_X(minimum <= maximum, "NumberField", "the bounds must not be crossed");
    setValidator(new BoundedIntegerValidator(minimum, maximum, this));
    setText(QString::number(m_value));
    connect(this, &QLineEdit::textEdited, this, &NumberField::takeTypedText);
    // Leaving a field whose text is not a number shows the number it still stands for.
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (!hasAcceptableInput())
            setText(QString::number(m_value));
    });
}

void NumberField::setValue(qint64 value)
{
    m_value = std::clamp(value, m_minimum, m_maximum);
    if (hasFocus() && !hasAcceptableInput())
        return;
    // Text such as "007" already shows the number; rewriting it would move the cursor under the user's hands.
    if (parsedValue(text(), m_minimum, m_maximum) != m_value)
        setText(QString::number(m_value));
}

void NumberField::stepBy(qint64 steps)
{
    // Saturating, so stepping at a bound cannot overflow.
    const qint64 stepped = steps > 0 ? (m_value > m_maximum - steps ? m_maximum : m_value + steps)
                                     : (m_value < m_minimum - steps ? m_minimum : m_value + steps);
    if (stepped == m_value && hasAcceptableInput())
        return;
    m_value = stepped;
    setText(QString::number(m_value));
    Q_EMIT valueEdited(m_value);
}

void NumberField::keyPressEvent(QKeyEvent *event)
{
    if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier) {
        if (event->key() == Qt::Key_Up) {
            stepBy(1);
            return;
        }
        if (event->key() == Qt::Key_Down) {
            stepBy(-1);
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

void NumberField::takeTypedText(const QString &text)
{
    const std::optional<qint64> typed = parsedValue(text, m_minimum, m_maximum);
    if (!typed || *typed == m_value)
        return;
    m_value = *typed;
    Q_EMIT valueEdited(m_value);
}

} // namespace quillfern
