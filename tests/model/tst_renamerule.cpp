#include "model/renamerule.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestRenameRule final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numberingRuleHasNumberingDefaults();
    void cleanupRuleHasCleanupDefaults();
    void everyOtherFieldHasItsDefault();
    void encodesExactlyTheThirtyTwoKeys();
    void encodesEnumerationsAsDisplayText();
    void encodesIdInUpperCase();
    void roundTripsEveryField();
    void decodeFailsNamingTheKey_data();
    void decodeFailsNamingTheKey();
    void decodeKeepsLargeIntegersExactly();
    void decodeAcceptsEscapedSlashesAndAnyKeyOrder();
    void identityIsIdButEqualityIsEveryField();
};

void TestRenameRule::numberingRuleHasNumberingDefaults()
{
    const RenameRule rule(RuleType::Numbering);
    QCOMPARE(rule.numberingStart, 1);
    QCOMPARE(rule.numberingStep, 1);
    QCOMPARE(rule.numberingPadding, 3);
    QCOMPARE(rule.numberingPosition, NumberingPosition::Suffix);
    QCOMPARE(rule.numberingSeparator, u"_"_s);
    QCOMPARE(rule.numberingFormat, u"%03d"_s);
}

void TestRenameRule::cleanupRuleHasCleanupDefaults()
{
    const RenameRule rule(RuleType::Cleanup);
    QVERIFY(rule.trimWhitespace);
    QVERIFY(rule.removeDuplicateSpaces);
    QVERIFY(!rule.replaceSpacesWithUnderscores);
    QVERIFY(!rule.removeSpecialChars);
}

void TestRenameRule::everyOtherFieldHasItsDefault()
{
    const RenameRule rule(RuleType::Replace);
    QVERIFY(!rule.id.isNull());
    QCOMPARE(rule.type, RuleType::Replace);
    QVERIFY(rule.isEnabled);
    QVERIFY(rule.findText.isEmpty());
    QVERIFY(rule.replaceText.isEmpty());
    QVERIFY(!rule.isCaseSensitive);
    QVERIFY(!rule.useRegex);
    QVERIFY(rule.insertText.isEmpty());
    QCOMPARE(rule.insertPosition, InsertPosition::Beginning);
    QCOMPARE(rule.insertIndex, 0);
    QVERIFY(rule.insertAnchorText.isEmpty());
    QCOMPARE(rule.removeTarget, RemoveTarget::Text);
    QVERIFY(rule.removeText.isEmpty());
    QCOMPARE(rule.removeCount, 1);
    QCOMPARE(rule.removeFromIndex, 0);
    QCOMPARE(rule.removeToIndex, 0);
    QVERIFY(rule.removeBetweenStart.isEmpty());
    QVERIFY(rule.removeBetweenEnd.isEmpty());
    QCOMPARE(rule.caseType, CaseConversionType::TitleCase);
    QCOMPARE(rule.dateFormat, u"yyyy-MM-dd"_s);
    QCOMPARE(rule.datePosition, InsertPosition::End);
    QVERIFY(rule.newExtension.isEmpty());
    QVERIFY(RenameRule(RuleType::Replace).id != rule.id);
}

void TestRenameRule::encodesExactlyTheThirtyTwoKeys()
{
    const QJsonObject json = RenameRule(RuleType::Trim).toJson();
    QStringList keys = json.keys();
    keys.sort();
    QStringList expected{u"id"_s,
                         u"type"_s,
                         u"isEnabled"_s,
                         u"findText"_s,
                         u"replaceText"_s,
                         u"isCaseSensitive"_s,
                         u"useRegex"_s,
                         u"insertText"_s,
                         u"insertPosition"_s,
                         u"insertIndex"_s,
                         u"insertAnchorText"_s,
                         u"removeTarget"_s,
                         u"removeText"_s,
                         u"removeCount"_s,
                         u"removeFromIndex"_s,
                         u"removeToIndex"_s,
                         u"removeBetweenStart"_s,
                         u"removeBetweenEnd"_s,
                         u"caseType"_s,
                         u"numberingStart"_s,
                         u"numberingStep"_s,
                         u"numberingPadding"_s,
                         u"numberingPosition"_s,
                         u"numberingSeparator"_s,
                         u"numberingFormat"_s,
                         u"dateFormat"_s,
                         u"datePosition"_s,
                         u"newExtension"_s,
                         u"replaceSpacesWithUnderscores"_s,
                         u"removeSpecialChars"_s,
                         u"removeDuplicateSpaces"_s,
                         u"trimWhitespace"_s};
    QCOMPARE(expected.size(), 32);
    expected.sort();
    QCOMPARE(keys, expected);
}

