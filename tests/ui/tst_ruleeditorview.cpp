#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/commandfield.h"
#include "ui/elidinglabel.h"
#include "ui/nlsuggestionsview.h"
#include "ui/panelabel.h"
#include "ui/ruleeditorview.h"
#include "ui/rulekindeditor.h"
#include "ui/rulerowview.h"
#include "uitesthelpers.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <algorithm>
#include <memory>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

QList<RuleType> typesOf(const QList<RenameRule> &rules)
{
    QList<RuleType> types;
    for (const RenameRule &rule : rules)
        types.append(rule.type);
    return types;
}

QList<QUuid> idsOf(const QList<RenameRule> &rules)
{
    QList<QUuid> ids;
    for (const RenameRule &rule : rules)
        ids.append(rule.id);
    return ids;
}

/// The rule's JSON form without its id: every other field, for comparing a rule with a fresh default one.
QJsonObject fieldsWithoutId(const RenameRule &rule)
{
    QJsonObject fields = rule.toJson();
    fields.remove(u"id"_s);
    return fields;
}

QStringList visibleTexts(const QWidget *parent, const QString &objectName)
{
    QStringList texts;
    const QList<QLabel *> labels = parent->findChildren<QLabel *>(objectName);
    for (const QLabel *label : labels) {
        if (label->isVisibleTo(parent->window()))
            texts.append(label->text());
    }
    return texts;
}

} // namespace

class TestRuleEditorView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void emptyPaneShowsEmptyStateAddBarAndCommandBar();
    void headerButtonsCarryTheirHelpTexts();
    void addBarOffersOneButtonPerKindInDeclarationOrder();
    void addButtonAppendsDefaultRuleOfItsKind_data();
    void addButtonAppendsDefaultRuleOfItsKind();
    void addingRuleRefreshesPreviews();
    void deleteKeyRemovesSelectedRule_data();
    void deleteKeyRemovesSelectedRule();
    void contextMenuDeleteRemovesRule();
    void droppingDraggedRowMovesRule_data();
    void droppingDraggedRowMovesRule();
    void altArrowKeysMoveSelectedRule_data();
    void altArrowKeysMoveSelectedRule();
    void tappingRowsExpandsAtMostOne();
    void keyboardTogglesExpansion();
    void removingExpandedRuleLeavesNoRowExpanded();
    void typingInEditorUpdatesRulesAndKeepsFocus();
    void tabVisitsRowsInListOrder();
    void submittingCommandParsesIt_data();
    void submittingCommandParsesIt();
    void typingCommandDoesNotParse();
    void commandPlaceholderReadsWhole_data();
    void commandPlaceholderReadsWhole();
    void returnSubmitsWithoutANewLine();
    void dismissEmptiesSuggestionsAndKeepsCommand();
    void escapeDismissesSuggestions();
    void applyAllAppendsSuggestionsInOrder();
    void parsingAgainLaysOutTheNewSuggestions_data();
    void parsingAgainLaysOutTheNewSuggestions();
    void confidenceShowsWholePercent_data();
    void confidenceShowsWholePercent();
    void savePresetStoresCurrentRules();
    void saveIsDisabledOnlyWhileNameIsEmpty_data();
    void saveIsDisabledOnlyWhileNameIsEmpty();
    void cancellingSaveKeepsTypedName_data();
    void cancellingSaveKeepsTypedName();
    void loadSheetListsPresetsWithRuleCounts();
    void loadReplacesRulesAndClosesSheet();
    void cancellingLoadChangesNothing();
    void loadSheetShowsEveryLoadButtonBesideALongName_data();
    void loadSheetShowsEveryLoadButtonBesideALongName();
    void everyEditorFitsTheNarrowestPane();
    void screenshots();

private:
    void showPane(int width = 300);
    QToolButton *addButton(RuleType type) const;
    QWidget *child(const QString &objectName) const;
    template<typename T>
    T *child(const QString &objectName) const
    {
        return m_view->findChild<T *>(objectName);
    }
    void addRules(const QList<RuleType> &types);
    void submitCommand(const QString &command);
    QString paneText(const QString &objectName) const;

    std::unique_ptr<QTemporaryDir> m_dataHome;
    std::unique_ptr<AppViewModel> m_vm;
    std::unique_ptr<PresetManager> m_presetManager;
    std::unique_ptr<RuleEditorView> m_view;
};

void TestRuleEditorView::init()
{
    // The preset manager writes below the data home: never the real one.
    m_dataHome = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dataHome->isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dataHome->path()));
    m_vm = std::make_unique<AppViewModel>();
    m_presetManager = std::make_unique<PresetManager>();
    m_view = std::make_unique<RuleEditorView>(m_vm.get(), m_presetManager.get());
}

void TestRuleEditorView::cleanup()
{
    m_view.reset();
    m_presetManager.reset();
    m_vm.reset();
    m_dataHome.reset();
}

void TestRuleEditorView::showPane(int width)
{
    m_view->resize(width, 640);
    m_view->show();
    m_view->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
}

QToolButton *TestRuleEditorView::addButton(RuleType type) const
{
    const QList<QToolButton *> buttons = child(u"addRuleBar"_s)->findChildren<QToolButton *>();
    for (QToolButton *button : buttons) {
        if (button->text() == rawValue(type))
            return button;
    }
    return nullptr;
}

