#include "clirun.h"
#include "model/renamerule.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

using namespace quillfern;
using namespace Qt::StringLiterals;

using Run = CliRun;

/// Runs the built quillfern-cli as a user would, on temporary folders, with a temporary presets location.
class TestCli final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void helpAndVersion();
    void badUsageExitsWithTwo_data();
    void badUsageExitsWithTwo();
    void previewTableShowsNamesAndSummary();
    void previewCsvIsTheExportText();
    void previewJsonListsEveryFile();
    void selectionOptionsFilterAndSort();
    void recursiveAddsFolderContents();
    void rulesCombineInTheOrderGiven();
    void rulesFromStandardInput();
    void invalidRulesFileNamesKeyAndRule();
    void unsafeRulesAreRefusedBeforeRunning_data();
    void unsafeRulesAreRefusedBeforeRunning();
    void renameWithoutTerminalNeedsYes();
    void renameRenamesWhatPreviewShows();
    void renameReportsFailuresWithStatusOne();
    void renameJsonResults();
    void renameFolderWithItsContents();
    void renameNameThatIsNotUtf8();
    void nothingToRenameIsSuccess();
    void parsePrintsSuggestions();
    void presetsListShowSaveDelete();
    void presetsLiveUnderXdgDataHome();

private:
    Run run(const QStringList &arguments, const QByteArray &input = {}) const;
    QString file(const QString &relative, const QByteArray &content = {}) const;
    QString writeRules(const QList<RenameRule> &rules) const;
    [[nodiscard]] bool exists(const QString &relative) const { return QFileInfo::exists(m_files->filePath(relative)); }

    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<QTemporaryDir> m_data;
};

void TestCli::init()
{
    m_files = std::make_unique<QTemporaryDir>();
    m_data = std::make_unique<QTemporaryDir>();
}

Run TestCli::run(const QStringList &arguments, const QByteArray &input) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, m_data->path());
    environment.insert(u"XDG_STATE_HOME"_s, m_data->path());
    environment.insert(u"LANG"_s, u"en_US.UTF-8"_s);
    return runCli(arguments, m_files->path(), environment, input);
}

QString TestCli::file(const QString &relative, const QByteArray &content) const
{
    const QString path = m_files->filePath(relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
        qFatal("cannot write test file");
    return path;
}

QString TestCli::writeRules(const QList<RenameRule> &rules) const
{
    QJsonArray array;
    for (const RenameRule &rule : rules)
        array.append(rule.toJson());
    static int counter = 0;
    return file(u"rules%1.json"_s.arg(++counter), QJsonDocument(array).toJson());
}

namespace {

RenameRule insertAtEnd(const QString &text)
{
    RenameRule rule(RuleType::Insert);
    rule.insertPosition = InsertPosition::End;
    rule.insertText = text;
    return rule;
}

} // namespace

void TestCli::helpAndVersion()
{
    const Run help = run({u"--help"_s});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.out.contains(u"Usage: quillfern-cli COMMAND"_s));
    const Run previewHelp = run({u"preview"_s, u"--help"_s});
    QCOMPARE(previewHelp.exitCode, 0);
    QVERIFY(previewHelp.out.contains(u"--format"_s));
    for (const QString &command : {u"rename"_s, u"parse"_s, u"presets"_s})
        QVERIFY(run({command, u"--help"_s}).out.contains(u"Usage: quillfern-cli "_s + command));
    const Run version = run({u"--version"_s});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.out.startsWith(u"quillfern-cli "_s));
}

