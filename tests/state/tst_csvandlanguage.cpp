#include "fakepanelprovider.h"
#include "presets/preset.h"
#include "state/appviewmodel.h"
#include "testfiles.h"

#include <QSignalSpy>
#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

RenameRule replaceRule(const QString &find, const QString &replacement)
{
    RenameRule rule(RuleType::Replace);
    rule.findText = find;
    rule.replaceText = replacement;
    return rule;
}

QByteArray readAll(const NativePath &path)
{
    QFile file(path.toText());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

} // namespace

class TestCsvAndLanguage final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noPreviewsGiveTheHeaderAlone();
    void rowsQuoteNamesButNotTheFlag();
    void namesAreWrittenUnescaped();
    void rowsFollowTheFilteredSortedPreview();
    void exportWritesUtf8WithoutBom();
    void cancelledExportWritesNothing();
    void emptyInputKeepsEarlierSuggestions();
    void whitespaceInputIsParsed();
    void parsingReplacesSuggestionsInOneChange();
    void applyingAppendsInOrderAndClears();
    void applyingNothingStillClearsTheInput();
    void loadingAPresetReplacesTheRules();
};

void TestCsvAndLanguage::noPreviewsGiveTheHeaderAlone()
{
    const AppViewModel vm;
    QCOMPARE(vm.exportCSV(), u"Original Name,New Name,Has Conflict\n"_s);
}

void TestCsvAndLanguage::rowsQuoteNamesButNotTheFlag()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"one/a, b.txt"_s), files.file(u"two/a, c.txt"_s)});
    vm.addRule(replaceRule(u"c"_s, u"b"_s));
    QCOMPARE(vm.exportCSV(),
        u"Original Name,New Name,Has Conflict\n"
        u"\"a, b.txt\",\"a, b.txt\",false\n"
        u"\"a, c.txt\",\"a, b.txt\",true\n"_s);
}

void TestCsvAndLanguage::namesAreWrittenUnescaped()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"say \"hi\".txt"_s)});
    QCOMPARE(vm.exportCSV(), u"Original Name,New Name,Has Conflict\n\"say \"hi\".txt\",\"say \"hi\".txt\",false\n"_s);
}

void TestCsvAndLanguage::rowsFollowTheFilteredSortedPreview()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"b.txt"_s), files.file(u"a.txt"_s), files.file(u"c.jpg"_s)});
    vm.setFilterText(u".txt"_s);
    vm.updatePreviews();
    QCOMPARE(vm.exportCSV(),
        u"Original Name,New Name,Has Conflict\n\"a.txt\",\"a.txt\",false\n\"b.txt\",\"b.txt\",false\n"_s);
}

void TestCsvAndLanguage::exportWritesUtf8WithoutBom()
{
    TestFiles files;
    FakePanelProvider panels;
    AppViewModel vm;
    vm.setPanelProvider(&panels);
    vm.addFiles({files.file(u"café.txt"_s)});
    const NativePath target = files.file(u"out/existing.csv"_s, "old contents that are longer");
    panels.saveAnswer = target;
    vm.exportCSVToFile(u"CSV files (*.csv)"_s);
    QCOMPARE(panels.proposedNames, QStringList{u"rename_preview.csv"_s});
    QCOMPARE(panels.nameFilters, QStringList{u"CSV files (*.csv)"_s});
    QCOMPARE(readAll(target), vm.exportCSV().toUtf8());
    QVERIFY(!readAll(target).startsWith("\xEF\xBB\xBF"));
    QVERIFY(readAll(target).contains("caf\xC3\xA9.txt"));
}

void TestCsvAndLanguage::cancelledExportWritesNothing()
{
    TestFiles files;
    FakePanelProvider panels;
    AppViewModel vm;
    vm.setPanelProvider(&panels);
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.exportCSVToFile();
    QCOMPARE(panels.proposedNames.size(), 1);
    QVERIFY(!files.exists(u"rename_preview.csv"_s));

    // A folder that vanished makes the write fail silently.
    panels.saveAnswer = files.path(u"gone/rename_preview.csv"_s);
    vm.exportCSVToFile();
    QVERIFY(!files.exists(u"gone"_s));
}