QWidget *TestRuleEditorView::child(const QString &objectName) const
{
    return m_view->findChild<QWidget *>(objectName);
}

QString TestRuleEditorView::paneText(const QString &objectName) const
{
    return child<PaneLabel>(objectName)->text();
}

void TestRuleEditorView::addRules(const QList<RuleType> &types)
{
    for (RuleType type : types)
        m_vm->addRule(RenameRule(type));
}

void TestRuleEditorView::submitCommand(const QString &command)
{
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    field->setFocus();
    QTest::keyClicks(field, command);
    QTest::keyClick(field, Qt::Key_Return);
}

void TestRuleEditorView::emptyPaneShowsEmptyStateAddBarAndCommandBar()
{
    showPane();
    QVERIFY(child(u"emptyState"_s)->isVisible());
    QVERIFY(child(u"emptyStateTitle"_s)->isVisible());
    QCOMPARE(paneText(u"emptyStateTitle"_s), u"No rules yet"_s);
    QCOMPARE(paneText(u"emptyStateHint"_s), u"Add rules below or use natural language"_s);
    QVERIFY(child(u"addRuleBar"_s)->isVisible());
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    QVERIFY(field->isVisible());
    QCOMPARE(field->placeholderText(), u"Natural language... (e.g. Replace TERVANE with Solutions)"_s);
    QCOMPARE(child<QPushButton>(u"parseButton"_s)->text(), u"Parse"_s);
    QVERIFY(!child(u"nlSuggestions"_s)->isVisible());

    addRules({RuleType::Trim});
    QVERIFY(!child(u"emptyState"_s)->isVisible());
    QCOMPARE(m_view->rows().size(), 1);
    QVERIFY(m_view->rows().constFirst()->isVisible());
}

void TestRuleEditorView::headerButtonsCarryTheirHelpTexts()
{
    QCOMPARE(paneText(u"ruleEditorTitle"_s), u"Rename Rules"_s);
    QCOMPARE(child(u"loadPresetButton"_s)->toolTip(), u"Load Preset"_s);
    QCOMPARE(child(u"savePresetButton"_s)->toolTip(), u"Save Preset"_s);
}

void TestRuleEditorView::addBarOffersOneButtonPerKindInDeclarationOrder()
{
    const QList<QToolButton *> buttons = child(u"addRuleBar"_s)->findChildren<QToolButton *>();
    QStringList texts;
    for (const QToolButton *button : buttons)
        texts.append(button->text());
    QCOMPARE(texts,
        QStringList({u"Replace Text"_s,
            u"Insert Text"_s,
            u"Remove Text"_s,
            u"Case Conversion"_s,
            u"Sequential Numbering"_s,
            u"Filename Cleanup"_s,
            u"Trim Characters"_s,
            u"Add Date/Time"_s,
            u"Change Extension"_s,
            u"Regular Expression"_s}));
    for (const QToolButton *button : buttons)
        QVERIFY2(!button->icon().isNull(), qPrintable(button->text()));
}

void TestRuleEditorView::addButtonAppendsDefaultRuleOfItsKind_data()
{
    QTest::addColumn<RuleType>("type");
    for (RuleType type : allCases<RuleType>())
        QTest::newRow(qPrintable(u"the "_s + rawValue(type) + u" button appends that kind"_s)) << type;
}

void TestRuleEditorView::addButtonAppendsDefaultRuleOfItsKind()
{
    QFETCH(RuleType, type);
    showPane();
    addRules({RuleType::Replace});

    QTest::mouseClick(addButton(type), Qt::LeftButton);

    QCOMPARE(m_vm->rules().size(), 2);
    QCOMPARE(m_vm->rules().at(0).type, RuleType::Replace);
    QCOMPARE(fieldsWithoutId(m_vm->rules().at(1)), fieldsWithoutId(RenameRule(type)));
    QCOMPARE(m_view->rows().size(), 2);
    QCOMPARE(m_view->rows().at(1)->rule().id, m_vm->rules().at(1).id);
    QVERIFY(!m_view->rows().at(1)->isExpanded());
}

void TestRuleEditorView::addingRuleRefreshesPreviews()
{
    QTemporaryDir folder;
    m_vm->addFiles(uitest::createFiles(folder, {u"photo.jpg"_s}));
    QCOMPARE(m_vm->previews().constFirst().preview, u"photo.jpg"_s);
    showPane();

    QTest::mouseClick(addButton(RuleType::Numbering), Qt::LeftButton);

    QCOMPARE(m_vm->previews().constFirst().preview, u"photo_001.jpg"_s);
}

void TestRuleEditorView::deleteKeyRemovesSelectedRule_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Delete removes the selected rule") << Qt::Key_Delete;
    QTest::newRow("Backspace removes the selected rule") << Qt::Key_Backspace;
}

void TestRuleEditorView::deleteKeyRemovesSelectedRule()
{
    QFETCH(Qt::Key, key);
    addRules({RuleType::Replace, RuleType::Insert, RuleType::Remove});
    showPane();
    QWidget *header = m_view->rows().at(1)->header();
    header->setFocus();
    QVERIFY(header->hasFocus());

    QTest::keyClick(header, key);

    QCOMPARE(typesOf(m_vm->rules()), QList<RuleType>({RuleType::Replace, RuleType::Remove}));
    QCOMPARE(m_view->rows().size(), 2);
    // The selection passes on to the rule that moved up, so the key can be pressed again.
    QTRY_VERIFY(m_view->rows().at(1)->header()->hasFocus());
}