void TestCli::badUsageExitsWithTwo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("an unknown option") << QStringList{u"preview"_s, u"--bogus"_s} << u"unknown option '--bogus'"_s;
    QTest::newRow("an unknown command") << QStringList{u"frobnicate"_s} << u"unknown command 'frobnicate'"_s;
    QTest::newRow("an option without its value")
        << QStringList{u"preview"_s, u"--rules"_s} << u"option --rules needs a value"_s;
    QTest::newRow("an unknown sort") << QStringList{u"preview"_s, u"--sort"_s, u"colour"_s}
                                     << u"--sort takes name, date, size or type, not 'colour'"_s;
    QTest::newRow("an unknown format") << QStringList{u"preview"_s, u"--format=xml"_s}
                                       << u"--format takes table, csv or json, not 'xml'"_s;
    QTest::newRow("an unknown preset") << QStringList{u"preview"_s, u"--preset"_s, u"Nope"_s, u"."_s}
                                       << u"unknown preset 'Nope'"_s;
    QTest::newRow("a command nobody understands") << QStringList{u"preview"_s, u"--do"_s, u"make it nice"_s, u"."_s}
                                                  << u"could not understand the command 'make it nice'"_s;
    QTest::newRow("a missing rules file") << QStringList{u"preview"_s, u"--rules"_s, u"missing.json"_s, u"."_s}
                                          << u"cannot read rules file missing.json"_s;
    QTest::newRow("no command") << QStringList{} << u""_s;
}

void TestCli::badUsageExitsWithTwo()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const Run result = run(arguments);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
}

void TestCli::previewTableShowsNamesAndSummary()
{
    file(u"one/a.txt"_s);
    file(u"two/a.txt"_s);
    file(u"b.txt"_s);
    const Run result = run({u"preview"_s,
        u"--rules"_s,
        writeRules({insertAtEnd(u"_x"_s)}),
        m_files->filePath(u"one/a.txt"_s),
        m_files->filePath(u"two/a.txt"_s),
        m_files->filePath(u"b.txt"_s)});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.out.contains(u"a.txt"_s) && result.out.contains(u"a_x.txt  (conflict)"_s), qPrintable(result.out));
    QVERIFY(result.out.contains(u"b_x.txt"_s));
    QVERIFY(!result.out.contains(u"\x1b["_s)); // no colours when not on a terminal
    QVERIFY2(result.out.endsWith(u"3 files, 3 changes, 1 conflict\n"_s), qPrintable(result.out));
    QVERIFY(exists(u"b.txt"_s));
}

void TestCli::previewCsvIsTheExportText()
{
    file(u"b, c.txt"_s);
    file(u"a.txt"_s);
    const Run result = run({u"preview"_s,
        u"--format"_s,
        u"csv"_s,
        u"--rules"_s,
        writeRules({insertAtEnd(u"1"_s)}),
        m_files->filePath(u"b, c.txt"_s),
        m_files->filePath(u"a.txt"_s)});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out,
        u"Original Name,New Name,Has Conflict\n\"a.txt\",\"a1.txt\",false\n\"b, c.txt\",\"b, c1.txt\",false\n"_s);
}

void TestCli::previewJsonListsEveryFile()
{
    const QString a = file(u"a.txt"_s);
    const Run result = run({u"preview"_s, u"--format"_s, u"json"_s, u"--do"_s, u"uppercase"_s, a});
    QCOMPARE(result.exitCode, 0);
    const QJsonArray array = QJsonDocument::fromJson(result.out.toUtf8()).array();
    QCOMPARE(array.size(), 1);
    const QJsonObject entry = array.first().toObject();
    QCOMPARE(entry.value(u"original"_s).toString(), u"a.txt"_s);
    QCOMPARE(entry.value(u"preview"_s).toString(), u"A.txt"_s);
    QCOMPARE(entry.value(u"hasConflict"_s).toBool(true), false);
    QCOMPARE(entry.value(u"path"_s).toString(), a);
}

void TestCli::selectionOptionsFilterAndSort()
{
    file(u"x/big.jpg"_s, QByteArray(300, 'x'));
    file(u"x/small.JPG"_s, "1");
    file(u"x/notes.txt"_s, QByteArray(900, 'x'));
    QDir().mkpath(m_files->filePath(u"x/sub.jpg"_s));
    const Run result = run({u"preview"_s,
        u"--format=csv"_s,
        u"--recursive"_s,
        u"--filter"_s,
        u"jpg"_s,
        u"--files-only"_s,
        u"--sort"_s,
        u"size"_s,
        m_files->filePath(u"x"_s)});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out,
        u"Original Name,New Name,Has Conflict\n\"big.jpg\",\"big.jpg\",false\n\"small.JPG\",\"small.JPG\",false\n"_s);
    const Run folders = run({u"preview"_s, u"--format=csv"_s, u"-r"_s, u"--folders-only"_s, m_files->filePath(u"x"_s)});
    QCOMPARE(folders.out, u"Original Name,New Name,Has Conflict\n\"sub.jpg\",\"sub.jpg\",false\n"_s);
}

