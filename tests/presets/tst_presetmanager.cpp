#include "presets/presetfile.h"
#include "presets/presetmanager.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(QList<quillfern::RenameRule>)

namespace {

const QStringList builtInNames{
    u"Clean Spaces"_s,
    u"Title Case"_s,
    u"Add Date Suffix"_s,
    u"Sequential Numbering"_s,
    u"Lowercase + Underscores"_s,
};

QStringList namesOf(const QList<Preset> &presets)
{
    QStringList names;
    for (const Preset &preset : presets)
        names.append(preset.name);
    return names;
}

QSet<QUuid> idsOf(const QList<Preset> &presets)
{
    QSet<QUuid> ids;
    for (const Preset &preset : presets)
        ids.insert(preset.id);
    return ids;
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// The presets the file holds now; fails the test when it does not decode.
QList<Preset> presetsInFile(const QString &path)
{
    DecodeResult<QList<Preset>> decoded = presetfile::decode(readBytes(path));
    if (!decoded.isSuccess()) {
        qWarning("%s", qPrintable(decoded.error()));
        return {};
    }
    return std::move(decoded).value();
}

QByteArray foreignFileBytes()
{
    return readBytes(QFINDTESTDATA("data/presets-foreign.json"));
}

QDateTime utc(const QString &isoText)
{
    return QDateTime::fromString(isoText, Qt::ISODateWithMs);
}

} // namespace

class TestPresetManager final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void storageIsInsideTheUsersDataFolder();
    void firstStartCreatesTheFolderAndWritesTheBuiltIns();
    void builtInPresetsHoldTheirRules_data();
    void builtInPresetsHoldTheirRules();
    void builtInPresetsRoundTripThroughTheFile();
    void unusableFileIsKeptAsBackupAndReplaced_data();
    void unusableFileIsKeptAsBackupAndReplaced();
    void emptyListIsReplacedWithoutBackup();
    void unusableFileStaysWhenNoBackupCanBeKept();
    void unreadableFileIsLeftAlone();
    void loadsAFileWrittenByAnotherProgram();
    void saveOfAKnownIdReplacesInPlace();
    void saveOfANewIdAppends();
    void saveOfAnUnchangedPresetDoesNotSignal();
    void deleteRemovesEveryPresetWithTheId();
    void deleteOfAnUnknownIdChangesNothing();
    void deletingEveryPresetWritesAnEmptyListAndRestartBringsBackTheBuiltIns();
    void writingLeavesNoTemporaryFileBehind();
    void failedWriteKeepsTheListInMemory();
    void presetsPropertyPublishesTheList();

private:
    QString presetsFolder() const { return m_dataHome.path() + u"/Quillfern/Presets"_s; }
    QString presetsFile() const { return presetsFolder() + u"/presets.json"_s; }
    QString backupFile() const { return presetsFile() + u".bak"_s; }

    QTemporaryDir m_dataHome;
};

void TestPresetManager::initTestCase()
{
    QVERIFY(m_dataHome.isValid());
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_dataHome.path()));
}

void TestPresetManager::init()
{
    QVERIFY(QDir(m_dataHome.path() + u"/Quillfern"_s).removeRecursively());
}

void TestPresetManager::storageIsInsideTheUsersDataFolder()
{
    const PresetManager manager;
    QCOMPARE(manager.storagePath(), presetsFile());
    QVERIFY(manager.storagePath().startsWith(m_dataHome.path() + u'/'));
}

void TestPresetManager::firstStartCreatesTheFolderAndWritesTheBuiltIns()
{
    QVERIFY(!QFileInfo::exists(presetsFolder()));
    const PresetManager manager;
    QVERIFY(QFileInfo(presetsFolder()).isDir());
    QCOMPARE(namesOf(manager.presets()), builtInNames);
    QCOMPARE(presetsInFile(presetsFile()), manager.presets());
    QVERIFY(!readBytes(presetsFile()).contains('\n'));
    QVERIFY(!QFileInfo::exists(backupFile()));
}

