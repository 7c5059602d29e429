#include "ui/nlsuggestionsview.h"

#include "state/appviewmodel.h"
#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/panedivider.h"
#include "ui/prominentbutton.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/symbolicons.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int symbolSize = 14;

} // namespace

NLSuggestionsView::NLSuggestionsView(AppViewModel *vm, QWidget *parent)
    : QFrame(parent)
    , m_vm(vm)
    , m_rows(new QVBoxLayout)
    , m_applyAllButton(new ProminentButton(u"Apply All"_s, this))
    , m_dismissButton(new QPushButton(u"Dismiss"_s, this))
{
    setObjectName(u"nlSuggestions"_s);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    m_applyAllButton->setObjectName(u"applyAllButton"_s);
    m_dismissButton->setObjectName(u"dismissButton"_s);
    connect(m_applyAllButton, &QPushButton::clicked, m_vm, &AppViewModel::applyNLSuggestions);
    // Emptying the suggestions closes the card; the command stays in its field for another try.
    connect(m_dismissButton, &QPushButton::clicked, m_vm, [this] { m_vm->setNlSuggestions({}); });

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(AppSpacing::sm);
    buttons->addWidget(m_applyAllButton);
    buttons->addWidget(m_dismissButton);
    buttons->addStretch();

    m_rows->setSpacing(AppSpacing::xs);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(AppSpacing::md, AppSpacing::md, AppSpacing::md, AppSpacing::md);
    layout->setSpacing(AppSpacing::sm);
    layout->addLayout(m_rows);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, this));
    layout->addLayout(buttons);

    connect(m_vm, &AppViewModel::nlSuggestionsChanged, this, &NLSuggestionsView::showSuggestions);
    showSuggestions();
}

QString NLSuggestionsView::confidenceText(double confidence)
{
    return QString::number(qint64(confidence * 100)) + u'%';
}

void NLSuggestionsView::showSuggestions()
{
    while (QLayoutItem *item = m_rows->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const ParsedRule &suggestion : m_vm->nlSuggestions()) {
        QWidget *row = makeRow(suggestion);
        m_rows->addWidget(row);
        // A widget added to a card that already shows would appear only on a later turn of the event loop, and
        // the card would be measured and placed without it.
        row->show();
    }
    setVisible(!m_vm->nlSuggestions().isEmpty());
}

QWidget *NLSuggestionsView::makeRow(const ParsedRule &suggestion)
{
    auto *row = new QWidget(this);
    row->setObjectName(u"suggestionRow"_s);

    auto *symbol = new QLabel(row);
    symbol->setPixmap(
        SymbolIcons::icon(systemImage(suggestion.rule.type), AppColors::accent()).pixmap(symbolSize, symbolSize));
    auto *description = new QLabel(suggestion.description, row);
    description->setObjectName(u"suggestionDescription"_s);
    description->setFont(AppFonts::callout());
    description->setWordWrap(true);
    auto *confidence = new QLabel(confidenceText(suggestion.confidence), row);
    confidence->setObjectName(u"suggestionConfidence"_s);
    confidence->setFont(AppFonts::caption());
    RuleEditorStyle::makeSecondary(confidence);

    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(symbol, 0, Qt::AlignTop);
    layout->addWidget(description, 1);
    layout->addWidget(confidence, 0, Qt::AlignTop);
    return row;
}

} // namespace quillfern