void TestCli::recursiveAddsFolderContents()
{
    file(u"x/a.txt"_s);
    file(u"x/deep/b.txt"_s);
    const Run flat = run({u"preview"_s, u"--format=csv"_s, m_files->filePath(u"x"_s)});
    QCOMPARE(flat.out, u"Original Name,New Name,Has Conflict\n\"x\",\"x\",false\n"_s);
    const Run deep = run({u"preview"_s, u"--format=csv"_s, u"--recursive"_s, m_files->filePath(u"x"_s)});
    QCOMPARE(deep.out,
        u"Original Name,New Name,Has Conflict\n\"a.txt\",\"a.txt\",false\n\"b.txt\",\"b.txt\",false\n"
        u"\"deep\",\"deep\",false\n"_s);
}

void TestCli::rulesCombineInTheOrderGiven()
{
    const QString a = file(u"a.txt"_s);
    const Run result = run({u"preview"_s,
        u"--format=csv"_s,
        u"--rules"_s,
        writeRules({insertAtEnd(u"-one"_s)}),
        u"--do"_s,
        u"uppercase"_s,
        u"--rules"_s,
        writeRules({insertAtEnd(u"-two"_s)}),
        a});
    QCOMPARE(result.out, u"Original Name,New Name,Has Conflict\n\"a.txt\",\"A-ONE-two.txt\",false\n"_s);
}

void TestCli::rulesFromStandardInput()
{
    const QString a = file(u"a.txt"_s);
    QFile rules(writeRules({insertAtEnd(u"_in"_s)}));
    QVERIFY(rules.open(QIODevice::ReadOnly));
    const Run result = run({u"preview"_s, u"--format=csv"_s, u"--rules"_s, u"-"_s, a}, rules.readAll());
    QCOMPARE(result.out, u"Original Name,New Name,Has Conflict\n\"a.txt\",\"a_in.txt\",false\n"_s);
}

void TestCli::invalidRulesFileNamesKeyAndRule()
{
    QJsonObject broken = RenameRule(RuleType::Trim).toJson();
    broken.remove(u"trimWhitespace"_s);
    const QString rulesFile =
        file(u"broken.json"_s, QJsonDocument(QJsonArray{RenameRule(RuleType::Trim).toJson(), broken}).toJson());
    const Run result = run({u"preview"_s, u"--rules"_s, rulesFile, u"."_s});
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.err.contains(u"rule 2: Key \"trimWhitespace\" not found."_s), qPrintable(result.err));

    const Run notJson = run({u"preview"_s, u"--rules"_s, file(u"bad.json"_s, "[{"), u"."_s});
    QCOMPARE(notJson.exitCode, 2);
    QVERIFY2(notJson.err.contains(u"not valid JSON"_s), qPrintable(notJson.err));
}

void TestCli::unsafeRulesAreRefusedBeforeRunning_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<qint64>("value");
    QTest::newRow("a negative remove count") << u"removeCount"_s << qint64(-1);
    QTest::newRow("numbering past the 64-bit range") << u"numberingStart"_s << std::numeric_limits<qint64>::max();
}

void TestCli::unsafeRulesAreRefusedBeforeRunning()
{
    QFETCH(QString, field);
    QFETCH(qint64, value);
    RenameRule rule(field == u"removeCount"_s ? RuleType::Remove : RuleType::Numbering);
    rule.removeTarget = RemoveTarget::FirstN;
    QJsonObject json = rule.toJson();
    json.insert(field, value);
    const QString rulesFile = file(u"unsafe.json"_s, QJsonDocument(QJsonArray{json}).toJson());
    const Run result = run({u"rename"_s, u"--yes"_s, u"--rules"_s, rulesFile, file(u"a.txt"_s), file(u"b.txt"_s)});
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(!result.err.isEmpty() && !result.err.contains(u"Unknown"_s), qPrintable(result.err));
    QVERIFY(exists(u"a.txt"_s));
    QVERIFY(exists(u"b.txt"_s));
}

