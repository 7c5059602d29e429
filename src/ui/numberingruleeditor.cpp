#include "ui/numberingruleeditor.h"

#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/numberfield.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/symbolicons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

NumberingRuleEditor::NumberingRuleEditor(const RenameRule &rule, QWidget *parent)
    : RuleKindEditor(rule, parent)
{
    addField(u"Position"_s,
        bindPicker(u"numberingPosition"_s, &RenameRule::numberingPosition, allChoices<NumberingPosition>()));
    // Start and step stay within ±10^12, so start + step × (files − 1) cannot overflow for any real list.
    addField(u"Start at"_s,
        bindNumber(u"numberingStart"_s, &RenameRule::numberingStart, u"1"_s, -largestNumber, largestNumber));
    addField(u"Step"_s, bindNumber(u"numberingStep"_s, &RenameRule::numberingStep, {}, -largestNumber, largestNumber));
    addField(u"Padding"_s, paddingControl());
    addField(u"Separator"_s, bindText(u"numberingSeparator"_s, &RenameRule::numberingSeparator, u"_"_s));
    alignLabels();
    setRule(rule);
}

QString NumberingRuleEditor::sampleText() const
{
    // The number as C's "%0<padding>d" writes it, which is how the rule pads its numbers. A padding from a preset
    // file may lie outside the field's bounds; the sample stays within them.
    const int padding = int(std::clamp<qint64>(rule().numberingPadding, 0, largestPadding));
    return u"→ "_s + QString::asprintf("%0*lld", padding, qlonglong(rule().numberingStart));
}

bool NumberingRuleEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_sample && event->type() == QEvent::Resize)
        showSample();
    return RuleKindEditor::eventFilter(watched, event);
}

QWidget *NumberingRuleEditor::paddingControl()
{
    auto *control = new QWidget(this);
    auto *layout = new QHBoxLayout(control);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(AppSpacing::xs);

    NumberField *padding = bindNumber(u"numberingPadding"_s, &RenameRule::numberingPadding, u"3"_s, 0, largestPadding);
    padding->setMaximumWidth(padding->fontMetrics().horizontalAdvance(u"0000"_s) + 2 * AppSpacing::md);
    layout->addWidget(padding);

    // The stepper: Up and Down in the field do the same from the keyboard, so its buttons take no focus.
    const auto addStepButton = [&](const QString &name, const QString &symbol, const QString &help, qint64 steps) {
        auto *button = new QToolButton(control);
        button->setObjectName(name);
        button->setIcon(SymbolIcons::icon(symbol));
        button->setToolTip(help);
        button->setAccessibleName(help);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRepeat(true);
        connect(button, &QToolButton::clicked, padding, [padding, steps] { padding->stepBy(steps); });
        layout->addWidget(button);
    };
    addStepButton(u"paddingDown"_s, u"minus"_s, u"Less padding"_s, -1);
    addStepButton(u"paddingUp"_s, u"plus"_s, u"More padding"_s, 1);

    m_sample = new QLabel(control);
    m_sample->setObjectName(u"numberingSample"_s);
    m_sample->setFont(AppFonts::monoSmall());
    RuleEditorStyle::makeSecondary(m_sample);
    // A wide padding must not widen the pane: the sample takes the room left and elides in the middle.
    m_sample->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_sample->installEventFilter(this);
    layout->addWidget(m_sample, 1);
    onShow([this] { showSample(); });
    return control;
}

void NumberingRuleEditor::showSample()
{
    const QString sample = sampleText();
    m_sample->setToolTip(sample);
    m_sample->setText(m_sample->fontMetrics().elidedText(sample, Qt::ElideMiddle, m_sample->width()));
}

} // namespace quillfern
