#include "presets/presetmanager.h"
#include "state/appviewmodel.h"
#include "ui/numberfield.h"
#include "ui/numberingruleeditor.h"
#include "ui/ruleeditorfield.h"
#include "ui/ruleeditorview.h"
#include "ui/rulekindeditor.h"
#include "ui/rulerowview.h"

#include <QCheckBox>
#include <QComboBox>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <memory>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

/// A rule of the kind with some fields set from their JSON form, as a preset could hold it.
RenameRule ruleWith(RuleType type, const QJsonObject &fields = {})
{
    QJsonObject json = RenameRule(type).toJson();
    for (auto field = fields.begin(); field != fields.end(); ++field)
        json.insert(field.key(), field.value());
    DecodeResult<RenameRule> decoded = RenameRule::fromJson(json);
    if (!decoded.isSuccess())
        qFatal("%s", qPrintable(decoded.error()));
    return std::move(decoded).value();
}

/// The labels of the editor's rows that are shown, top to bottom.
QStringList visibleLabels(const RuleRowView &row)
{
    QStringList labels;
    if (!row.editor())
        return labels;
    const QList<RuleEditorField *> fields = row.editor()->fields();
    for (const RuleEditorField *field : fields) {
        if (field->isVisibleTo(&row))
            labels.append(field->label());
    }
    return labels;
}

/// The placeholders of the shown text and number fields of the row, top to bottom.
QStringList visiblePlaceholders(const RuleRowView &row)
{
    QStringList placeholders;
    const QList<QLineEdit *> fields = row.findChildren<QLineEdit *>();
    for (const QLineEdit *field : fields) {
        if (field->isVisibleTo(&row))
            placeholders.append(field->placeholderText());
    }
    return placeholders;
}

QStringList visibleToggles(const RuleRowView &row)
{
    QStringList texts;
    const QList<QCheckBox *> toggles = row.findChildren<QCheckBox *>();
    for (const QCheckBox *toggle : toggles) {
        if (toggle->isVisibleTo(&row) && toggle->objectName() != u"isEnabled"_s)
            texts.append(toggle->text());
    }
    return texts;
}

QStringList pickerTexts(const QComboBox *picker)
{
    QStringList texts;
    for (int index = 0; index < picker->count(); ++index)
        texts.append(picker->itemText(index));
    return texts;
}

/// Replaces the whole text of a focused field by typing, one key at a time.
void typeReplacing(QLineEdit *field, const QString &text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, text);
}

} // namespace

class TestRuleEditors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void headerShowsKindAndSwitch_data();
    void headerShowsKindAndSwitch();
    void enableSwitchUpdatesRule();
    void expandedRowShowsEditorOfItsKind_data();
    void expandedRowShowsEditorOfItsKind();
    void editorShowsItsLabelsAndPlaceholders_data();
    void editorShowsItsLabelsAndPlaceholders();
    void labelsOfOneEditorLineUp();
    void pickersShowDisplayTexts_data();
    void pickersShowDisplayTexts();
    void editingFieldUpdatesRuleAtOnce_data();
    void editingFieldUpdatesRuleAtOnce();
    void switchingInsertPositionSwapsIndexForAnchor();
    void numberingSampleFollowsPadding_data();
    void numberingSampleFollowsPadding();
    void paddingStepperStepsWithinBounds();
    void numberFieldsRefuseOutOfBoundsInput_data();
    void numberFieldsRefuseOutOfBoundsInput();
    void collapsingKeepsValues();

private:
    /// Shows the pane with one rule and expands its row.
    RuleRowView *showExpanded(const RenameRule &rule);

    std::unique_ptr<QTemporaryDir> m_dataHome;
    std::unique_ptr<AppViewModel> m_vm;
    std::unique_ptr<PresetManager> m_presetManager;
    std::unique_ptr<RuleEditorView> m_view;
};

void TestRuleEditors::init()
{
    m_dataHome = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dataHome->isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dataHome->path()));
    m_vm = std::make_unique<AppViewModel>();
    m_presetManager = std::make_unique<PresetManager>();
    m_view = std::make_unique<RuleEditorView>(m_vm.get(), m_presetManager.get());
}

void TestRuleEditors::cleanup()
{
    m_view.reset();
    m_presetManager.reset();
    m_vm.reset();
    m_dataHome.reset();
}

