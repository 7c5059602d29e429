#include "presets/preset.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

QDateTime utc(const QString &isoText)
{
    return QDateTime::fromString(isoText, Qt::ISODateWithMs);
}

Preset tidyPreset()
{
    RenameRule replace(RuleType::Replace);
    replace.findText = u"a/b"_s;
    replace.replaceText = u"Straße"_s;
    RenameRule numbering(RuleType::Numbering);
    numbering.isEnabled = false;
    numbering.numberingStart = 100;
    Preset preset(u"Tidy"_s, {replace, numbering}, u"sparkles"_s);
    preset.createdAt = utc(u"2025-12-04T12:13:30.123Z"_s);
    return preset;
}

/// A preset object written by hand the way another program might: keys in another order, every slash escaped,
/// spaces and line breaks between tokens, and an integer "createdAt".
QByteArray foreignPresetText(const RenameRule &rule)
{
    const QByteArray ruleText = QJsonDocument(rule.toJson()).toJson(QJsonDocument::Indented);
    QByteArray text = "{\n  \"icon\" : \"doc/badge\",\n  \"rules\" : [ " + ruleText
        + " ],\n  \"createdAt\" : 700000000,"
          "\n  \"name\" : \"Dated/Filed\",\n  \"id\" : \"A1B2C3D4-E5F6-4789-ABCD-EF0123456789\"\n}\n";
    return text.replace("/", "\\/");
}

} // namespace

class TestPreset final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newPresetHasFreshIdCreationTimeAndDefaultIcon();
    void newPresetKeepsTheGivenIcon();
    void encodesExactlyTheFiveKeys();
    void encodesIdInUpperCaseAndRulesInOrder();
    void encodesCreatedAtAsSecondsSince2001_data();
    void encodesCreatedAtAsSecondsSince2001();
    void decodesCreatedAt_data();
    void decodesCreatedAt();
    void roundTripsEveryField();
    void decodesTheSpellingOfOtherPrograms();
    void decodeFailsNamingTheProblem_data();
    void decodeFailsNamingTheProblem();
};

void TestPreset::newPresetHasFreshIdCreationTimeAndDefaultIcon()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const Preset preset(u"Mine"_s, {RenameRule(RuleType::Trim)});
    const QDateTime after = QDateTime::currentDateTimeUtc();

    QVERIFY(!preset.id.isNull());
    QVERIFY(Preset(u"Mine"_s, {}).id != preset.id);
    QCOMPARE(preset.name, u"Mine"_s);
    QCOMPARE(preset.rules.size(), 1);
    QCOMPARE(preset.rules.first().type, RuleType::Trim);
    QVERIFY(before <= preset.createdAt && preset.createdAt <= after);
    QCOMPARE(preset.icon, u"wand.and.stars"_s);
}

void TestPreset::newPresetKeepsTheGivenIcon()
{
    QCOMPARE(Preset(u"Mine"_s, {}, u"calendar"_s).icon, u"calendar"_s);
}

void TestPreset::encodesExactlyTheFiveKeys()
{
    QStringList keys = tidyPreset().toJson().keys();
    keys.sort();
    QCOMPARE(keys, (QStringList{u"createdAt"_s, u"icon"_s, u"id"_s, u"name"_s, u"rules"_s}));
}

void TestPreset::encodesIdInUpperCaseAndRulesInOrder()
{
    const Preset preset = tidyPreset();
    const QJsonObject json = preset.toJson();
    const QString idText = json.value("id"_L1).toString();
    QCOMPARE(idText.size(), 36);
    QCOMPARE(idText, idText.toUpper());
    QCOMPARE(QUuid::fromString(idText), preset.id);
    const QJsonArray rules = json.value("rules"_L1).toArray();
    QCOMPARE(rules.size(), 2);
    QCOMPARE(rules.at(0).toObject(), preset.rules.at(0).toJson());
    QCOMPARE(rules.at(1).toObject(), preset.rules.at(1).toJson());
    QCOMPARE(json.value("name"_L1).toString(), u"Tidy"_s);
    QCOMPARE(json.value("icon"_L1).toString(), u"sparkles"_s);
}