void TestRuleEditorView::contextMenuDeleteRemovesRule()
{
    addRules({RuleType::Replace, RuleType::Insert});
    showPane();
    RuleRowView *row = m_view->rows().at(0);
    QWidget *header = row->header();
    QContextMenuEvent event(QContextMenuEvent::Mouse,
        header->rect().center(),
        header->mapToGlobal(header->rect().center()));
    QApplication::sendEvent(header, &event);

    auto *menu = row->findChild<QMenu *>(u"ruleContextMenu"_s);
    QVERIFY(menu);
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->actions().size(), 1);
    QCOMPARE(menu->actions().constFirst()->text(), u"Delete"_s);
    menu->actions().constFirst()->trigger();
    menu->close();

    QCOMPARE(typesOf(m_vm->rules()), QList<RuleType>({RuleType::Insert}));
    QCOMPARE(m_view->rows().size(), 1);
}

void TestRuleEditorView::droppingDraggedRowMovesRule_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("targetRow");
    QTest::addColumn<bool>("onLowerHalf");
    QTest::addColumn<QList<int>>("expectedOrder");
    QTest::newRow("the first rule dropped on the top half of the fourth lands before it")
        << 0 << 3 << false << QList<int>{1, 2, 0, 3};
    QTest::newRow("the last rule dropped on the top half of the first goes to the top")
        << 3 << 0 << false << QList<int>{3, 0, 1, 2};
    QTest::newRow("a rule dropped on the lower half of the last goes to the end")
        << 0 << 3 << true << QList<int>{1, 2, 3, 0};
    QTest::newRow("a rule dropped on its own lower half stays") << 1 << 1 << true << QList<int>{0, 1, 2, 3};
    QTest::newRow("a rule dropped on the top half of the next one stays") << 1 << 2 << false << QList<int>{0, 1, 2, 3};
}