RuleRowView *TestRuleEditors::showExpanded(const RenameRule &rule)
{
    m_vm->addRule(rule);
    m_view->resize(260, 700);
    m_view->show();
    m_view->activateWindow();
    if (!QTest::qWaitForWindowActive(m_view.get()))
        return nullptr;
    RuleRowView *row = m_view->rows().constLast();
    QTest::mouseClick(row->header(), Qt::LeftButton);
    return row;
}

void TestRuleEditors::headerShowsKindAndSwitch_data()
{
    QTest::addColumn<RuleType>("type");
    for (RuleType type : allCases<RuleType>())
        QTest::newRow(qPrintable(u"a "_s + rawValue(type) + u" row names its kind"_s)) << type;
}

void TestRuleEditors::headerShowsKindAndSwitch()
{
    QFETCH(RuleType, type);
    RuleRowView row(RenameRule{type});

    QCOMPARE(row.findChild<QLabel *>(u"ruleTitle"_s)->text(), rawValue(type));
    QVERIFY(!row.findChild<QLabel *>(u"ruleSymbol"_s)->pixmap().isNull());
    QVERIFY(row.findChild<QCheckBox *>(u"isEnabled"_s)->isChecked());
    QVERIFY(!row.isExpanded());
    QVERIFY(!row.findChild<QToolButton *>(u"expandButton"_s)->icon().isNull());
}

void TestRuleEditors::enableSwitchUpdatesRule()
{
    RuleRowView *row = showExpanded(RenameRule(RuleType::Replace));
    QVERIFY(row);

    QTest::mouseClick(row->findChild<QCheckBox *>(u"isEnabled"_s), Qt::LeftButton);
    QCOMPARE(m_vm->rules().constFirst().isEnabled, false);
    QTest::mouseClick(row->findChild<QCheckBox *>(u"isEnabled"_s), Qt::LeftButton);
    QCOMPARE(m_vm->rules().constFirst().isEnabled, true);
}

void TestRuleEditors::expandedRowShowsEditorOfItsKind_data()
{
    QTest::addColumn<RuleType>("type");
    QTest::addColumn<QString>("editorClass");
    QTest::newRow("replace") << RuleType::Replace << u"quillfern::ReplaceRuleEditor"_s;
    QTest::newRow("insert") << RuleType::Insert << u"quillfern::InsertRuleEditor"_s;
    QTest::newRow("remove") << RuleType::Remove << u"quillfern::RemoveRuleEditor"_s;
    QTest::newRow("case conversion") << RuleType::CaseConversion << u"quillfern::CaseRuleEditor"_s;
    QTest::newRow("numbering") << RuleType::Numbering << u"quillfern::NumberingRuleEditor"_s;
    QTest::newRow("cleanup") << RuleType::Cleanup << u"quillfern::CleanupRuleEditor"_s;
    QTest::newRow("trim has no editor") << RuleType::Trim << QString();
    QTest::newRow("date stamp") << RuleType::DateStamp << u"quillfern::DateRuleEditor"_s;
    QTest::newRow("extension change") << RuleType::ExtensionChange << u"quillfern::ExtensionRuleEditor"_s;
    QTest::newRow("regular expression reuses the replace editor")
        << RuleType::Regex << u"quillfern::ReplaceRuleEditor"_s;
}

void TestRuleEditors::expandedRowShowsEditorOfItsKind()
{
    QFETCH(RuleType, type);
    QFETCH(QString, editorClass);
    RuleRowView row(RenameRule{type});
    row.setExpanded(true);

    QVERIFY(row.isExpanded());
    if (editorClass.isEmpty()) {
        QVERIFY(!row.editor());
    } else {
        QCOMPARE(QString::fromLatin1(row.editor()->metaObject()->className()), editorClass);
        QVERIFY(row.editor()->isVisibleTo(&row));
    }
}

