#pragma once

#include "model/renamerule.h"

#include <QPoint>
#include <QWidget>

class QAction;
class QCheckBox;
class QLabel;
class QToolButton;

namespace quillfern {

class RuleKindEditor;

/// One rule of the rule editor pane: a header with the enable switch, the kind's symbol and name and the expand
/// chevron, and below it, while expanded, the editor of the rule's kind. The header takes keyboard focus: it is
/// the row's selection, which Delete or Backspace delete, Return or Space expand and Alt+Up or Alt+Down move.
/// Dragging the header carries the rule's id as mimeType.
class RuleRowView final : public QWidget
{
    Q_OBJECT

public:
    /// The drag-and-drop type of a dragged rule; the data is the rule's id.
    static constexpr char16_t mimeType[] = u"application/x-quillfern-rule-id";

    explicit RuleRowView(const RenameRule &rule, QWidget *parent = nullptr);

    [[nodiscard]] const RenameRule &rule() const { return m_rule; }
    /// Shows the rule's values in place; the field being typed in keeps its focus and cursor.
    void setRule(const RenameRule &rule);
    [[nodiscard]] bool isExpanded() const;
    void setExpanded(bool expanded);
    /// The focusable header line: the row's selection.
    [[nodiscard]] QWidget *header() const { return m_header; }
    /// The editor of the rule's kind; none for a trim rule, which has nothing to edit.
    [[nodiscard]] RuleKindEditor *editor() const { return m_editor; }
    /// The row's context-menu action "Delete".
    [[nodiscard]] QAction *deleteAction() const { return m_deleteAction; }

Q_SIGNALS:
    /// Fires on every change made in the row (the switch, each keystroke in an editor), with the whole rule.
    void ruleEdited(const RenameRule &rule);
    /// The header was clicked, or Return or Space pressed on it.
    void expansionToggled();
    /// Delete or Backspace on the header, or "Delete" in the context menu.
    void deleteRequested();
    /// Alt+Up (-1) or Alt+Down (+1) on the header.
    void moveRequested(int offset);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeDetails();
    bool handleHeaderKey(const QKeyEvent *event);
    void showContextMenu(const QPoint &position);
    void startDrag();
    void showEnabledState();

    RenameRule m_rule;
    QWidget *m_header = nullptr;
    QCheckBox *m_enabledToggle = nullptr;
    QLabel *m_title = nullptr;
    QToolButton *m_chevron = nullptr;
    QWidget *m_details = nullptr;
    RuleKindEditor *m_editor = nullptr;
    QAction *m_deleteAction = nullptr;
    QPoint m_pressPosition;
    bool m_isPressed = false;
    bool m_isHovered = false;
};

} // namespace quillfern