void TestRuleEditorView::droppingDraggedRowMovesRule()
{
    QFETCH(int, source);
    QFETCH(int, targetRow);
    QFETCH(bool, onLowerHalf);
    QFETCH(QList<int>, expectedOrder);
    addRules({RuleType::Replace, RuleType::Insert, RuleType::Remove, RuleType::Trim});
    showPane();
    const QList<QUuid> before = idsOf(m_vm->rules());
    const QList<RuleRowView *> rowsBefore = m_view->rows();
    QWidget *container = child(u"ruleRows"_s);

    QMimeData mimeData;
    mimeData.setData(QString::fromUtf16(RuleRowView::mimeType), before.at(source).toByteArray(QUuid::WithoutBraces));
    const QRect target = rowsBefore.at(targetRow)->geometry();
    const QPoint position(target.center().x(), onLowerHalf ? target.bottom() - 2 : target.top() + 2);
    QDragEnterEvent enter(position, Qt::MoveAction, &mimeData, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(container, &enter);
    QVERIFY(enter.isAccepted());
    QVERIFY(child(u"dropIndicator"_s)->isVisible());
    QDropEvent drop(QPointF(position), Qt::MoveAction, &mimeData, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(container, &drop);

    QList<QUuid> expected;
    QList<RuleRowView *> expectedRows;
    for (int index : expectedOrder) {
        expected.append(before.at(index));
        expectedRows.append(rowsBefore.at(index));
    }
    QCOMPARE(idsOf(m_vm->rules()), expected);
    // The rows are the same widgets, moved.
    QCOMPARE(m_view->rows(), expectedRows);
    QVERIFY(!child(u"dropIndicator"_s)->isVisible());
}

void TestRuleEditorView::altArrowKeysMoveSelectedRule_data()
{
    QTest::addColumn<int>("selected");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QList<int>>("expectedOrder");
    QTest::newRow("Alt+Down moves a rule below the next") << 0 << Qt::Key_Down << QList<int>{1, 0, 2};
    QTest::newRow("Alt+Up moves a rule above the previous") << 2 << Qt::Key_Up << QList<int>{0, 2, 1};
    QTest::newRow("Alt+Up on the first rule does nothing") << 0 << Qt::Key_Up << QList<int>{0, 1, 2};
    QTest::newRow("Alt+Down on the last rule does nothing") << 2 << Qt::Key_Down << QList<int>{0, 1, 2};
}

void TestRuleEditorView::altArrowKeysMoveSelectedRule()
{
    QFETCH(int, selected);
    QFETCH(Qt::Key, key);
    QFETCH(QList<int>, expectedOrder);
    addRules({RuleType::Replace, RuleType::Insert, RuleType::Remove});
    showPane();
    const QList<QUuid> before = idsOf(m_vm->rules());
    QWidget *header = m_view->rows().at(selected)->header();
    header->setFocus();

    QTest::keyClick(header, key, Qt::AltModifier);

    QList<QUuid> expected;
    for (int index : expectedOrder)
        expected.append(before.at(index));
    QCOMPARE(idsOf(m_vm->rules()), expected);
    QVERIFY(header->hasFocus());
}

void TestRuleEditorView::tappingRowsExpandsAtMostOne()
{
    addRules({RuleType::Replace, RuleType::Insert});
    showPane();
    const QList<RuleRowView *> rows = m_view->rows();
    const auto expanded = [&] {
        return QList<bool>{rows.at(0)->isExpanded(), rows.at(1)->isExpanded()};
    };
    QCOMPARE(expanded(), QList<bool>({false, false}));

    QTest::mouseClick(rows.at(0)->header(), Qt::LeftButton);
    QCOMPARE(expanded(), QList<bool>({true, false}));
    QCOMPARE(m_view->expandedRuleId(), m_vm->rules().at(0).id);
    QVERIFY(rows.at(0)->editor()->isVisible());

    QTest::mouseClick(rows.at(1)->header(), Qt::LeftButton);
    QCOMPARE(expanded(), QList<bool>({false, true}));

    QTest::mouseClick(rows.at(1)->findChild<QToolButton *>(u"expandButton"_s), Qt::LeftButton);
    QCOMPARE(expanded(), QList<bool>({false, false}));
    QCOMPARE(m_view->expandedRuleId(), QUuid());
}

void TestRuleEditorView::keyboardTogglesExpansion()
{
    addRules({RuleType::Replace});
    showPane();
    RuleRowView *row = m_view->rows().constFirst();
    row->header()->setFocus();

    QTest::keyClick(row->header(), Qt::Key_Return);
    QVERIFY(row->isExpanded());
    QTest::keyClick(row->header(), Qt::Key_Space);
    QVERIFY(!row->isExpanded());
}

void TestRuleEditorView::removingExpandedRuleLeavesNoRowExpanded()
{
    addRules({RuleType::Replace, RuleType::Insert});
    showPane();
    const QUuid removed = m_vm->rules().at(0).id;
    QTest::mouseClick(m_view->rows().at(0)->header(), Qt::LeftButton);

    m_vm->removeRule({0});
    addRules({RuleType::Remove});

    QCOMPARE(m_view->expandedRuleId(), removed);
    for (const RuleRowView *row : m_view->rows())
        QVERIFY(!row->isExpanded());
}

void TestRuleEditorView::typingInEditorUpdatesRulesAndKeepsFocus()
{
    addRules({RuleType::Insert, RuleType::Replace});
    showPane();
    RuleRowView *row = m_view->rows().at(1);
    QTest::mouseClick(row->header(), Qt::LeftButton);
    auto *field = row->findChild<QLineEdit *>(u"findText"_s);
    field->setFocus();

    const QString typed = u"draft"_s;
    for (qsizetype length = 1; length <= typed.size(); ++length) {
        QTest::keyClick(field, typed.at(length - 1).toLatin1());
        QCOMPARE(m_vm->rules().at(1).findText, typed.left(length));
        QCOMPARE(QApplication::focusWidget(), field);
        QCOMPARE(field->cursorPosition(), int(length));
    }
    // Typing in the middle keeps the cursor there: the field is not rewritten behind the user's back.
    QTest::keyClick(field, Qt::Key_Home);
    QTest::keyClick(field, 'x');
    QCOMPARE(m_vm->rules().at(1).findText, u"xdraft"_s);
    QCOMPARE(field->cursorPosition(), 1);
    QCOMPARE(m_view->rows().at(1), row);
    QVERIFY(row->isExpanded());
}

void TestRuleEditorView::tabVisitsRowsInListOrder()
{
    addRules({RuleType::Trim, RuleType::Cleanup});
    m_vm->moveRule({1}, 0);
    showPane();
    const QList<RuleRowView *> rows = m_view->rows();
    QCOMPARE(rows.at(0)->rule().type, RuleType::Cleanup);
    QWidget *savePresetButton = child(u"savePresetButton"_s);
    savePresetButton->setFocus();

    const QList<QWidget *> expected{rows.at(0)->header(),
        rows.at(0)->findChild<QWidget *>(u"isEnabled"_s),
        rows.at(1)->header(),
        rows.at(1)->findChild<QWidget *>(u"isEnabled"_s),
        addButton(RuleType::Replace)};
    for (QWidget *next : expected) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), next);
    }
}

void TestRuleEditorView::submittingCommandParsesIt_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("byButton");
    QTest::addColumn<QStringList>("descriptions");
    const QStringList oneReplace{u"Replace \"TERVANE\" → \"Solutions\""_s};
    QTest::newRow("a lower-case command submitted by Return gives one replace suggestion")
        << u"replace TERVANE with Solutions"_s << false << oneReplace;
    QTest::newRow("a lower-case command submitted by Parse gives one replace suggestion")
        << u"replace TERVANE with Solutions"_s << true << oneReplace;
    QTest::newRow("the placeholder's capitalised example gives no suggestion")
        << u"Replace TERVANE with Solutions"_s << false << QStringList();
}

void TestRuleEditorView::submittingCommandParsesIt()
{
    QFETCH(QString, command);
    QFETCH(bool, byButton);
    QFETCH(QStringList, descriptions);
    showPane();
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    field->setFocus();
    QTest::keyClicks(field, command);

    if (byButton)
        QTest::mouseClick(child(u"parseButton"_s), Qt::LeftButton);
    else
        QTest::keyClick(field, Qt::Key_Return);

    QCOMPARE(m_vm->nlSuggestions().size(), descriptions.size());
    QCOMPARE(child(u"nlSuggestions"_s)->isVisible(), !descriptions.isEmpty());
    QCOMPARE(visibleTexts(m_view.get(), u"suggestionDescription"_s), descriptions);
    if (!descriptions.isEmpty())
        QCOMPARE(m_vm->nlSuggestions().constFirst().rule.type, RuleType::Replace);
    QVERIFY(m_vm->rules().isEmpty());
}