void TestPreset::encodesCreatedAtAsSecondsSince2001_data()
{
    QTest::addColumn<QDateTime>("createdAt");
    QTest::addColumn<double>("seconds");
    QTest::newRow("the first instant of 2001 in UTC is zero") << utc(u"2001-01-01T00:00:00Z"_s) << 0.0;
    QTest::newRow("a fraction of a second is kept") << utc(u"2001-01-01T00:00:01.500Z"_s) << 1.5;
    QTest::newRow("an instant before 2001 is negative") << utc(u"2000-12-31T23:59:59.750Z"_s) << -0.25;
    QTest::newRow("another time zone counts the same instant") << utc(u"2001-01-01T01:00:00+01:00"_s) << 0.0;
    QTest::newRow("a recent date counts whole seconds") << utc(u"2026-11-22T12:00:00Z"_s) << 817041600.0;
    QTest::newRow("milliseconds survive a large count") << utc(u"2025-12-04T12:13:30.123Z"_s) << 786543210.123;
}

void TestPreset::encodesCreatedAtAsSecondsSince2001()
{
    QFETCH(QDateTime, createdAt);
    QFETCH(double, seconds);
    Preset preset(u"Dated"_s, {});
    preset.createdAt = createdAt;
    const QJsonValue encoded = preset.toJson().value("createdAt"_L1);
    QVERIFY(encoded.isDouble());
    QCOMPARE(encoded.toDouble(), seconds);
}

void TestPreset::decodesCreatedAt_data()
{
    QTest::addColumn<QByteArray>("numberText");
    QTest::addColumn<QDateTime>("createdAt");
    QTest::newRow("zero is the first instant of 2001") << QByteArray("0") << utc(u"2001-01-01T00:00:00Z"_s);
    QTest::newRow("an integer counts whole seconds") << QByteArray("700000000") << utc(u"2023-03-08T20:26:40Z"_s);
    QTest::newRow("a fraction is kept") << QByteArray("1.5") << utc(u"2001-01-01T00:00:01.500Z"_s);
    QTest::newRow("a negative count is before 2001") << QByteArray("-0.25") << utc(u"2000-12-31T23:59:59.750Z"_s);
    QTest::newRow("microseconds round to the nearest millisecond")
        << QByteArray("786543210.123456") << utc(u"2025-12-04T12:13:30.123Z"_s);
    QTest::newRow("an exponent is an ordinary number") << QByteArray("1e3") << utc(u"2001-01-01T00:16:40Z"_s);
}

void TestPreset::decodesCreatedAt()
{
    QFETCH(QByteArray, numberText);
    QFETCH(QDateTime, createdAt);
    const QByteArray text = R"({"id":"A1B2C3D4-E5F6-4789-ABCD-EF0123456789","name":"n","rules":[],"createdAt":)"
        + numberText + R"(,"icon":"i"})";
    const DecodeResult<Preset> decoded = Preset::fromJson(QJsonDocument::fromJson(text).object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value().createdAt, createdAt);
}

void TestPreset::roundTripsEveryField()
{
    const Preset preset = tidyPreset();
    const QByteArray bytes = QJsonDocument(preset.toJson()).toJson(QJsonDocument::Compact);
    const DecodeResult<Preset> decoded = Preset::fromJson(QJsonDocument::fromJson(bytes).object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value(), preset);
}

void TestPreset::decodesTheSpellingOfOtherPrograms()
{
    RenameRule rule(RuleType::DateStamp);
    rule.dateFormat = u"yyyy/MM/dd"_s;
    const QByteArray text = foreignPresetText(rule);
    QVERIFY(text.contains(R"("Add Date\/Time")"));

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parseError);
    QCOMPARE(parseError.error, QJsonParseError::NoError);
    const DecodeResult<Preset> decoded = Preset::fromJson(document.object());
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    const Preset &preset = decoded.value();
    QCOMPARE(uuidText(preset.id), u"A1B2C3D4-E5F6-4789-ABCD-EF0123456789"_s);
    QCOMPARE(preset.name, u"Dated/Filed"_s);
    QCOMPARE(preset.icon, u"doc/badge"_s);
    QCOMPARE(preset.createdAt, utc(u"2023-03-08T20:26:40Z"_s));
    QCOMPARE(preset.rules, QList<RenameRule>{rule});
}