void TestRenameRule::encodesEnumerationsAsDisplayText()
{
    const QJsonObject json = RenameRule(RuleType::CaseConversion).toJson();
    QCOMPARE(json.value(u"caseType"_s).toString(), u"Title Case"_s);
    QCOMPARE(json.value(u"datePosition"_s).toString(), u"End"_s);
    QCOMPARE(json.value(u"type"_s).toString(), u"Case Conversion"_s);
    QCOMPARE(json.value(u"insertPosition"_s).toString(), u"Beginning"_s);
    QCOMPARE(json.value(u"removeTarget"_s).toString(), u"Specific Text"_s);
    QCOMPARE(json.value(u"numberingPosition"_s).toString(), u"Suffix"_s);
}

void TestRenameRule::encodesIdInUpperCase()
{
    RenameRule rule(RuleType::Trim);
    rule.id = QUuid(u"e621e1f8-c36c-495a-93fc-0c247a3e6e5f"_s);
    QCOMPARE(rule.toJson().value(u"id"_s).toString(), u"E621E1F8-C36C-495A-93FC-0C247A3E6E5F"_s);
}

void TestRenameRule::roundTripsEveryField()
{
    RenameRule rule(RuleType::Remove);
    rule.isEnabled = false;
    rule.findText = u"a/b \"q\" é"_s;
    rule.replaceText = u"$1"_s;
    rule.isCaseSensitive = true;
    rule.useRegex = true;
    rule.insertText = u"x"_s;
    rule.insertPosition = InsertPosition::AfterText;
    rule.insertIndex = -7;
    rule.insertAnchorText = u"anchor"_s;
    rule.removeTarget = RemoveTarget::BetweenText;
    rule.removeText = u"COPY"_s;
    rule.removeCount = 4;
    rule.removeFromIndex = 2;
    rule.removeToIndex = 5;
    rule.removeBetweenStart = u"("_s;
    rule.removeBetweenEnd = u")"_s;
    rule.caseType = CaseConversionType::SnakeCase;
    rule.numberingStart = std::numeric_limits<qint64>::max();
    rule.numberingStep = std::numeric_limits<qint64>::min();
    rule.numberingPadding = 0;
    rule.numberingPosition = NumberingPosition::Replace;
    rule.numberingSeparator = u"-"_s;
    rule.numberingFormat = u"%d"_s;
    rule.dateFormat = u"HH:mm"_s;
    rule.datePosition = InsertPosition::Beginning;
    rule.newExtension = u"jpg"_s;
    rule.replaceSpacesWithUnderscores = true;
    rule.removeSpecialChars = true;
    rule.removeDuplicateSpaces = false;
    rule.trimWhitespace = false;

    const QByteArray bytes = QJsonDocument(rule.toJson()).toJson(QJsonDocument::Compact);
    const auto decoded = RenameRule::fromJson(QJsonDocument::fromJson(bytes).object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value(), rule);
}

