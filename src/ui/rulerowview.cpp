#include "ui/rulerowview.h"

#include "ui/appcolors.h"
#include "ui/appfonts.h"
#include "ui/appspacing.h"
#include "ui/caseruleeditor.h"
#include "ui/cleanupruleeditor.h"
#include "ui/dateruleeditor.h"
#include "ui/extensionruleeditor.h"
#include "ui/insertruleeditor.h"
#include "ui/numberingruleeditor.h"
#include "ui/panedivider.h"
#include "ui/removeruleeditor.h"
#include "ui/replaceruleeditor.h"
#include "ui/ruleeditorstyle_p.h"
#include "ui/symbolicons.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDrag>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>
#include <QVBoxLayout>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

constexpr int cornerRadius = 8;
constexpr int symbolSize = 16;

/// The editor for the rule's kind; none for a trim rule. A regular-expression rule shares the replace editor.
RuleKindEditor *makeEditor(const RenameRule &rule, QWidget *parent)
{
    switch (rule.type) {
    case RuleType::Replace:
    case RuleType::Regex:
        return new ReplaceRuleEditor(rule, parent);
    case RuleType::Insert:
        return new InsertRuleEditor(rule, parent);
    case RuleType::Remove:
        return new RemoveRuleEditor(rule, parent);
    case RuleType::CaseConversion:
        return new CaseRuleEditor(rule, parent);
    case RuleType::Numbering:
        return new NumberingRuleEditor(rule, parent);
    case RuleType::Cleanup:
        return new CleanupRuleEditor(rule, parent);
    case RuleType::DateStamp:
        return new DateRuleEditor(rule, parent);
    case RuleType::ExtensionChange:
        return new ExtensionRuleEditor(rule, parent);
    case RuleType::Trim:
        return nullptr;
    }
    Q_UNREACHABLE();
    return nullptr;
}

} // namespace

RuleRowView::RuleRowView(const RenameRule &rule, QWidget *parent)
    : QWidget(parent)
    , m_rule(rule)
{
    setObjectName(u"ruleRow"_s);
    setAccessibleName(rawValue(rule.type));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(AppSpacing::sm, AppSpacing::xs, AppSpacing::sm, AppSpacing::xs);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    layout->addWidget(makeDetails());
    m_details->setVisible(false);

    m_deleteAction = new QAction(u"Delete"_s, this);
    m_deleteAction->setObjectName(u"deleteRuleAction"_s);
    connect(m_deleteAction, &QAction::triggered, this, &RuleRowView::deleteRequested);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &RuleRowView::showContextMenu);

    showEnabledState();
}

void RuleRowView::setRule(const RenameRule &rule)
{
    m_rule = rule;
    showEnabledState();
    if (m_editor)
        m_editor->setRule(rule);
}

bool RuleRowView::isExpanded() const
{
    return !m_details->isHidden();
}

void RuleRowView::setExpanded(bool expanded)
{
    if (expanded == isExpanded())
        return;
    m_details->setVisible(expanded);
    m_chevron->setIcon(SymbolIcons::icon(expanded ? u"chevron.up"_s : u"chevron.down"_s));
    m_chevron->setAccessibleName(expanded ? u"Collapse"_s : u"Expand"_s);
}