void TestCli::renameWithoutTerminalNeedsYes()
{
    const QString a = file(u"a.txt"_s);
    const Run refused = run({u"rename"_s, u"--do"_s, u"uppercase"_s, a});
    QCOMPARE(refused.exitCode, 2);
    QVERIFY(refused.err.contains(u"--yes"_s));
    QVERIFY(exists(u"a.txt"_s));
}

void TestCli::renameRenamesWhatPreviewShows()
{
    file(u"c.txt"_s);
    file(u"a.txt"_s);
    file(u"b.jpg"_s);
    RenameRule numbering(RuleType::Numbering);
    const QStringList arguments{u"--filter"_s,
        u"txt"_s,
        u"--rules"_s,
        writeRules({numbering}),
        m_files->filePath(u"c.txt"_s),
        m_files->filePath(u"a.txt"_s),
        m_files->filePath(u"b.jpg"_s)};
    const Run preview = run(QStringList{u"preview"_s, u"--format=csv"_s} + arguments);
    QCOMPARE(preview.out,
        u"Original Name,New Name,Has Conflict\n\"a.txt\",\"a_001.txt\",false\n\"c.txt\",\"c_002.txt\",false\n"_s);
    const Run result = run(QStringList{u"rename"_s, u"--yes"_s} + arguments);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(exists(u"a_001.txt"_s));
    QVERIFY(exists(u"c_002.txt"_s));
    QVERIFY(exists(u"b.jpg"_s));
    QVERIFY2(result.out.endsWith(u"2 renamed, 0 failed\n"_s), qPrintable(result.out));
    QVERIFY(result.out.contains(u"renamed: "_s + m_files->filePath(u"a.txt"_s) + u" -> a_001.txt"_s));
}

void TestCli::renameReportsFailuresWithStatusOne()
{
    file(u"b_1.txt"_s, "keep");
    const Run result = run({u"rename"_s,
        u"--yes"_s,
        u"--rules"_s,
        writeRules({insertAtEnd(u"_1"_s)}),
        file(u"a.txt"_s),
        file(u"b.txt"_s)});
    QCOMPARE(result.exitCode, 1);
    QVERIFY(exists(u"a_1.txt"_s));
    QVERIFY(exists(u"b.txt"_s));
    QVERIFY2(result.out.contains(u"failed: "_s) && result.out.contains(u"already exists"_s), qPrintable(result.out));
    QVERIFY(result.out.endsWith(u"1 renamed, 1 failed\n"_s));
    QFile kept(m_files->filePath(u"b_1.txt"_s));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("keep"));
}

void TestCli::renameJsonResults()
{
    const QString a = file(u"a.txt"_s);
    const Run result = run({u"rename"_s, u"--yes"_s, u"--json"_s, u"--do"_s, u"uppercase"_s, a});
    QCOMPARE(result.exitCode, 0);
    const QJsonArray array = QJsonDocument::fromJson(result.out.toUtf8()).array();
    QCOMPARE(array.size(), 1);
    const QJsonObject entry = array.first().toObject();
    QCOMPARE(entry.value(u"originalPath"_s).toString(), a);
    QCOMPARE(entry.value(u"newPath"_s).toString(), m_files->filePath(u"A.txt"_s));
    QCOMPARE(entry.value(u"success"_s).toBool(), true);
    QVERIFY(entry.value(u"error"_s).isNull());
}

void TestCli::renameFolderWithItsContents()
{
    file(u"sub/inner/z.txt"_s);
    const Run result =
        run({u"rename"_s, u"--yes"_s, u"--recursive"_s, u"--do"_s, u"append _x"_s, m_files->filePath(u"sub"_s)});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(exists(u"sub/inner_x/z_x.txt"_s), qPrintable(result.out));
}