void TestPresetManager::builtInPresetsHoldTheirRules_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QList<RenameRule>>("rules");

    const RenameRule cleanSpaces(RuleType::Cleanup);
    RenameRule titleCase(RuleType::CaseConversion);
    titleCase.caseType = CaseConversionType::TitleCase;
    const RenameRule dateSuffix(RuleType::DateStamp);
    const RenameRule numbering(RuleType::Numbering);
    RenameRule lowercase(RuleType::CaseConversion);
    lowercase.caseType = CaseConversionType::Lowercase;
    RenameRule underscores(RuleType::Cleanup);
    underscores.replaceSpacesWithUnderscores = true;

    QTest::newRow("Clean Spaces merges and trims spaces") << 0 << u"sparkles"_s << QList{cleanSpaces};
    QTest::newRow("Title Case converts to title case") << 1 << u"textformat"_s << QList{titleCase};
    QTest::newRow("Add Date Suffix appends the ISO date") << 2 << u"calendar"_s << QList{dateSuffix};
    QTest::newRow("Sequential Numbering appends three digits from 1") << 3 << u"number"_s << QList{numbering};
    QTest::newRow("Lowercase + Underscores lowers the case before cleaning up")
        << 4 << u"textformat.abc"_s << QList{lowercase, underscores};
}

void TestPresetManager::builtInPresetsHoldTheirRules()
{
    QFETCH(int, index);
    QFETCH(QString, icon);
    QFETCH(QList<RenameRule>, rules);

    const QDateTime before = QDateTime::currentDateTimeUtc();
    const PresetManager manager;
    const QDateTime after = QDateTime::currentDateTimeUtc();

    const Preset &preset = manager.presets().at(index);
    QCOMPARE(preset.icon, icon);
    QVERIFY(before <= preset.createdAt && preset.createdAt <= after);
    QCOMPARE(preset.rules.size(), rules.size());
    // Every field other than those the preset sets keeps the default of a new rule; only ids are fresh.
    for (qsizetype i = 0; i < rules.size(); ++i) {
        QVERIFY(!preset.rules.at(i).id.isNull());
        rules[i].id = preset.rules.at(i).id;
    }
    QCOMPARE(preset.rules, rules);
    QCOMPARE(idsOf(manager.presets()).size(), builtInNames.size());
}

void TestPresetManager::builtInPresetsRoundTripThroughTheFile()
{
    const QList<Preset> written = PresetManager().presets();
    const QByteArray bytes = readBytes(presetsFile());
    const PresetManager restarted;
    QCOMPARE(restarted.presets(), written);
    QCOMPARE(readBytes(presetsFile()), bytes);
}

void TestPresetManager::unusableFileIsKeptAsBackupAndReplaced_data()
{
    QTest::addColumn<QByteArray>("original");

    const QByteArray foreign = foreignFileBytes();
    QVERIFY(!foreign.isEmpty());
    // The last rule of the file loses its final key; every other preset and rule stays valid.
    QByteArray oneBadRule = foreign;
    oneBadRule.replace(foreign.lastIndexOf(R"(,"trimWhitespace")"), QByteArray(R"(,"trimWhitespace":true)").size(), "");

    QTest::newRow("text that is not JSON") << QByteArray("{not json");
    QTest::newRow("a file cut off in the middle") << foreign.left(foreign.size() / 2);
    QTest::newRow("one object instead of an array") << QByteArray("{}");
    QTest::newRow("an entry lacking a key")
        << QByteArray(R"([{"id":"A1B2C3D4-E5F6-4789-ABCD-EF0123456789","name":"n","rules":[],"createdAt":0}])");
    QTest::newRow("one bad rule among good presets") << oneBadRule;
}

void TestPresetManager::unusableFileIsKeptAsBackupAndReplaced()
{
    QFETCH(QByteArray, original);
    writeBytes(presetsFile(), original);

    const PresetManager manager;
    QCOMPARE(namesOf(manager.presets()), builtInNames);
    QCOMPARE(presetsInFile(presetsFile()), manager.presets());
    QCOMPARE(readBytes(backupFile()), original);
}

void TestPresetManager::emptyListIsReplacedWithoutBackup()
{
    writeBytes(presetsFile(), "[]");
    const PresetManager manager;
    QCOMPARE(namesOf(manager.presets()), builtInNames);
    QCOMPARE(presetsInFile(presetsFile()), manager.presets());
    QVERIFY(!QFileInfo::exists(backupFile()));
}