void TestPreset::decodeFailsNamingTheProblem_data()
{
    QTest::addColumn<QJsonValue>("json");
    QTest::addColumn<QString>("error");

    const QJsonObject valid = tidyPreset().toJson();
    const auto without = [&](const QString &key) {
        QJsonObject object = valid;
        object.remove(key);
        return object;
    };
    const auto with = [&](const QString &key, const QJsonValue &value) {
        QJsonObject object = valid;
        object.insert(key, value);
        return object;
    };
    const auto withRule = [&](qsizetype index, const QJsonValue &rule) {
        QJsonArray rules = valid.value("rules"_L1).toArray();
        rules.replace(index, rule);
        return with(u"rules"_s, rules);
    };
    QJsonObject ruleWithoutFlag = tidyPreset().rules.at(1).toJson();
    ruleWithoutFlag.remove(u"trimWhitespace"_s);
    QJsonObject ruleOfUnknownType = tidyPreset().rules.at(0).toJson();
    ruleOfUnknownType.insert(u"type"_s, u"replace"_s);

    QTest::newRow("a preset that is not an object fails")
        << QJsonValue(u"Tidy"_s) << u"A preset must be a JSON object."_s;
    for (const QString &key : {u"id"_s, u"name"_s, u"rules"_s, u"createdAt"_s, u"icon"_s}) {
        QTest::addRow("a preset without \"%s\" fails rather than taking a default", qPrintable(key))
            << QJsonValue(without(key)) << u"Key \"%1\" not found."_s.arg(key);
    }
    QTest::newRow("an id in braces fails")
        << QJsonValue(with(u"id"_s, u"{A1B2C3D4-E5F6-4789-ABCD-EF0123456789}"_s))
        << u"Invalid value for key \"id\": “{A1B2C3D4-E5F6-4789-ABCD-EF0123456789}” is not a UUID."_s;
    QTest::newRow("a name that is a number fails")
        << QJsonValue(with(u"name"_s, 7)) << u"Invalid value for key \"name\": expected a string but found a number."_s;
    QTest::newRow("rules given as one object fail")
        << QJsonValue(with(u"rules"_s, QJsonObject{}))
        << u"Invalid value for key \"rules\": expected an array but found an object."_s;
    QTest::newRow("a creation date written as text fails")
        << QJsonValue(with(u"createdAt"_s, u"2001-01-01"_s))
        << u"Invalid value for key \"createdAt\": expected a number but found a string."_s;
    QTest::newRow("a creation date beyond any calendar fails") << QJsonValue(
        with(u"createdAt"_s, 1e300)) << u"Invalid value for key \"createdAt\": 1e+300 is not a representable date."_s;
    QTest::newRow("an icon that is null fails") << QJsonValue(
        with(u"icon"_s, QJsonValue::Null)) << u"Invalid value for key \"icon\": expected a string but found null."_s;
    QTest::newRow("a rule lacking a key names the preset, the rule's index and the key") << QJsonValue(
        withRule(1, ruleWithoutFlag)) << u"Preset “Tidy”, rule at index 1: Key \"trimWhitespace\" not found."_s;
    QTest::newRow("a rule that is not an object names the preset and the rule's index")
        << QJsonValue(withRule(0, 3)) << u"Preset “Tidy”, rule at index 0: A rule must be a JSON object."_s;
    QTest::newRow("a rule of an unknown kind names the preset, the rule's index and the kind")
        << QJsonValue(withRule(0, ruleOfUnknownType))
        << u"Preset “Tidy”, rule at index 0: Invalid value for key \"type\": “replace” is not one of its allowed values."_s;
}

void TestPreset::decodeFailsNamingTheProblem()
{
    QFETCH(QJsonValue, json);
    QFETCH(QString, error);
    const DecodeResult<Preset> decoded = Preset::fromJson(json);
    QVERIFY(!decoded.isSuccess());
    QCOMPARE(decoded.error(), error);
}

QTEST_GUILESS_MAIN(TestPreset)
#include "tst_preset.moc"