void TestCli::renameNameThatIsNotUtf8()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    const std::string folder = QFile::encodeName(m_files->path()).toStdString();
    std::ofstream(folder + "/caf\xe9.txt") << "x";
    RenameRule rule(RuleType::Replace);
    rule.findText = u"\uFFFD"_s;
    rule.replaceText = u"é"_s;
    const Run result =
        run({u"rename"_s, u"--yes"_s, u"--rules"_s, writeRules({rule}), u"--recursive"_s, m_files->path()});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(exists(u"café.txt"_s));
    QVERIFY(!std::ifstream(folder + "/caf\xe9.txt").good());
    // The line shows the old name as text, U+FFFD in UTF-8 for the byte that is not UTF-8.
    const QByteArray line =
        "renamed: " + QByteArray::fromStdString(folder) + "/caf\xef\xbf\xbd.txt -> caf\xc3\xa9.txt\n";
    QVERIFY2(result.outBytes.contains(line), result.outBytes.constData());
#endif
}

void TestCli::nothingToRenameIsSuccess()
{
    const Run result = run({u"rename"_s, file(u"a.txt"_s)});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.out.endsWith(u"0 renamed, 0 failed\n"_s));
}

void TestCli::parsePrintsSuggestions()
{
    const Run result = run({u"parse"_s, u"clean"_s, u"up"_s, u"and"_s, u"add"_s, u"today's"_s, u"date"_s});
    QCOMPARE(result.exitCode, 0);
    const QJsonArray array = QJsonDocument::fromJson(result.out.toUtf8()).array();
    QCOMPARE(array.size(), 2);
    QCOMPARE(array[0].toObject().value(u"description"_s).toString(), u"Cleanup filenames"_s);
    QCOMPARE(array[0].toObject().value(u"confidence"_s).toDouble(), 0.8);
    QVERIFY(RenameRule::fromJson(array[1].toObject().value(u"rule"_s)).isSuccess());
    QCOMPARE(run({u"parse"_s, u"gibberish"_s}).out.simplified(), u"[ ]"_s);
    QCOMPARE(run({u"parse"_s}).exitCode, 2);
}

void TestCli::presetsListShowSaveDelete()
{
    const Run list = run({u"presets"_s});
    QCOMPARE(list.exitCode, 0);
    QCOMPARE(list.out,
        u"Clean Spaces\t1 rule\nTitle Case\t1 rule\nAdd Date Suffix\t1 rule\nSequential Numbering\t1 rule\n"
        u"Lowercase + Underscores\t2 rules\n"_s);

    const Run shown = run({u"presets"_s, u"show"_s, u"Lowercase + Underscores"_s});
    QCOMPARE(shown.exitCode, 0);
    const QString shownFile = file(u"shown.json"_s, shown.out.toUtf8());
    QCOMPARE(run({u"presets"_s, u"save"_s, u"Copy"_s, u"--rules"_s, shownFile}).exitCode, 0);
    QVERIFY(run({u"presets"_s}).out.endsWith(u"Copy\t2 rules\n"_s));

    const QString a = file(u"My File.txt"_s);
    const Run preview = run({u"preview"_s, u"--format=csv"_s, u"--preset"_s, u"Copy"_s, a});
    QCOMPARE(preview.out, u"Original Name,New Name,Has Conflict\n\"My File.txt\",\"my_file.txt\",false\n"_s);

    QCOMPARE(run({u"presets"_s, u"delete"_s, u"Copy"_s}).exitCode, 0);
    QVERIFY(!run({u"presets"_s}).out.contains(u"Copy"_s));
    QCOMPARE(run({u"presets"_s, u"delete"_s, u"Copy"_s}).exitCode, 2);
    QCOMPARE(run({u"presets"_s, u"show"_s, u"Copy"_s}).exitCode, 2);
}

void TestCli::presetsLiveUnderXdgDataHome()
{
    QCOMPARE(run({u"presets"_s}).exitCode, 0);
    QVERIFY(QFileInfo::exists(m_data->filePath(u"Quillfern/Presets/presets.json"_s)));
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