void TestRuleEditors::editorShowsItsLabelsAndPlaceholders_data()
{
    QTest::addColumn<RenameRule>("rule");
    QTest::addColumn<QStringList>("labels");
    QTest::addColumn<QStringList>("placeholders");
    QTest::addColumn<QStringList>("toggles");
    QTest::addColumn<QStringList>("captions");
    const QStringList none;
    const QStringList replaceToggles{u"Case sensitive"_s, u"Use regex"_s};
    QTest::newRow("replace: find, replacement and two toggles")
        << RenameRule(RuleType::Replace) << QStringList{u"Find"_s, u"Replace with"_s}
        << QStringList{u"Text to find"_s, u"Replacement text"_s} << replaceToggles << none;
    QTest::newRow("regular expression: the replace editor's fields and check boxes")
        << RenameRule(RuleType::Regex) << QStringList{u"Find"_s, u"Replace with"_s}
        << QStringList{u"Text to find"_s, u"Replacement text"_s} << replaceToggles << none;
    QTest::newRow("insert at the beginning: text and position only")
        << RenameRule(RuleType::Insert) << QStringList{u"Text"_s, u"Position"_s} << QStringList{u"Text to insert"_s}
        << none << none;
    QTest::newRow("insert at a position adds the index")
        << ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"At Position"_s}})
        << QStringList{u"Text"_s, u"Position"_s, u"Index"_s} << QStringList{u"Text to insert"_s, u"0"_s} << none
        << none;
    QTest::newRow("insert before a text adds the anchor")
        << ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"Before Text"_s}})
        << QStringList{u"Text"_s, u"Position"_s, u"Anchor"_s} << QStringList{u"Text to insert"_s, u"Anchor text"_s}
        << none << none;
    QTest::newRow("remove a text") << RenameRule(RuleType::Remove) << QStringList{u"Remove"_s, u"Text"_s}
                                   << QStringList{u"Text to remove"_s} << none << none;
    QTest::newRow("remove the first characters asks for a count")
        << ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"First N Characters"_s}})
        << QStringList{u"Remove"_s, u"Count"_s} << QStringList{u"1"_s} << none << none;
    QTest::newRow("remove the last characters asks for a count")
        << ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"Last N Characters"_s}})
        << QStringList{u"Remove"_s, u"Count"_s} << QStringList{u"1"_s} << none << none;
    QTest::newRow("remove a range asks from and to")
        << ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"From Position to Position"_s}})
        << QStringList{u"Remove"_s, u"From"_s} << QStringList{u"0"_s, QString()} << none << none;
    QTest::newRow("remove between markers asks for both")
        << ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"Between Two Strings"_s}})
        << QStringList{u"Remove"_s, u"Start"_s, u"End"_s} << QStringList{u"Start marker"_s, u"End marker"_s} << none
        << none;
    QTest::newRow("case conversion: the case style")
        << RenameRule(RuleType::CaseConversion) << QStringList{u"Case Style"_s} << none << none << none;
    QTest::newRow("numbering: position, start, step, padding, separator")
        << RenameRule(RuleType::Numbering)
        << QStringList{u"Position"_s, u"Start at"_s, u"Step"_s, u"Padding"_s, u"Separator"_s}
        << QStringList{u"1"_s, QString(), u"3"_s, u"_"_s} << none << none;
    QTest::newRow("cleanup: four toggles in order") << RenameRule(RuleType::Cleanup) << none << none
                                                    << QStringList{u"Trim whitespace"_s,
                                                           u"Remove duplicate spaces"_s,
                                                           u"Replace spaces with underscores"_s,
                                                           u"Remove special characters"_s}
                                                    << none;
    QTest::newRow("trim: only its caption")
        << RenameRule(RuleType::Trim) << none << none << none << QStringList{u"Trims leading/trailing whitespace"_s};
    QTest::newRow("date stamp: format and position")
        << RenameRule(RuleType::DateStamp) << QStringList{u"Format"_s, u"Position"_s} << QStringList{u"yyyy-MM-dd"_s}
        << none << none;
    QTest::newRow("extension change: the new extension and its caption")
        << RenameRule(RuleType::ExtensionChange) << QStringList{u"New extension"_s} << QStringList{u"jpg"_s} << none
        << QStringList{u"(leave blank to remove extension)"_s};
}

