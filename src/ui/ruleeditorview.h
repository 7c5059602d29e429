#pragma once

#include <QList>
#include <QUuid>
#include <QWidget>

class QGridLayout;
class QPushButton;
class QShortcut;
class QStackedWidget;
class QToolButton;
class QVBoxLayout;

namespace quillfern {

class AppViewModel;
class CommandField;
class LoadPresetSheet;
class NLSuggestionsView;
class PresetManager;
class RuleRowView;
class SavePresetSheet;
struct RenameRule;

/// The rule editor pane: the ordered rules of the state object as rows that can be edited, expanded (one at a
/// time), reordered by dragging or Alt+Up/Alt+Down and deleted; a button per rule kind that appends a new rule;
/// the natural-language command bar with its suggestions; and the sheets that save the rules as a preset and
/// load a preset. Rules change only through the state object's operations, presets only through the manager.
class RuleEditorView final : public QWidget
{
    Q_OBJECT

public:
    /// Neither the state object nor the preset manager is owned.
    RuleEditorView(AppViewModel *vm, PresetManager *presetManager, QWidget *parent = nullptr);

    /// The rule rows in list order.
    [[nodiscard]] const QList<RuleRowView *> &rows() const { return m_rows; }
    /// The id of the rule whose editor is open; it may name no rule any more once that rule was removed.
    [[nodiscard]] QUuid expandedRuleId() const { return m_expandedRuleId; }
    /// The bar at the top of the pane; the window gives the three panes' bars one height.
    [[nodiscard]] QWidget *header() const { return m_header; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeEmptyState();
    QWidget *makeRuleList();
    QWidget *makeAddRuleBar();
    QWidget *makeNaturalLanguageBar(QWidget *parent);

    /// Brings the rows in line with the state object's rules, reusing the row of each rule id still present.
    void showRules();
    RuleRowView *makeRow(const RenameRule &rule);
    void toggleExpansion(const QUuid &ruleId);
    void deleteRow(RuleRowView *row);
    void moveRow(RuleRowView *row, int offset);
    void layOutAddButtons();
    void placeSuggestions();
    void dismissSuggestions();
    /// Keeps Tab in visual order: the header, the rows top to bottom, the add bar, the command bar.
    void updateTabOrder();

    /// The drop offset for a drag at `y` in the row container: the index of the row before which it lands.
    [[nodiscard]] qsizetype dropDestination(int y) const;
    void showDropIndicator(qsizetype destination);
    bool handleDragEvent(QEvent *event);

    AppViewModel *m_vm;
    PresetManager *m_presetManager;

    QWidget *m_header = nullptr;
    QToolButton *m_loadPresetButton = nullptr;
    QToolButton *m_savePresetButton = nullptr;
    QStackedWidget *m_listStack = nullptr;
    QWidget *m_emptyState = nullptr;
    QWidget *m_rowsContainer = nullptr;
    QVBoxLayout *m_rowsLayout = nullptr;
    QWidget *m_dropIndicator = nullptr;
    QList<RuleRowView *> m_rows;
    QUuid m_expandedRuleId;

    QGridLayout *m_addButtonsLayout = nullptr;
    QList<QToolButton *> m_addButtons;
    int m_addButtonColumns = 0;
    QWidget *m_naturalLanguageBar = nullptr;
    CommandField *m_naturalLanguageField = nullptr;
    QPushButton *m_parseButton = nullptr;
    NLSuggestionsView *m_suggestions = nullptr;
    QShortcut *m_dismissShortcut = nullptr;

    SavePresetSheet *m_savePresetSheet = nullptr;
    LoadPresetSheet *m_loadPresetSheet = nullptr;
};

} // namespace quillfern