void TestPresetManager::unusableFileStaysWhenNoBackupCanBeKept()
{
    // A folder where the backup would go makes keeping a backup impossible.
    QVERIFY(QDir().mkpath(backupFile()));
    writeBytes(presetsFile(), "{not json");

    const PresetManager manager;
    QCOMPARE(namesOf(manager.presets()), builtInNames);
    QCOMPARE(readBytes(presetsFile()), QByteArray("{not json"));
}

void TestPresetManager::unreadableFileIsLeftAlone()
{
    // A folder in place of the file cannot be read (even by an administrator).
    QVERIFY(QDir().mkpath(presetsFile()));
    const PresetManager manager;
    QCOMPARE(namesOf(manager.presets()), builtInNames);
    QVERIFY(QFileInfo(presetsFile()).isDir());
    QVERIFY(!QFileInfo::exists(backupFile()));
}

void TestPresetManager::loadsAFileWrittenByAnotherProgram()
{
    const QByteArray original = foreignFileBytes();
    QVERIFY(!original.isEmpty());
    writeBytes(presetsFile(), original);

    const PresetManager manager;
    const QList<Preset> &presets = manager.presets();
    QCOMPARE(namesOf(presets), (QStringList{u"Camera Roll → Archive"_s, u"Tidy \"quoted\" names"_s}));

    const Preset &camera = presets.at(0);
    QCOMPARE(uuidText(camera.id), u"0F3C1D9A-5B7E-4E21-9C44-2A6B8D1E7F30"_s);
    QCOMPARE(camera.icon, u"photo.on.rectangle"_s);
    QCOMPARE(camera.createdAt, utc(u"2025-12-04T12:13:30.123Z"_s));
    QCOMPARE(camera.rules.size(), 3);
    QCOMPARE(camera.rules.at(0).type, RuleType::Regex);
    QCOMPARE(camera.rules.at(0).findText, uR"(^IMG_(\d{4})$)"_s);
    QCOMPARE(camera.rules.at(1).type, RuleType::DateStamp);
    QVERIFY(!camera.rules.at(1).isEnabled);
    QCOMPARE(camera.rules.at(1).dateFormat, u"yyyy/MM/dd HH:mm"_s);
    QCOMPARE(camera.rules.at(1).datePosition, InsertPosition::Beginning);
    QCOMPARE(camera.rules.at(2).numberingStart, 100);
    QCOMPARE(camera.rules.at(2).numberingPosition, NumberingPosition::Replace);

    const Preset &tidy = presets.at(1);
    QCOMPARE(uuidText(tidy.id), u"A1B2C3D4-E5F6-4789-ABCD-EF0123456789"_s);
    QCOMPARE(tidy.icon, u"textformat"_s);
    QCOMPARE(tidy.createdAt, utc(u"2023-03-08T20:26:40Z"_s));
    QCOMPARE(tidy.rules.size(), 5);
    QCOMPARE(tidy.rules.at(1).removeTarget, RemoveTarget::BetweenText);
    QCOMPARE(tidy.rules.at(3).caseType, CaseConversionType::SnakeCase);
    QCOMPARE(tidy.rules.at(4).insertText, u"ü-"_s);
    QCOMPARE(tidy.rules.at(4).insertAnchorText, u"Straße"_s);
    QCOMPARE(tidy.rules.at(4).insertPosition, InsertPosition::AfterText);

    // A file that loads is not rewritten, so it keeps its foreign spelling.
    QCOMPARE(readBytes(presetsFile()), original);
    QVERIFY(!QFileInfo::exists(backupFile()));
}

void TestPresetManager::saveOfAKnownIdReplacesInPlace()
{
    PresetManager manager;
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);
    Preset renamed = manager.presets().at(1);
    renamed.name = u"Headline Case"_s;
    renamed.rules = {RenameRule(RuleType::Trim)};
    renamed.icon = u"scissors"_s;

    manager.save(renamed);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(manager.presets().size(), 5);
    QCOMPARE(manager.presets().at(1), renamed);
    QStringList expectedNames = builtInNames;
    expectedNames[1] = u"Headline Case"_s;
    QCOMPARE(namesOf(manager.presets()), expectedNames);
    QCOMPARE(presetsInFile(presetsFile()), manager.presets());
}