void TestRuleEditors::editorShowsItsLabelsAndPlaceholders()
{
    QFETCH(RenameRule, rule);
    QFETCH(QStringList, labels);
    QFETCH(QStringList, placeholders);
    QFETCH(QStringList, toggles);
    QFETCH(QStringList, captions);
    RuleRowView row(rule);
    row.setExpanded(true);

    QCOMPARE(visibleLabels(row), labels);
    QCOMPARE(visiblePlaceholders(row), placeholders);
    QCOMPARE(visibleToggles(row), toggles);
    QStringList shownCaptions;
    const QList<QLabel *> allLabels = row.findChildren<QLabel *>();
    for (const QLabel *label : allLabels) {
        if (label->objectName().endsWith(u"Caption"_s) && label->isVisibleTo(&row))
            shownCaptions.append(label->text());
    }
    QCOMPARE(shownCaptions, captions);
    if (rule.type == RuleType::Trim) {
        // Nothing to edit: no field, picker or toggle below the header.
        QVERIFY(row.findChildren<QLineEdit *>().isEmpty());
        QVERIFY(row.findChildren<QComboBox *>().isEmpty());
        QCOMPARE(row.findChildren<QCheckBox *>().size(), 1);
    }
}

void TestRuleEditors::labelsOfOneEditorLineUp()
{
    RuleRowView row(RenameRule(RuleType::Numbering));
    row.setExpanded(true);
    row.resize(260, 300);
    row.show();
    QVERIFY(QTest::qWaitForWindowExposed(&row));

    QSet<int> controlLefts;
    for (const RuleEditorField *field : row.editor()->fields())
        controlLefts.insert(field->control()->mapTo(&row, QPoint(0, 0)).x());
    QCOMPARE(controlLefts.size(), 1);
}

void TestRuleEditors::pickersShowDisplayTexts_data()
{
    QTest::addColumn<RuleType>("type");
    QTest::addColumn<QString>("picker");
    QTest::addColumn<QStringList>("choices");
    QTest::newRow("insert positions")
        << RuleType::Insert << u"insertPosition"_s
        << QStringList{u"Beginning"_s, u"End"_s, u"At Position"_s, u"Before Text"_s, u"After Text"_s};
    QTest::newRow("remove targets") << RuleType::Remove << u"removeTarget"_s
                                    << QStringList{u"Specific Text"_s,
                                           u"First N Characters"_s,
                                           u"Last N Characters"_s,
                                           u"From Position to Position"_s,
                                           u"Between Two Strings"_s};
    QTest::newRow("case styles") << RuleType::CaseConversion << u"caseType"_s
                                 << QStringList{u"UPPERCASE"_s,
                                        u"lowercase"_s,
                                        u"Title Case"_s,
                                        u"camelCase"_s,
                                        u"snake_case"_s,
                                        u"Sentence case"_s};
    QTest::newRow("numbering positions") << RuleType::Numbering << u"numberingPosition"_s
                                         << QStringList{u"Prefix"_s, u"Suffix"_s, u"Replace Name"_s};
    QTest::newRow("the date goes only before or after the name")
        << RuleType::DateStamp << u"datePosition"_s << QStringList{u"Prefix"_s, u"Suffix"_s};
}

void TestRuleEditors::pickersShowDisplayTexts()
{
    QFETCH(RuleType, type);
    QFETCH(QString, picker);
    QFETCH(QStringList, choices);
    RuleRowView row{RenameRule(type)};

    QCOMPARE(pickerTexts(row.findChild<QComboBox *>(picker)), choices);
}