void TestCsvAndLanguage::emptyInputKeepsEarlierSuggestions()
{
    AppViewModel vm;
    vm.setNaturalLanguageInput(u"title case"_s);
    vm.parseNaturalLanguage();
    QCOMPARE(vm.nlSuggestions().size(), 1);
    vm.setNaturalLanguageInput(QString());
    QSignalSpy spy(&vm, &AppViewModel::nlSuggestionsChanged);
    vm.parseNaturalLanguage();
    QCOMPARE(spy.count(), 0);
    QCOMPARE(vm.nlSuggestions().size(), 1);
}

void TestCsvAndLanguage::whitespaceInputIsParsed()
{
    AppViewModel vm;
    vm.setNaturalLanguageInput(u"title case"_s);
    vm.parseNaturalLanguage();
    QCOMPARE(vm.nlSuggestions().size(), 1);
    vm.setNaturalLanguageInput(u"   "_s);
    QSignalSpy spy(&vm, &AppViewModel::nlSuggestionsChanged);
    vm.parseNaturalLanguage();
    QCOMPARE(spy.count(), 1);
    QVERIFY(vm.nlSuggestions().isEmpty());
}

void TestCsvAndLanguage::parsingReplacesSuggestionsInOneChange()
{
    AppViewModel vm;
    vm.setNaturalLanguageInput(u"clean up and add today's date"_s);
    QSignalSpy spy(&vm, &AppViewModel::nlSuggestionsChanged);
    vm.parseNaturalLanguage();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(vm.nlSuggestions().size(), 2);
    QVERIFY(!vm.showNLPanel());
}

void TestCsvAndLanguage::applyingAppendsInOrderAndClears()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(RenameRule(RuleType::Trim));
    vm.setNaturalLanguageInput(u"clean up and add today's date"_s);
    vm.parseNaturalLanguage();
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.applyNLSuggestions();
    QCOMPARE(vm.rules().size(), 3);
    QCOMPARE(vm.rules()[0].type, RuleType::Trim);
    QCOMPARE(vm.rules()[1].type, RuleType::Cleanup);
    QCOMPARE(vm.rules()[2].type, RuleType::DateStamp);
    QVERIFY(vm.nlSuggestions().isEmpty());
    QVERIFY(vm.naturalLanguageInput().isEmpty());
    QCOMPARE(previewsSpy.count(), 1);
    QVERIFY(vm.previews().first().preview.startsWith(u"a_"_s));
}

void TestCsvAndLanguage::applyingNothingStillClearsTheInput()
{
    AppViewModel vm;
    vm.setNaturalLanguageInput(u"gibberish"_s);
    vm.parseNaturalLanguage();
    QVERIFY(vm.nlSuggestions().isEmpty());
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.applyNLSuggestions();
    QVERIFY(vm.naturalLanguageInput().isEmpty());
    QVERIFY(vm.rules().isEmpty());
    QCOMPARE(previewsSpy.count(), 1);
}

void TestCsvAndLanguage::loadingAPresetReplacesTheRules()
{
    AppViewModel vm;
    vm.addRule(RenameRule(RuleType::Trim));
    vm.addRule(RenameRule(RuleType::Cleanup));
    const Preset preset(u"Mine"_s, {replaceRule(u"a"_s, u"b"_s)});
    vm.loadPreset(preset);
    QCOMPARE(vm.rules().size(), 1);
    QCOMPARE(vm.rules().first().id, preset.rules.first().id);
    QCOMPARE(vm.rules().first().type, RuleType::Replace);
}

QTEST_GUILESS_MAIN(TestCsvAndLanguage)
#include "tst_csvandlanguage.moc"