void TestPresetManager::saveOfANewIdAppends()
{
    PresetManager manager;
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);
    const Preset added(u"Mine"_s, {RenameRule(RuleType::Regex)});

    manager.save(added);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(namesOf(manager.presets()), builtInNames + QStringList{u"Mine"_s});
    QCOMPARE(manager.presets().last(), added);
    QCOMPARE(presetsInFile(presetsFile()), manager.presets());
    QCOMPARE(PresetManager().presets(), manager.presets());
}

void TestPresetManager::saveOfAnUnchangedPresetDoesNotSignal()
{
    PresetManager manager;
    const QList<Preset> before = manager.presets();
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);
    manager.save(before.at(2));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(manager.presets(), before);
}

void TestPresetManager::deleteRemovesEveryPresetWithTheId()
{
    const Preset kept(u"Kept"_s, {});
    const Preset twin(u"Twin"_s, {});
    Preset otherTwin(u"Other twin"_s, {});
    otherTwin.id = twin.id;
    writeBytes(presetsFile(), presetfile::encode({twin, kept, otherTwin}));

    PresetManager manager;
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);
    manager.deletePreset(twin);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(manager.presets(), QList<Preset>{kept});
    QCOMPARE(presetsInFile(presetsFile()), QList<Preset>{kept});
}

void TestPresetManager::deleteOfAnUnknownIdChangesNothing()
{
    PresetManager manager;
    const QList<Preset> before = manager.presets();
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);
    manager.deletePreset(Preset(u"Stranger"_s, {}));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(manager.presets(), before);
    QCOMPARE(presetsInFile(presetsFile()), before);
}

void TestPresetManager::deletingEveryPresetWritesAnEmptyListAndRestartBringsBackTheBuiltIns()
{
    QSet<QUuid> oldIds;
    {
        PresetManager manager;
        oldIds = idsOf(manager.presets());
        QSignalSpy changed(&manager, &PresetManager::presetsChanged);
        while (!manager.presets().isEmpty())
            manager.deletePreset(manager.presets().first());
        QCOMPARE(changed.count(), 5);
        QCOMPARE(readBytes(presetsFile()), QByteArray("[]"));
    }

    const PresetManager restarted;
    QCOMPARE(namesOf(restarted.presets()), builtInNames);
    QVERIFY(!idsOf(restarted.presets()).intersects(oldIds));
    QCOMPARE(presetsInFile(presetsFile()), restarted.presets());
    QVERIFY(!QFileInfo::exists(backupFile()));
}

void TestPresetManager::writingLeavesNoTemporaryFileBehind()
{
    PresetManager manager;
    manager.save(Preset(u"Mine"_s, {}));
    manager.deletePreset(manager.presets().first());
    QCOMPARE(QDir(presetsFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList{u"presets.json"_s});
}

void TestPresetManager::failedWriteKeepsTheListInMemory()
{
    PresetManager manager;
    // A folder in place of the file makes every write fail.
    QVERIFY(QFile::remove(presetsFile()));
    QVERIFY(QDir().mkpath(presetsFile()));
    QSignalSpy changed(&manager, &PresetManager::presetsChanged);

    manager.save(Preset(u"Mine"_s, {}));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(namesOf(manager.presets()), builtInNames + QStringList{u"Mine"_s});
    QVERIFY(QFileInfo(presetsFile()).isDir());
}

void TestPresetManager::presetsPropertyPublishesTheList()
{
    const PresetManager manager;
    const int index = manager.metaObject()->indexOfProperty("presets");
    QVERIFY(index >= 0);
    const QMetaProperty property = manager.metaObject()->property(index);
    QCOMPARE(property.notifySignal(), QMetaMethod::fromSignal(&PresetManager::presetsChanged));
    QCOMPARE(property.read(&manager).value<QList<Preset>>(), manager.presets());
}

QTEST_GUILESS_MAIN(TestPresetManager)
#include "tst_presetmanager.moc"