void TestRuleEditors::editingFieldUpdatesRuleAtOnce_data()
{
    QTest::addColumn<RenameRule>("rule");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QJsonValue>("expected");
    const auto typed = [](RuleType type, const QString &field, const QString &input, const QJsonValue &expected) {
        QTest::addRow("typing into %s of %s", qPrintable(field), qPrintable(rawValue(type)))
            << RenameRule(type) << field << input << field << expected;
    };
    typed(RuleType::Replace, u"findText"_s, u"old"_s, u"old"_s);
    typed(RuleType::Replace, u"replaceText"_s, u"new"_s, u"new"_s);
    typed(RuleType::Regex, u"findText"_s, u"(\\d+)"_s, u"(\\d+)"_s);
    typed(RuleType::Regex, u"replaceText"_s, u"#$1"_s, u"#$1"_s);
    typed(RuleType::Insert, u"insertText"_s, u"v2"_s, u"v2"_s);
    typed(RuleType::Remove, u"removeText"_s, u"copy"_s, u"copy"_s);
    typed(RuleType::Numbering, u"numberingStart"_s, u"10"_s, 10);
    typed(RuleType::Numbering, u"numberingStep"_s, u"5"_s, 5);
    typed(RuleType::Numbering, u"numberingPadding"_s, u"5"_s, 5);
    typed(RuleType::Numbering, u"numberingSeparator"_s, u"-"_s, u"-"_s);
    typed(RuleType::DateStamp, u"dateFormat"_s, u"yyyyMMdd"_s, u"yyyyMMdd"_s);
    typed(RuleType::ExtensionChange, u"newExtension"_s, u"png"_s, u"png"_s);

    const auto typedInto = [](const RenameRule &rule, const QString &field, const QString &input, qint64 expected) {
        QTest::addRow("typing into %s", qPrintable(field)) << rule << field << input << field << QJsonValue(expected);
    };
    typedInto(ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"At Position"_s}}), u"insertIndex"_s, u"4"_s, 4);
    typedInto(ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"First N Characters"_s}}), u"removeCount"_s, u"5"_s, 5);
    const RenameRule range = ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"From Position to Position"_s}});
    typedInto(range, u"removeFromIndex"_s, u"2"_s, 2);
    typedInto(range, u"removeToIndex"_s, u"6"_s, 6);
    const RenameRule between = ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"Between Two Strings"_s}});
    QTest::newRow("typing the start marker")
        << between << u"removeBetweenStart"_s << u"["_s << u"removeBetweenStart"_s << QJsonValue(u"["_s);
    QTest::newRow("typing the end marker")
        << between << u"removeBetweenEnd"_s << u"]"_s << u"removeBetweenEnd"_s << QJsonValue(u"]"_s);
    QTest::newRow("typing the anchor") << ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"After Text"_s}})
                                       << u"insertAnchorText"_s << u"IMG"_s << u"insertAnchorText"_s
                                       << QJsonValue(u"IMG"_s);

    const auto toggled = [](RuleType type, const QString &field, bool expected) {
        QTest::addRow("clicking %s of %s", qPrintable(field), qPrintable(rawValue(type)))
            << RenameRule(type) << field << QString() << field << QJsonValue(expected);
    };
    toggled(RuleType::Replace, u"isCaseSensitive"_s, true);
    toggled(RuleType::Replace, u"useRegex"_s, true);
    toggled(RuleType::Regex, u"isCaseSensitive"_s, true);
    toggled(RuleType::Cleanup, u"trimWhitespace"_s, false);
    toggled(RuleType::Cleanup, u"removeDuplicateSpaces"_s, false);
    toggled(RuleType::Cleanup, u"replaceSpacesWithUnderscores"_s, true);
    toggled(RuleType::Cleanup, u"removeSpecialChars"_s, true);

    const auto picked = [](RuleType type, const QString &field, const QString &choice, const QString &expected) {
        QTest::addRow("choosing %s as %s", qPrintable(choice), qPrintable(field))
            << RenameRule(type) << field << choice << field << QJsonValue(expected);
    };
    picked(RuleType::Insert, u"insertPosition"_s, u"After Text"_s, u"After Text"_s);
    picked(RuleType::Remove, u"removeTarget"_s, u"Last N Characters"_s, u"Last N Characters"_s);
    picked(RuleType::CaseConversion, u"caseType"_s, u"snake_case"_s, u"snake_case"_s);
    picked(RuleType::Numbering, u"numberingPosition"_s, u"Replace Name"_s, u"Replace Name"_s);
    picked(RuleType::DateStamp, u"datePosition"_s, u"Prefix"_s, u"Beginning"_s);
}