void TestRuleEditorView::typingCommandDoesNotParse()
{
    showPane();
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    field->setFocus();
    QSignalSpy suggestionsChanged(m_vm.get(), &AppViewModel::nlSuggestionsChanged);

    QTest::keyClicks(field, u"replace a with b"_s);

    QCOMPARE(m_vm->naturalLanguageInput(), u"replace a with b"_s);
    QCOMPARE(suggestionsChanged.count(), 0);
    QVERIFY(!child(u"nlSuggestions"_s)->isVisible());
}

void TestRuleEditorView::commandPlaceholderReadsWhole_data()
{
    QTest::addColumn<int>("paneWidth");
    QTest::newRow("in a pane of the default width") << 300;
    QTest::newRow("in the narrowest pane") << 260;
}

void TestRuleEditorView::commandPlaceholderReadsWhole()
{
    QFETCH(int, paneWidth);
    showPane(paneWidth);
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    QVERIFY(field);
    QCOMPARE(field->placeholderText(), u"Natural language... (e.g. Replace TERVANE with Solutions)"_s);
    // The placeholder, wrapped in the field's text area, fits its height.
    const int margin = int(field->document()->documentMargin());
    const QRect area = field->viewport()->rect().adjusted(margin, margin, -margin, -margin);
    const QRect needed = field->fontMetrics().boundingRect(QRect(0, 0, area.width(), 10'000),
        Qt::TextWordWrap,
        field->placeholderText());
    QVERIFY2(needed.height() <= area.height(), qPrintable(u"%1 > %2"_s.arg(needed.height()).arg(area.height())));
    QVERIFY(needed.width() <= area.width());
    // The command bar stays within the pane.
    QVERIFY(m_view->rect().contains(
        child(u"naturalLanguageBar"_s)
            ->geometry()
            .translated(child(u"naturalLanguageBar"_s)->parentWidget()->mapTo(m_view.get(), QPoint(0, 0)))));
    uitest::saveScreenshot(child(u"addRuleBar"_s), u"command-placeholder-"_s + QString::number(paneWidth));
}

void TestRuleEditorView::returnSubmitsWithoutANewLine()
{
    showPane();
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    const int height = field->height();
    submitCommand(u"replace TERVANE with Solutions"_s);
    QCOMPARE(field->text(), u"replace TERVANE with Solutions"_s);
    QCOMPARE(m_vm->naturalLanguageInput(), field->text());
    QCOMPARE(m_vm->nlSuggestions().size(), 1);
    // Return again parses again and still adds no line; a pasted line break becomes a space.
    QTest::keyClick(field, Qt::Key_Enter);
    QVERIFY(!field->text().contains(u'\n'));
    field->clear();
    QApplication::clipboard()->setText(u"replace a\nwith b"_s);
    field->paste();
    QCOMPARE(field->text(), u"replace a with b"_s);
    QCOMPARE(field->height(), height);
}

void TestRuleEditorView::dismissEmptiesSuggestionsAndKeepsCommand()
{
    showPane();
    submitCommand(u"replace a with b"_s);
    QVERIFY(child(u"nlSuggestions"_s)->isVisible());
    QCOMPARE(child(u"dismissButton"_s)->property("text").toString(), u"Dismiss"_s);

    QTest::mouseClick(child(u"dismissButton"_s), Qt::LeftButton);

    QVERIFY(m_vm->nlSuggestions().isEmpty());
    QVERIFY(!child(u"nlSuggestions"_s)->isVisible());
    QCOMPARE(child<CommandField>(u"naturalLanguageField"_s)->text(), u"replace a with b"_s);
    QCOMPARE(m_vm->naturalLanguageInput(), u"replace a with b"_s);
    QVERIFY(m_vm->rules().isEmpty());
}

void TestRuleEditorView::escapeDismissesSuggestions()
{
    showPane();
    submitCommand(u"replace a with b"_s);
    QVERIFY(child(u"nlSuggestions"_s)->isVisible());

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);

    QVERIFY(m_vm->nlSuggestions().isEmpty());
    QVERIFY(!child(u"nlSuggestions"_s)->isVisible());
    QCOMPARE(child<CommandField>(u"naturalLanguageField"_s)->text(), u"replace a with b"_s);
}

void TestRuleEditorView::applyAllAppendsSuggestionsInOrder()
{
    addRules({RuleType::Trim});
    showPane();
    submitCommand(u"clean up and add today's date"_s);
    QCOMPARE(visibleTexts(m_view.get(), u"suggestionDescription"_s),
        QStringList({u"Cleanup filenames"_s, u"Add today's date"_s}));
    QCOMPARE(child(u"applyAllButton"_s)->property("text").toString(), u"Apply All"_s);

    QTest::mouseClick(child(u"applyAllButton"_s), Qt::LeftButton);

    QCOMPARE(typesOf(m_vm->rules()), QList<RuleType>({RuleType::Trim, RuleType::Cleanup, RuleType::DateStamp}));
    QCOMPARE(m_view->rows().size(), 3);
    QVERIFY(!child(u"nlSuggestions"_s)->isVisible());
    QVERIFY(child<CommandField>(u"naturalLanguageField"_s)->text().isEmpty());
    QVERIFY(child(u"naturalLanguageField"_s)->hasFocus());
}

