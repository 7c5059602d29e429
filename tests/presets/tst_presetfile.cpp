#include "presets/presetfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

QList<Preset> twoPresets()
{
    RenameRule insert(RuleType::Insert);
    insert.insertText = u"ü-"_s;
    return {Preset(u"First"_s, {insert}), Preset(u"Second/Third"_s, {}, u"number"_s)};
}

/// Removes `key` from the preset at `index` of an encoded list.
QByteArray withoutKey(const QByteArray &bytes, qsizetype index, const QString &key)
{
    QJsonArray array = QJsonDocument::fromJson(bytes).array();
    QJsonObject preset = array.at(index).toObject();
    preset.remove(key);
    array.replace(index, preset);
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

} // namespace

class TestPresetFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodesOneCompactArrayInListOrder();
    void encodesAnEmptyListAsEmptyBrackets();
    void decodesAnEmptyArray_data();
    void decodesAnEmptyArray();
    void decodeFailsAsAWhole_data();
    void decodeFailsAsAWhole();
};

void TestPresetFile::encodesOneCompactArrayInListOrder()
{
    const QList<Preset> presets = twoPresets();
    const QByteArray bytes = presetfile::encode(presets);
    QVERIFY(bytes.startsWith("[{"));
    QVERIFY(bytes.endsWith("}]"));
    QVERIFY(!bytes.contains('\n'));
    QVERIFY(!bytes.contains("\": "));

    const DecodeResult<QList<Preset>> decoded = presetfile::decode(bytes);
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QCOMPARE(decoded.value(), presets);
}

void TestPresetFile::encodesAnEmptyListAsEmptyBrackets()
{
    QCOMPARE(presetfile::encode({}), QByteArray("[]"));
}

void TestPresetFile::decodesAnEmptyArray_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("compact brackets") << QByteArray("[]");
    QTest::newRow("brackets with spaces and line breaks") << QByteArray(" [\n ]\n");
}

void TestPresetFile::decodesAnEmptyArray()
{
    QFETCH(QByteArray, bytes);
    const DecodeResult<QList<Preset>> decoded = presetfile::decode(bytes);
    QVERIFY2(decoded.isSuccess(), qPrintable(decoded.error()));
    QVERIFY(decoded.value().isEmpty());
}

void TestPresetFile::decodeFailsAsAWhole_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");

    const QByteArray valid = presetfile::encode(twoPresets());
    QByteArray badRule = valid;
    badRule.replace("\"trimWhitespace\":true", "\"trimWhitespace\":\"yes\"");

    QTest::newRow("an empty file is not JSON") << QByteArray() << u"Not valid JSON: illegal value at offset 0."_s;
    QTest::newRow("text that is not JSON fails")
        << QByteArray("{not json") << u"Not valid JSON: unterminated object at offset 2."_s;
    QTest::newRow("a file cut off in the middle fails")
        << valid.left(40) << u"Not valid JSON: unterminated string at offset 41."_s;
    QTest::newRow("one object instead of an array fails")
        << QByteArray("{}") << u"The presets file must hold a JSON array."_s;
    QTest::newRow("an entry that is not an object names its index")
        << QByteArray("[1]") << u"Entry at index 0: A preset must be a JSON object."_s;
    QTest::newRow("an entry lacking a key names its index and the key")
        << withoutKey(valid, 1, u"icon"_s) << u"Entry at index 1: Key \"icon\" not found."_s;
    QTest::newRow("one bad rule fails the whole file, naming entry, preset, rule and key")
        << badRule
        << u"Entry at index 0: Preset “First”, rule at index 0: Invalid value for key \"trimWhitespace\": expected a "
           "boolean but found a string."_s;
}

void TestPresetFile::decodeFailsAsAWhole()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    const DecodeResult<QList<Preset>> decoded = presetfile::decode(bytes);
    QVERIFY(!decoded.isSuccess());
    QCOMPARE(decoded.error(), error);
}

QTEST_GUILESS_MAIN(TestPresetFile)
#include "tst_presetfile.moc"