void TestRuleEditors::editingFieldUpdatesRuleAtOnce()
{
    QFETCH(RenameRule, rule);
    QFETCH(QString, control);
    QFETCH(QString, input);
    QFETCH(QString, field);
    QFETCH(QJsonValue, expected);
    RuleRowView *row = showExpanded(rule);
    QVERIFY(row);
    QWidget *widget = row->findChild<QWidget *>(control);
    QVERIFY(widget);
    QVERIFY(widget->isVisible());

    if (auto *lineEdit = qobject_cast<QLineEdit *>(widget)) {
        typeReplacing(lineEdit, input);
    } else if (auto *toggle = qobject_cast<QCheckBox *>(widget)) {
        QTest::mouseClick(toggle, Qt::LeftButton, {}, QPoint(toggle->height() / 2, toggle->height() / 2));
    } else if (auto *picker = qobject_cast<QComboBox *>(widget)) {
        // From the keyboard: focus the picker and step to the choice with the arrow keys.
        picker->setFocus();
        const int target = picker->findText(input);
        QVERIFY(target >= 0);
        while (picker->currentIndex() != target)
            QTest::keyClick(picker, picker->currentIndex() < target ? Qt::Key_Down : Qt::Key_Up);
    }

    QCOMPARE(m_vm->rules().constFirst().toJson().value(field), expected);
    QCOMPARE(m_vm->rules().constFirst().id, rule.id);
}

void TestRuleEditors::switchingInsertPositionSwapsIndexForAnchor()
{
    RuleRowView *row =
        showExpanded(ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"At Position"_s}, {u"insertIndex"_s, 7}}));
    QVERIFY(row);
    QCOMPARE(visibleLabels(*row), QStringList({u"Text"_s, u"Position"_s, u"Index"_s}));
    auto *picker = row->findChild<QComboBox *>(u"insertPosition"_s);

    picker->setCurrentIndex(picker->findText(u"After Text"_s));

    QCOMPARE(visibleLabels(*row), QStringList({u"Text"_s, u"Position"_s, u"Anchor"_s}));
    QCOMPARE(m_vm->rules().constFirst().insertPosition, InsertPosition::AfterText);
    QCOMPARE(m_vm->rules().constFirst().insertIndex, 7);

    picker->setCurrentIndex(picker->findText(u"At Position"_s));
    QCOMPARE(row->findChild<QLineEdit *>(u"insertIndex"_s)->text(), u"7"_s);
}

void TestRuleEditors::numberingSampleFollowsPadding_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("padding");
    QTest::addColumn<QString>("sample");
    QTest::newRow("padding 3 shows a three-digit number") << u"1"_s << u"3"_s << u"→ 001"_s;
    QTest::newRow("padding 5 shows five digits") << u"1"_s << u"5"_s << u"→ 00001"_s;
    QTest::newRow("padding 0 shows the bare number") << u"1"_s << u"0"_s << u"→ 1"_s;
    QTest::newRow("the sample shows the start number") << u"42"_s << u"4"_s << u"→ 0042"_s;
    QTest::newRow("a negative start counts its sign in the width") << u"-7"_s << u"3"_s << u"→ -07"_s;
    QTest::newRow("a number longer than the padding is not cut") << u"12345"_s << u"2"_s << u"→ 12345"_s;
}

void TestRuleEditors::numberingSampleFollowsPadding()
{
    QFETCH(QString, start);
    QFETCH(QString, padding);
    QFETCH(QString, sample);
    RuleRowView *row = showExpanded(RenameRule(RuleType::Numbering));
    QVERIFY(row);

    typeReplacing(row->findChild<QLineEdit *>(u"numberingStart"_s), start);
    typeReplacing(row->findChild<QLineEdit *>(u"numberingPadding"_s), padding);

    auto *editor = qobject_cast<NumberingRuleEditor *>(row->editor());
    QCOMPARE(editor->sampleText(), sample);
    QCOMPARE(row->findChild<QLabel *>(u"numberingSample"_s)->text(), sample);
}

void TestRuleEditors::paddingStepperStepsWithinBounds()
{
    RuleRowView *row = showExpanded(ruleWith(RuleType::Numbering, {{u"numberingPadding"_s, 1}}));
    QVERIFY(row);
    auto *down = row->findChild<QToolButton *>(u"paddingDown"_s);
    auto *up = row->findChild<QToolButton *>(u"paddingUp"_s);

    QTest::mouseClick(up, Qt::LeftButton);
    QCOMPARE(m_vm->rules().constFirst().numberingPadding, 2);
    QCOMPARE(row->findChild<QLabel *>(u"numberingSample"_s)->text(), u"→ 01"_s);
    QTest::mouseClick(down, Qt::LeftButton);
    QTest::mouseClick(down, Qt::LeftButton);
    QTest::mouseClick(down, Qt::LeftButton);
    QCOMPARE(m_vm->rules().constFirst().numberingPadding, 0);

    // Up and Down in the field step as the stepper does.
    auto *field = row->findChild<QLineEdit *>(u"numberingPadding"_s);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Up);
    QCOMPARE(m_vm->rules().constFirst().numberingPadding, 1);
}

