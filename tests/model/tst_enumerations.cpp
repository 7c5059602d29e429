#include "model/caseconversiontype.h"
#include "model/insertposition.h"
#include "model/numberingposition.h"
#include "model/removetarget.h"
#include "model/ruletype.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestEnumerations final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ruleTypesListInDeclarationOrderWithSymbols();
    void optionRawValuesInDeclarationOrder();
    void rawValueRoundTripsAndRejectsCaseNames();
};

void TestEnumerations::ruleTypesListInDeclarationOrderWithSymbols()
{
    QStringList names;
    QStringList symbols;
    for (RuleType type : allCases<RuleType>()) {
        names << rawValue(type);
        symbols << systemImage(type);
    }
    QCOMPARE(names,
             (QStringList{u"Replace Text"_s,
                          u"Insert Text"_s,
                          u"Remove Text"_s,
                          u"Case Conversion"_s,
                          u"Sequential Numbering"_s,
                          u"Filename Cleanup"_s,
                          u"Trim Characters"_s,
                          u"Add Date/Time"_s,
                          u"Change Extension"_s,
                          u"Regular Expression"_s}));
    QCOMPARE(symbols,
             (QStringList{u"arrow.left.arrow.right"_s,
                          u"text.insert"_s,
                          u"minus.circle"_s,
                          u"textformat"_s,
                          u"number"_s,
                          u"sparkles"_s,
                          u"scissors"_s,
                          u"calendar"_s,
                          u"doc.badge.arrow.up"_s,
                          u"chevron.left.forwardslash.chevron.right"_s}));
}

template<typename Enum>
QStringList rawValues()
{
    QStringList values;
    for (Enum value : allCases<Enum>())
        values << rawValue(value);
    return values;
}

void TestEnumerations::optionRawValuesInDeclarationOrder()
{
    QCOMPARE(rawValues<CaseConversionType>(),
             (QStringList{u"UPPERCASE"_s,
                          u"lowercase"_s,
                          u"Title Case"_s,
                          u"camelCase"_s,
                          u"snake_case"_s,
                          u"Sentence case"_s}));
    QCOMPARE(rawValues<InsertPosition>(),
             (QStringList{u"Beginning"_s, u"End"_s, u"At Position"_s, u"Before Text"_s, u"After Text"_s}));
    QCOMPARE(rawValues<RemoveTarget>(),
             (QStringList{u"Specific Text"_s,
                          u"First N Characters"_s,
                          u"Last N Characters"_s,
                          u"From Position to Position"_s,
                          u"Between Two Strings"_s}));
    QCOMPARE(rawValues<NumberingPosition>(), (QStringList{u"Prefix"_s, u"Suffix"_s, u"Replace Name"_s}));
}

void TestEnumerations::rawValueRoundTripsAndRejectsCaseNames()
{
    for (RuleType type : allCases<RuleType>())
        QCOMPARE(fromRawValue<RuleType>(rawValue(type)), std::optional(type));
    QCOMPARE(fromRawValue<RuleType>(u"replace"), std::nullopt);
    QCOMPARE(fromRawValue<RuleType>(u"replace text"), std::nullopt);
    QCOMPARE(fromRawValue<CaseConversionType>(u"Between Two Strings"), std::nullopt);
    QCOMPARE(fromRawValue<RemoveTarget>(u"Between Two Strings"), std::optional(RemoveTarget::BetweenText));
}

QTEST_APPLESS_MAIN(TestEnumerations)
#include "tst_enumerations.moc"