bool RuleRowView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_header)
        return QWidget::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::KeyPress:
        return handleHeaderKey(static_cast<QKeyEvent *>(event));
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        update();
        break;
    case QEvent::MouseButtonPress: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() == Qt::LeftButton) {
            m_pressPosition = mouse->position().toPoint();
            m_isPressed = true;
        }
        break;
    }
    case QEvent::MouseMove: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        const QPoint moved = mouse->position().toPoint() - m_pressPosition;
        if (m_isPressed && (mouse->buttons() & Qt::LeftButton)
            && moved.manhattanLength() >= QApplication::startDragDistance()) {
            m_isPressed = false;
            startDrag();
            return true;
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        // A press that did not turn into a drag is a tap on the row.
        if (m_isPressed && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            m_isPressed = false;
            Q_EMIT expansionToggled();
            return true;
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void RuleRowView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
    painter.fillPath(shape, AppColors::sidebarBackground());
    if (m_header->hasFocus())
        painter.fillPath(shape, AppColors::rowSelected());
    else if (m_isHovered)
        painter.fillPath(shape, AppColors::rowHover());
}

void RuleRowView::enterEvent(QEnterEvent *event)
{
    m_isHovered = true;
    update();
    QWidget::enterEvent(event);
}

void RuleRowView::leaveEvent(QEvent *event)
{
    m_isHovered = false;
    update();
    QWidget::leaveEvent(event);
}

QWidget *RuleRowView::makeHeader()
{
    m_header = new QWidget(this);
    m_header->setObjectName(u"ruleRowHeader"_s);
    m_header->setFocusPolicy(Qt::StrongFocus);
    m_header->setAccessibleName(rawValue(m_rule.type));
    m_header->setCursor(Qt::PointingHandCursor);
    m_header->installEventFilter(this);

    m_enabledToggle = new QCheckBox(m_header);
    m_enabledToggle->setObjectName(u"isEnabled"_s);
    m_enabledToggle->setAccessibleName(u"Enabled"_s);
    m_enabledToggle->setToolTip(u"Enabled"_s);
    m_enabledToggle->setCursor(Qt::ArrowCursor);
    connect(m_enabledToggle, &QCheckBox::clicked, this, [this](bool isOn) {
        m_rule.isEnabled = isOn;
        showEnabledState();
        Q_EMIT ruleEdited(m_rule);
    });

    auto *symbol = new QLabel(m_header);
    symbol->setObjectName(u"ruleSymbol"_s);
    symbol->setPixmap(
        SymbolIcons::icon(systemImage(m_rule.type), AppColors::accent()).pixmap(symbolSize, symbolSize, QIcon::Normal));

    m_title = new QLabel(rawValue(m_rule.type), m_header);
    m_title->setObjectName(u"ruleTitle"_s);
    m_title->setFont(AppFonts::label());

    m_chevron = new QToolButton(m_header);
    m_chevron->setObjectName(u"expandButton"_s);
    m_chevron->setAutoRaise(true);
    // Return and Space on the header expand the row, so the chevron is for the mouse only.
    m_chevron->setFocusPolicy(Qt::NoFocus);
    m_chevron->setIcon(SymbolIcons::icon(u"chevron.down"_s));
    m_chevron->setIconSize(QSize(12, 12));
    m_chevron->setAccessibleName(u"Expand"_s);
    m_chevron->setCursor(Qt::ArrowCursor);
    connect(m_chevron, &QToolButton::clicked, this, &RuleRowView::expansionToggled);

    auto *layout = new QHBoxLayout(m_header);
    layout->setContentsMargins(0, AppSpacing::xs, 0, AppSpacing::xs);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(m_enabledToggle);
    layout->addWidget(symbol);
    layout->addWidget(m_title, 1);
    layout->addWidget(m_chevron);
    return m_header;
}

QWidget *RuleRowView::makeDetails()
{
    m_details = new QWidget(this);
    m_details->setObjectName(u"ruleDetails"_s);
    auto *layout = new QVBoxLayout(m_details);
    layout->setContentsMargins(0, 0, 0, AppSpacing::sm);
    layout->setSpacing(AppSpacing::sm);
    layout->addWidget(new PaneDivider(Qt::Horizontal, 0, m_details));

    m_editor = makeEditor(m_rule, m_details);
    if (m_editor) {
        connect(m_editor, &RuleKindEditor::ruleEdited, this, [this](const RenameRule &rule) {
            m_rule = rule;
            Q_EMIT ruleEdited(m_rule);
        });
        layout->addWidget(m_editor);
    } else {
        auto *caption = new QLabel(u"Trims leading/trailing whitespace"_s, m_details);
        caption->setObjectName(u"trimCaption"_s);
        RuleEditorStyle::makeCaption(caption);
        layout->addWidget(caption);
    }
    return m_details;
}

bool RuleRowView::handleHeaderKey(const QKeyEvent *event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::NoModifier) {
        switch (event->key()) {
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            Q_EMIT deleteRequested();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            Q_EMIT expansionToggled();
            return true;
        default:
            return false;
        }
    }
    if (modifiers == Qt::AltModifier && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down)) {
        Q_EMIT moveRequested(event->key() == Qt::Key_Up ? -1 : 1);
        return true;
    }
    return false;
}

void RuleRowView::showContextMenu(const QPoint &position)
{
    auto *menu = new QMenu(this);
    menu->setObjectName(u"ruleContextMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(m_deleteAction);
    menu->popup(mapToGlobal(position));
}

void RuleRowView::startDrag()
{
    auto *mimeData = new QMimeData;
    mimeData->setData(QString::fromUtf16(mimeType), m_rule.id.toByteArray(QUuid::WithoutBraces));
    auto *drag = new QDrag(this);
    drag->setMimeData(mimeData);
    drag->setPixmap(m_header->grab());
    drag->setHotSpot(m_pressPosition);
    drag->exec(Qt::MoveAction);
}

void RuleRowView::showEnabledState()
{
    m_enabledToggle->setChecked(m_rule.isEnabled);
    // A disabled rule reads as inactive; its editor stays usable.
    QPalette palette = m_title->palette();
    palette.setColor(QPalette::WindowText,
        m_rule.isEnabled ? QApplication::palette().color(QPalette::WindowText) : AppColors::secondary());
    m_title->setPalette(palette);
}

} // namespace quillfern