void TestRuleEditors::numberFieldsRefuseOutOfBoundsInput_data()
{
    QTest::addColumn<RenameRule>("rule");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<qint64>("value");
    const RenameRule firstN = ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"First N Characters"_s}});
    const RenameRule range = ruleWith(RuleType::Remove, {{u"removeTarget"_s, u"From Position to Position"_s}});
    const RenameRule atIndex = ruleWith(RuleType::Insert, {{u"insertPosition"_s, u"At Position"_s}});
    const RenameRule numbering(RuleType::Numbering);
    QTest::newRow("a remove count refuses the minus sign")
        << firstN << u"removeCount"_s << u"-3"_s << u"3"_s << qint64(3);
    QTest::newRow("a remove start refuses the minus sign")
        << range << u"removeFromIndex"_s << u"-2"_s << u"2"_s << qint64(2);
    QTest::newRow("a remove end refuses the minus sign")
        << range << u"removeToIndex"_s << u"-1"_s << u"1"_s << qint64(1);
    QTest::newRow("an insert index refuses the minus sign")
        << atIndex << u"insertIndex"_s << u"-4"_s << u"4"_s << qint64(4);
    QTest::newRow("a count stops at 10^12")
        << firstN << u"removeCount"_s << u"10000000000009"_s << u"1000000000000"_s << qint64(1'000'000'000'000);
    QTest::newRow("letters are refused") << firstN << u"removeCount"_s << u"1e9"_s << u"19"_s << qint64(19);
    QTest::newRow("a padding stops at 255") << numbering << u"numberingPadding"_s << u"300"_s << u"30"_s << qint64(30);
    QTest::newRow("a padding refuses the minus sign")
        << numbering << u"numberingPadding"_s << u"-1"_s << u"1"_s << qint64(1);
    QTest::newRow("a start may be negative") << numbering << u"numberingStart"_s << u"-5"_s << u"-5"_s << qint64(-5);
    QTest::newRow("a step may be negative") << numbering << u"numberingStep"_s << u"-2"_s << u"-2"_s << qint64(-2);
    QTest::newRow("a start stops at -10^12") << numbering << u"numberingStart"_s << u"-10000000000001"_s
                                             << u"-1000000000000"_s << qint64(-1'000'000'000'000);
    QTest::newRow("a step stops at 10^12")
        << numbering << u"numberingStep"_s << u"99999999999999"_s << u"999999999999"_s << qint64(999'999'999'999);
}

void TestRuleEditors::numberFieldsRefuseOutOfBoundsInput()
{
    QFETCH(RenameRule, rule);
    QFETCH(QString, control);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(qint64, value);
    RuleRowView *row = showExpanded(rule);
    QVERIFY(row);
    auto *field = row->findChild<QLineEdit *>(control);

    typeReplacing(field, typed);

    QCOMPARE(field->text(), shown);
    QCOMPARE(m_vm->rules().constFirst().toJson().value(control).toInteger(), value);
}

void TestRuleEditors::collapsingKeepsValues()
{
    RuleRowView *row = showExpanded(RenameRule(RuleType::Replace));
    QVERIFY(row);
    typeReplacing(row->findChild<QLineEdit *>(u"findText"_s), u"IMG_"_s);
    QTest::mouseClick(row->findChild<QCheckBox *>(u"useRegex"_s), Qt::LeftButton, {}, QPoint(4, 4));

    QTest::mouseClick(row->header(), Qt::LeftButton);
    QVERIFY(!row->isExpanded());
    QTest::mouseClick(row->header(), Qt::LeftButton);

    QVERIFY(row->isExpanded());
    QCOMPARE(row->findChild<QLineEdit *>(u"findText"_s)->text(), u"IMG_"_s);
    QVERIFY(row->findChild<QCheckBox *>(u"useRegex"_s)->isChecked());
    QCOMPARE(m_vm->rules().constFirst().findText, u"IMG_"_s);
    QVERIFY(m_vm->rules().constFirst().useRegex);
}

QTEST_MAIN(TestRuleEditors)
#include "tst_ruleeditors.moc"