void TestRuleEditorView::parsingAgainLaysOutTheNewSuggestions_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("one suggestion, then two") << u"replace a with b"_s << u"clean up and add today's date"_s;
    QTest::newRow("two suggestions, then one") << u"clean up and add today's date"_s << u"replace a with b"_s;
    QTest::newRow("the same command twice") << u"clean up and add today's date"_s << u"clean up and add today's date"_s;
}

void TestRuleEditorView::parsingAgainLaysOutTheNewSuggestions()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    showPane();
    submitCommand(first);
    QVERIFY(child(u"nlSuggestions"_s)->isVisible());
    auto *field = child<CommandField>(u"naturalLanguageField"_s);
    field->selectAll();
    submitCommand(second);
    QCOMPARE(field->text(), second);
    QApplication::processEvents();

    QWidget *card = child(u"nlSuggestions"_s);
    QVERIFY(card->isVisible());
    // The card is as tall as its content and sits above the command bar.
    QCOMPARE(card->height(), card->heightForWidth(card->width()));
    QVERIFY(card->geometry().bottom() < child(u"naturalLanguageBar"_s)->mapTo(m_view.get(), QPoint(0, 0)).y());
    for (const QString &name : {u"applyAllButton"_s, u"dismissButton"_s}) {
        auto *button = child<QPushButton>(name);
        QVERIFY2(button->height() >= button->sizeHint().height(), qPrintable(name));
        QVERIFY(card->rect().contains(button->geometry()));
    }
    // One row per suggestion, each under the one before and all above the buttons.
    QList<QWidget *> rows;
    for (QWidget *row : card->findChildren<QWidget *>(u"suggestionRow"_s)) {
        if (row->isVisibleTo(card))
            rows.append(row);
    }
    QCOMPARE(rows.size(), m_vm->nlSuggestions().size());
    std::sort(rows.begin(), rows.end(), [](const QWidget *a, const QWidget *b) { return a->y() < b->y(); });
    for (qsizetype index = 0; index < rows.size(); ++index) {
        QVERIFY(rows.at(index)->height() >= rows.at(index)->minimumSizeHint().height());
        if (index > 0)
            QVERIFY(rows.at(index)->geometry().top() > rows.at(index - 1)->geometry().bottom());
        QVERIFY(rows.at(index)->geometry().bottom() < child(u"applyAllButton"_s)->geometry().top());
    }
}

void TestRuleEditorView::confidenceShowsWholePercent_data()
{
    QTest::addColumn<double>("confidence");
    QTest::addColumn<QString>("shown");
    QTest::newRow("0.95 shows 95%") << 0.95 << u"95%"_s;
    QTest::newRow("0.9 shows 90%") << 0.9 << u"90%"_s;
    QTest::newRow("0.85 shows 85%") << 0.85 << u"85%"_s;
    QTest::newRow("0.8 shows 80%") << 0.8 << u"80%"_s;
    QTest::newRow("a fraction of a percent is cut off, not rounded") << 0.876 << u"87%"_s;
}

void TestRuleEditorView::confidenceShowsWholePercent()
{
    QFETCH(double, confidence);
    QFETCH(QString, shown);
    showPane();

    m_vm->setNlSuggestions({ParsedRule{RenameRule(RuleType::Numbering), confidence, u"Numbering"_s}});

    QCOMPARE(visibleTexts(m_view.get(), u"suggestionConfidence"_s), QStringList{shown});
}

void TestRuleEditorView::savePresetStoresCurrentRules()
{
    addRules({RuleType::Cleanup, RuleType::Numbering});
    showPane();
    const qsizetype presetsBefore = m_presetManager->presets().size();
    QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"savePresetSheet"_s);
    QVERIFY(sheet);
    QVERIFY(sheet->isModal() || sheet->windowModality() != Qt::NonModal);
    auto *nameField = sheet->findChild<QLineEdit *>(u"presetNameField"_s);
    QCOMPARE(nameField->placeholderText(), u"Preset name"_s);

    nameField->setFocus();
    QTest::keyClicks(nameField, u"Holiday"_s);
    QTest::mouseClick(sheet->findChild<QPushButton *>(u"saveButton"_s), Qt::LeftButton);

    QCOMPARE(m_presetManager->presets().size(), presetsBefore + 1);
    const Preset &saved = m_presetManager->presets().constLast();
    QCOMPARE(saved.name, u"Holiday"_s);
    QCOMPARE(saved.rules, m_vm->rules());
    QCOMPARE(saved.icon, u"wand.and.stars"_s);
    QVERIFY(!sheet->isVisible());

    QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
    QVERIFY(sheet->isVisible());
    QVERIFY(nameField->text().isEmpty());
}

void TestRuleEditorView::saveIsDisabledOnlyWhileNameIsEmpty_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("an empty name disables Save") << QString() << false;
    QTest::newRow("a name of spaces is accepted") << u"   "_s << true;
    QTest::newRow("a name enables Save") << u"Photos"_s << true;
}