void TestRenameRule::decodeFailsNamingTheKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("error");

    const QJsonValue missing(QJsonValue::Undefined);
    QTest::newRow("a missing flag is not defaulted")
        << u"trimWhitespace"_s << missing << u"Key \"trimWhitespace\" not found."_s;
    QTest::newRow("the case name instead of the raw value")
        << u"type"_s << QJsonValue(u"replace"_s)
        << u"Invalid value for key \"type\": “replace” is not one of its allowed values."_s;
    QTest::newRow("a string for a flag") << u"isEnabled"_s << QJsonValue(u"true"_s)
                                         << u"Invalid value for key \"isEnabled\": expected a boolean but found a "
                                            "string."_s;
    QTest::newRow("a number for a text") << u"findText"_s << QJsonValue(3)
                                         << u"Invalid value for key \"findText\": expected a string but found a "
                                            "number."_s;
    QTest::newRow("a fraction for an integer") << u"removeCount"_s << QJsonValue(1.5)
                                               << u"Invalid value for key \"removeCount\": 1.5 is not a whole number "
                                                  "in the 64-bit range."_s;
    QTest::newRow("an integer beyond 64 bits") << u"numberingStart"_s << QJsonValue(1e30)
                                               << u"Invalid value for key \"numberingStart\": 1e+30 is not a whole "
                                                  "number in the 64-bit range."_s;
    QTest::newRow("null for an integer") << u"insertIndex"_s << QJsonValue(QJsonValue::Null)
                                         << u"Invalid value for key \"insertIndex\": expected a number but found "
                                            "null."_s;
    QTest::newRow("an unknown option") << u"caseType"_s << QJsonValue(u"title case"_s)
                                       << u"Invalid value for key \"caseType\": “title case” is not one of its "
                                          "allowed values."_s;
    QTest::newRow("a date position that is not a position")
        << u"datePosition"_s << QJsonValue(u"Suffix"_s)
        << u"Invalid value for key \"datePosition\": “Suffix” is not one of its allowed values."_s;
    QTest::newRow("an id that is not a UUID") << u"id"_s << QJsonValue(u"1234"_s)
                                              << u"Invalid value for key \"id\": “1234” is not a UUID."_s;
    QTest::newRow("an id in braces") << u"id"_s << QJsonValue(u"{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}"_s)
                                     << u"Invalid value for key \"id\": “{E621E1F8-C36C-495A-93FC-0C247A3E6E5F}” is "
                                        "not a UUID."_s;
}

void TestRenameRule::decodeFailsNamingTheKey()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QFETCH(QString, error);
    QJsonObject json = RenameRule(RuleType::Cleanup).toJson();
    if (value.isUndefined())
        json.remove(key);
    else
        json.insert(key, value);
    const auto decoded = RenameRule::fromJson(json);
    QVERIFY(!decoded.isSuccess());
    QCOMPARE(decoded.error(), error);
}

void TestRenameRule::decodeKeepsLargeIntegersExactly()
{
    QJsonObject json = RenameRule(RuleType::Numbering).toJson();
    const QByteArray text = QJsonDocument(json).toJson().replace("\"numberingStart\": 1,",
                                                                 "\"numberingStart\": 9007199254740993,");
    const auto decoded = RenameRule::fromJson(QJsonDocument::fromJson(text).object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value().numberingStart, Q_INT64_C(9007199254740993));
}

void TestRenameRule::decodeAcceptsEscapedSlashesAndAnyKeyOrder()
{
    RenameRule rule(RuleType::DateStamp);
    rule.dateFormat = u"yyyy/MM/dd"_s;
    QJsonObject json = rule.toJson();
    QStringList keys = json.keys();
    std::reverse(keys.begin(), keys.end());
    QByteArray text = "{\n";
    for (const QString &key : keys) {
        const QByteArray value = QJsonDocument(QJsonArray{json.value(key)}).toJson(QJsonDocument::Compact);
        text += "  \"" + key.toUtf8() + "\" :  " + value.mid(1, value.size() - 2) + ",\n";
    }
    text.chop(2);
    text += "\n}";
    text.replace("/", "\\/");
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const auto decoded = RenameRule::fromJson(document.object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value(), rule);
}

void TestRenameRule::identityIsIdButEqualityIsEveryField()
{
    RenameRule first(RuleType::Replace);
    RenameRule second = first;
    second.findText = u"other"_s;
    QCOMPARE(qHash(first), qHash(second));
    QVERIFY(first != second);
    second.findText = first.findText;
    QVERIFY(first == second);
    QSet<RenameRule> set{first};
    QVERIFY(set.contains(second));
}

QTEST_APPLESS_MAIN(TestRenameRule)
#include "tst_renamerule.moc"