void TestRuleEditorView::saveIsDisabledOnlyWhileNameIsEmpty()
{
    QFETCH(QString, name);
    QFETCH(bool, isEnabled);
    showPane();
    QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"savePresetSheet"_s);
    QVERIFY(sheet);
    auto *nameField = sheet->findChild<QLineEdit *>(u"presetNameField"_s);
    auto *saveButton = sheet->findChild<QPushButton *>(u"saveButton"_s);
    QCOMPARE(saveButton->text(), u"Save"_s);
    const qsizetype presetsBefore = m_presetManager->presets().size();

    nameField->setFocus();
    QTest::keyClicks(nameField, name);
    QCOMPARE(saveButton->isEnabled(), isEnabled);
    QTest::keyClick(nameField, Qt::Key_Return);

    QCOMPARE(m_presetManager->presets().size(), presetsBefore + (isEnabled ? 1 : 0));
    QCOMPARE(sheet->isVisible(), !isEnabled);
}

void TestRuleEditorView::cancellingSaveKeepsTypedName_data()
{
    QTest::addColumn<bool>("byEscape");
    QTest::newRow("Cancel closes the sheet and keeps the name") << false;
    QTest::newRow("Escape closes the sheet and keeps the name") << true;
}

void TestRuleEditorView::cancellingSaveKeepsTypedName()
{
    QFETCH(bool, byEscape);
    showPane();
    const QList<Preset> presetsBefore = m_presetManager->presets();
    QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"savePresetSheet"_s);
    QVERIFY(sheet);
    auto *nameField = sheet->findChild<QLineEdit *>(u"presetNameField"_s);
    nameField->setFocus();
    QTest::keyClicks(nameField, u"Draft"_s);

    if (byEscape)
        QTest::keyClick(nameField, Qt::Key_Escape);
    else
        QTest::mouseClick(sheet->findChild<QPushButton *>(u"cancelButton"_s), Qt::LeftButton);

    QVERIFY(!sheet->isVisible());
    QCOMPARE(m_presetManager->presets(), presetsBefore);
    QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
    QCOMPARE(nameField->text(), u"Draft"_s);
}

void TestRuleEditorView::loadSheetListsPresetsWithRuleCounts()
{
    m_presetManager->save(Preset(u"Empty"_s, {}));
    showPane();
    QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"loadPresetSheet"_s);
    QVERIFY(sheet);

    QCOMPARE(visibleTexts(sheet, u"presetName"_s),
        QStringList({u"Clean Spaces"_s,
            u"Title Case"_s,
            u"Add Date Suffix"_s,
            u"Sequential Numbering"_s,
            u"Lowercase + Underscores"_s,
            u"Empty"_s}));
    QCOMPARE(visibleTexts(sheet, u"presetRuleCount"_s),
        QStringList({u"1 rule"_s, u"1 rule"_s, u"1 rule"_s, u"1 rule"_s, u"2 rules"_s, u"0 rules"_s}));
    QCOMPARE(sheet->findChildren<QPushButton *>(u"loadButton"_s).size(), 6);
}

void TestRuleEditorView::loadReplacesRulesAndClosesSheet()
{
    addRules({RuleType::Trim});
    showPane();
    QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"loadPresetSheet"_s);
    QVERIFY(sheet);
    const QList<QPushButton *> loadButtons = sheet->findChildren<QPushButton *>(u"loadButton"_s);
    QCOMPARE(loadButtons.at(4)->text(), u"Load"_s);

    QTest::mouseClick(loadButtons.at(4), Qt::LeftButton);

    QCOMPARE(m_vm->rules(), m_presetManager->presets().at(4).rules);
    QCOMPARE(typesOf(m_vm->rules()), QList<RuleType>({RuleType::CaseConversion, RuleType::Cleanup}));
    QVERIFY(!sheet->isVisible());
}

void TestRuleEditorView::cancellingLoadChangesNothing()
{
    addRules({RuleType::Trim});
    const QList<RenameRule> rulesBefore = m_vm->rules();
    showPane();
    QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"loadPresetSheet"_s);
    QVERIFY(sheet);

    QTest::mouseClick(sheet->findChild<QPushButton *>(u"cancelButton"_s), Qt::LeftButton);

    QVERIFY(!sheet->isVisible());
    QCOMPARE(m_vm->rules(), rulesBefore);
}

void TestRuleEditorView::loadSheetShowsEveryLoadButtonBesideALongName_data()
{
    QTest::addColumn<int>("windowWidth");
    QTest::addColumn<bool>("isCut");
    QTest::newRow("a wide window shows the whole name") << 1200 << false;
    QTest::newRow("a narrow window cuts the name, whole in its tooltip") << 480 << true;
}

void TestRuleEditorView::loadSheetShowsEveryLoadButtonBesideALongName()
{
    QFETCH(int, windowWidth);
    QFETCH(bool, isCut);
    const QString longName = u"Holiday photos from the long summer trip to the northern lakes, by day and place"_s;
    QCOMPARE(longName.size(), 80);
    m_presetManager->save(Preset(longName, {RenameRule(RuleType::Trim)}));
    showPane(windowWidth);
    QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
    auto *sheet = uitest::visibleTopLevel<QDialog>(u"loadPresetSheet"_s);
    QVERIFY(sheet);
    uitest::saveScreenshot(sheet, u"load-sheet-long-name-"_s + QString::number(windowWidth));

    // The sheet stays within the window, and every row's Load button shows whole in its list.
    QVERIFY(sheet->width() <= windowWidth);
    QVERIFY(sheet->height() <= m_view->height());
    const QWidget *list = sheet->findChild<QScrollArea *>(u"presetScrollArea"_s)->viewport();
    const QList<QPushButton *> buttons = sheet->findChildren<QPushButton *>(u"loadButton"_s);
    QCOMPARE(buttons.size(), m_presetManager->presets().size());
    for (const QPushButton *button : buttons) {
        QVERIFY(button->isVisible());
        QVERIFY2(list->rect().contains(QRect(button->mapTo(list, QPoint(0, 0)), button->size())),
            qPrintable(button->accessibleName()));
    }
    const QList<ElidingLabel *> names = sheet->findChildren<ElidingLabel *>(u"presetName"_s);
    const auto named = std::find_if(names.cbegin(), names.cend(), [&](const ElidingLabel *label) {
        return label->text() == longName;
    });
    QVERIFY(named != names.cend());
    QCOMPARE((*named)->isElided(), isCut);
    QCOMPARE((*named)->toolTip(), longName);

    QTest::mouseClick(buttons.constLast(), Qt::LeftButton);
    QCOMPARE(m_vm->rules().size(), 1);
    QVERIFY(!sheet->isVisible());
}

void TestRuleEditorView::everyEditorFitsTheNarrowestPane()
{
    constexpr auto everyKind = allCases<RuleType>();
    addRules({everyKind.begin(), everyKind.end()});
    showPane(260);
    for (RuleRowView *row : m_view->rows()) {
        QTest::mouseClick(row->header(), Qt::LeftButton);
        QVERIFY(row->isExpanded());
        QVERIFY2(m_view->minimumSizeHint().width() <= 260, qPrintable(rawValue(row->rule().type)));
    }
}

void TestRuleEditorView::screenshots()
{
    if (qEnvironmentVariableIsEmpty("QUILLFERN_SCREENSHOTS"))
        QSKIP("set QUILLFERN_SCREENSHOTS to a folder to save pictures of the pane");
    const QPalette lightPalette = QApplication::palette();
    for (const bool isDark : {false, true}) {
        QApplication::setPalette(isDark ? uitest::darkPalette() : lightPalette);
        const QString suffix = isDark ? u"-dark"_s : u""_s;
        cleanup();
        init();
        for (const int width : {260, 300}) {
            const QString size = u"-"_s + QString::number(width);
            m_vm->loadPreset(Preset(u"None"_s, {}));
            showPane(width);
            uitest::saveScreenshot(m_view.get(), u"empty"_s + size + suffix);

            constexpr auto everyKind = allCases<RuleType>();
            addRules({everyKind.begin(), everyKind.end()});
            QTest::qWait(0);
            uitest::saveScreenshot(m_view.get(), u"collapsed"_s + size + suffix);
            for (RuleRowView *row : m_view->rows()) {
                if (!row->isExpanded())
                    QTest::mouseClick(row->header(), Qt::LeftButton);
                m_view->resize(width, 900);
                QApplication::processEvents();
                uitest::saveScreenshot(row,
                    u"editor-"_s + rawValue(row->rule().type).replace(u'/', u'-') + size + suffix);
            }
            m_view->resize(width, 640);
            submitCommand(u"clean up and add today's date"_s);
            QApplication::processEvents();
            uitest::saveScreenshot(m_view.get(), u"suggestions"_s + size + suffix);
            child<CommandField>(u"naturalLanguageField"_s)->selectAll();
            submitCommand(u"replace IMG with Photo"_s);
            child<CommandField>(u"naturalLanguageField"_s)->selectAll();
            submitCommand(u"clean up and add today's date"_s);
            QApplication::processEvents();
            uitest::saveScreenshot(m_view.get(), u"suggestions-parsed-twice"_s + size + suffix);
            m_vm->setNlSuggestions({});
        }
        QTest::mouseClick(child(u"savePresetButton"_s), Qt::LeftButton);
        auto *saveSheet = uitest::visibleTopLevel<QDialog>(u"savePresetSheet"_s);
        uitest::saveScreenshot(saveSheet, u"save-sheet"_s + suffix);
        saveSheet->reject();
        m_presetManager->save(
            Preset(u"Holiday photos from the long summer trip to the northern lakes, by day and place"_s, {}));
        QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
        auto *loadSheet = uitest::visibleTopLevel<QDialog>(u"loadPresetSheet"_s);
        uitest::saveScreenshot(loadSheet, u"load-sheet"_s + suffix);
        loadSheet->reject();
        // In a window of the application's width the long name shows whole.
        m_view->resize(1200, 760);
        QTest::mouseClick(child(u"loadPresetButton"_s), Qt::LeftButton);
        uitest::saveScreenshot(loadSheet, u"load-sheet-wide"_s + suffix);
        loadSheet->reject();
    }
    QApplication::setPalette(lightPalette);
}

QTEST_MAIN(TestRuleEditorView)
#include "tst_ruleeditorview.moc"
