#include "fakepanelprovider.h"
#include "model/fileattributes.h"
#include "state/appviewmodel.h"
#include "state/filteredfiles_p.h"
#include "testfiles.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <memory>

using namespace quillfern;
using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

namespace {

void setModificationTime(const NativePath &path, int secondsAgo)
{
    fs::last_write_time(path.toStdPath(), fs::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
}

/// Sets the modification time to a nanosecond of one fixed second.
bool setModificationNanosecond(const NativePath &path, long nanoseconds)
{
    const timespec times[2] = {{0, UTIME_OMIT}, {1'700'000'000, nanoseconds}};
    return utimensat(AT_FDCWD, path.c_str(), times, 0) == 0;
}

} // namespace

class TestFileCollection final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void startsEmptyWithItsDefaults();
    void folderIsOneItemWithoutSubfolders();
    void folderIsExpandedWithSubfolders();
    void namesThatAreNotUtf8AreListed();
    void knownUrlIsNotAddedAgain();
    void trailingSeparatorNamesTheSameFolder();
    void sameNewUrlTwiceInOneCallIsAddedTwice();
    void missingPathIsAdded();
    void addingAnnouncesFilesAndPreviews();
    void bothOnlyFlagsGiveNothing();
    void onlyFlagsFilterByKind();
    void filterIsCaseInsensitiveOnTheFullName();
    void filterHoldsCanonicallyEquivalentNamesEqual_data();
    void filterHoldsCanonicallyEquivalentNamesEqual();
    void nameSortIsNotNumeric();
    void posixLocaleSortFollowsItsCollation_data();
    void posixLocaleSortFollowsItsCollation();
    void posixLocaleByteOrderIsTheCollationKeyOrder_data();
    void posixLocaleByteOrderIsTheCollationKeyOrder();
    void dateSortPutsNewestFirstAndUndatedLast();
    void dateSortTellsApartTimesWithinOneMillisecond();
    void sizeSortPutsLargestFirstAndFoldersLast();
    void typeSortPutsNoExtensionFirst();
    void sortIsStable();
    void selectAllReachesFilteredOutItems();
    void deselectAndInvert();
    void removeFilesById();
    void clearFilesKeepsRulesAndHistory();
    void selectFilesAddsChosenOrNothingOnCancel();
    void sortOrderRawValues();
    void directoriesHaveNoSize();
};

void TestFileCollection::initTestCase()
{
    // Collation is the user's locale's; the expectations below are those of English.
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale("en_US"), status);
    QVERIFY(U_SUCCESS(status));
}

void TestFileCollection::startsEmptyWithItsDefaults()
{
    const AppViewModel vm;
    QVERIFY(vm.files().isEmpty());
    QVERIFY(vm.rules().isEmpty());
    QVERIFY(vm.previews().isEmpty());
    QVERIFY(!vm.isRenaming());
    QVERIFY(!vm.showRenameResult());
    QCOMPARE(vm.sortOrder(), AppViewModel::SortOrder::Name);
    QVERIFY(vm.filterText().isEmpty());
    QVERIFY(!vm.includeSubfolders());
    QVERIFY(!vm.showOnlyFiles());
    QVERIFY(!vm.showOnlyFolders());
    QVERIFY(vm.naturalLanguageInput().isEmpty());
    QVERIFY(vm.nlSuggestions().isEmpty());
    QVERIFY(!vm.showNLPanel());
    QVERIFY(vm.selectedFileIDs().isEmpty());
    QVERIFY(vm.undoStack().isEmpty());
    QVERIFY(vm.redoStack().isEmpty());
    QCOMPARE(vm.selectedCount(), 0);
    QCOMPARE(vm.conflictCount(), 0);
}

void TestFileCollection::folderIsOneItemWithoutSubfolders()
{
    TestFiles files;
    files.file(u"album/a.jpg"_s);
    AppViewModel vm;
    vm.addFiles({files.path(u"album"_s)});
    QCOMPARE(vm.files().size(), 1);
    QCOMPARE(vm.files().first().originalName(), u"album"_s);
    QVERIFY(vm.files().first().isDirectory);
    QVERIFY(vm.files().first().isSelected);
}

void TestFileCollection::folderIsExpandedWithSubfolders()
{
    TestFiles files;
    files.file(u"album/a.jpg"_s);
    files.file(u"album/.hidden"_s);
    files.file(u"album/deep/er/b.txt"_s);
    files.folder(u"album/empty"_s);
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    vm.addFiles({files.path(u"album"_s)});
    QStringList found = names(vm.files());
    found.sort();
    QCOMPARE(found, (QStringList{u".hidden"_s, u"a.jpg"_s, u"b.txt"_s, u"deep"_s, u"empty"_s, u"er"_s}));
    const auto deep = std::find_if(vm.files().cbegin(), vm.files().cend(), [](const FileItem &item) {
        return item.originalName() == u"deep"_s;
    });
    QVERIFY(deep->isDirectory);
    // Each folder comes before its contents.
    const QStringList order = names(vm.files());
    QVERIFY(order.indexOf(u"deep"_s) < order.indexOf(u"er"_s));
    QVERIFY(order.indexOf(u"er"_s) < order.indexOf(u"b.txt"_s));
}

void TestFileCollection::namesThatAreNotUtf8AreListed()
{
#ifdef Q_OS_WIN
    QSKIP("Windows names are UTF-16");
#else
    TestFiles files;
    const NativePath folder = files.folder(u"legacy"_s);
    std::ofstream((folder / "r\xe9sum\xe9.doc").toStdPath()) << "x";
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    vm.addFiles({folder});
    QCOMPARE(vm.files().size(), 1);
    QCOMPARE(vm.files().first().url.fileName().native(), QByteArray("r\xe9sum\xe9.doc"));
    QCOMPARE(vm.files().first().originalName(), u"r\uFFFDsum\uFFFD.doc"_s);
    // QTemporaryDir cannot remove a name it cannot decode.
    fs::remove(vm.files().first().url.toStdPath());
#endif
}

void TestFileCollection::knownUrlIsNotAddedAgain()
{
    TestFiles files;
    const NativePath a = files.file(u"a.txt"_s);
    AppViewModel vm;
    vm.addFiles({a});
    const QUuid id = vm.files().first().id;
    vm.addFiles({a});
    QCOMPARE(vm.files().size(), 1);
    QCOMPARE(vm.files().first().id, id);
}

void TestFileCollection::trailingSeparatorNamesTheSameFolder()
{
    TestFiles files;
    const NativePath folder = files.folder(u"album"_s);
    AppViewModel vm;
    vm.addFiles({folder});
    vm.addFiles({folder / ""});
    QCOMPARE(vm.files().size(), 1);
    QCOMPARE(vm.files().first().originalName(), u"album"_s);
}

void TestFileCollection::sameNewUrlTwiceInOneCallIsAddedTwice()
{
    TestFiles files;
    const NativePath a = files.file(u"a.txt"_s);
    AppViewModel vm;
    vm.addFiles({a, a});
    QCOMPARE(vm.files().size(), 2);
    QVERIFY(vm.files()[0].id != vm.files()[1].id);
}

void TestFileCollection::missingPathIsAdded()
{
    TestFiles files;
    AppViewModel vm;
    vm.setIncludeSubfolders(true);
    vm.addFiles({files.path(u"not-there.txt"_s)});
    QCOMPARE(vm.files().size(), 1);
    QVERIFY(!vm.files().first().isDirectory);
}

void TestFileCollection::addingAnnouncesFilesAndPreviews()
{
    TestFiles files;
    AppViewModel vm;
    QSignalSpy filesSpy(&vm, &AppViewModel::filesChanged);
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s)});
    QCOMPARE(filesSpy.count(), 1);
    QCOMPARE(previewsSpy.count(), 1);
    QCOMPARE(vm.previews().size(), 2);
    QCOMPARE(vm.previews().first().original, vm.previews().first().preview);
}

void TestFileCollection::bothOnlyFlagsGiveNothing()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.folder(u"f"_s)});
    vm.setShowOnlyFiles(true);
    vm.setShowOnlyFolders(true);
    QVERIFY(vm.filteredFiles().isEmpty());
}

void TestFileCollection::onlyFlagsFilterByKind()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.folder(u"f"_s)});
    vm.setShowOnlyFiles(true);
    QCOMPARE(names(vm.filteredFiles()), QStringList{u"a.txt"_s});
    vm.setShowOnlyFiles(false);
    vm.setShowOnlyFolders(true);
    QCOMPARE(names(vm.filteredFiles()), QStringList{u"f"_s});
}

void TestFileCollection::filterIsCaseInsensitiveOnTheFullName()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"photo.jpg"_s), files.file(u"notes.txt"_s), files.file(u"STRASSE.md"_s)});
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.setFilterText(u"JPG"_s);
    QCOMPARE(names(vm.filteredFiles()), QStringList{u"photo.jpg"_s});
    QCOMPARE(previewsSpy.count(), 0); // the filter alone does not recompute previews
    vm.setFilterText(u" jpg"_s);
    QVERIFY(vm.filteredFiles().isEmpty()); // the filter text is not trimmed
    vm.setFilterText(u"straße"_s);
    QCOMPARE(names(vm.filteredFiles()), QStringList{u"STRASSE.md"_s});
}

void TestFileCollection::filterHoldsCanonicallyEquivalentNamesEqual_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isFound");
    QTest::newRow("composed capitals find a decomposed name")
        << u"\u00c9T\u00c9"_s << u"e\u0301te\u0301 photos.txt"_s << true;
    QTest::newRow("decomposed letters find a composed name in capitals")
        << u"e\u0301te\u0301"_s << u"\u00c9T\u00c9 photos.txt"_s << true;
    QTest::newRow("decomposed capitals find a decomposed name")
        << u"E\u0301TE\u0301"_s << u"e\u0301te\u0301.txt"_s << true;
    QTest::newRow("composed letters find a composed name in capitals")
        << u"\u00e9t\u00e9"_s << u"\u00c9T\u00c9.txt"_s << true;
    QTest::newRow("a letter without its accent finds no decomposed name") << u"cafe"_s << u"cafe\u0301.txt"_s << false;
    QTest::newRow("a letter without its accent finds no composed name") << u"cafe"_s << u"caf\u00e9.txt"_s << false;
}

void TestFileCollection::filterHoldsCanonicallyEquivalentNamesEqual()
{
    QFETCH(QString, filter);
    QFETCH(QString, name);
    QFETCH(bool, isFound);
    AppViewModel vm;
    // Names are compared as listed; the file need not exist.
    vm.addFiles({NativePath::fromText(u"/nonexistent/"_s + name)});
    vm.setFilterText(filter);
    QCOMPARE(names(vm.filteredFiles()), isFound ? QStringList{name} : QStringList());
}

void TestFileCollection::nameSortIsNotNumeric()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"file2.txt"_s), files.file(u"file10.txt"_s), files.file(u"File1.txt"_s)});
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"File1.txt"_s, u"file10.txt"_s, u"file2.txt"_s}));
}

void TestFileCollection::posixLocaleSortFollowsItsCollation_data()
{
    // Names made of printable ASCII only are sorted by their bytes in this locale, any others by its collator;
    // either way the order must be the collator's. Missing paths are listed too, so no file is created.
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("printable ASCII, every character but the separator")
        << u" !\"#$%&'()*+,-.0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~"_s;
    QTest::newRow("letters with accents and a control character") << u"eEf\u00e9\u00c9z\u0001.\u00df"_s;
}

void TestFileCollection::posixLocaleSortFollowsItsCollation()
{
    QFETCH(QString, alphabet);
    UErrorCode status = U_ZERO_ERROR;
    // ICU's name for the C (POSIX) locale.
    icu::Locale::setDefault(icu::Locale("en_US_POSIX"), status);
    const auto restoreEnglish = qScopeGuard([] {
        UErrorCode restoreStatus = U_ZERO_ERROR;
        icu::Locale::setDefault(icu::Locale("en_US"), restoreStatus);
    });
    const std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale("en_US_POSIX"), status));
    QVERIFY(U_SUCCESS(status));

    QRandomGenerator random(7);
    QList<NativePath> locations;
    QStringList expected;
    for (int count = 0; count < 3000; ++count) {
        QString name;
        for (int length = 1 + random.bounded(4); length > 0; --length)
            name += alphabet[random.bounded(int(alphabet.size()))];
        expected << name;
        locations << NativePath::fromText(u"/nonexistent/"_s + name);
    }
    std::stable_sort(expected.begin(), expected.end(), [&](const QString &left, const QString &right) {
        UErrorCode compareStatus = U_ZERO_ERROR;
        return collator->compare(icu::UnicodeString(false, left.utf16(), int32_t(left.size())),
                   icu::UnicodeString(false, right.utf16(), int32_t(right.size())),
                   compareStatus)
            == UCOL_LESS;
    });
    AppViewModel vm;
    vm.addFiles(locations);
    QCOMPARE(names(vm.filteredFiles()), expected);
}

void TestFileCollection::posixLocaleByteOrderIsTheCollationKeyOrder_data()
{
    QTest::addColumn<QString>("alphabet");
    QTest::newRow("printable ASCII, every character but the separator")
        << u" !\"#$%&'()*+,-.0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~"_s;
    QTest::newRow("letters in both cases and what sorts beside them") << u"aAbBzZ_-. 09~"_s;
}

void TestFileCollection::posixLocaleByteOrderIsTheCollationKeyOrder()
{
    QFETCH(QString, alphabet);
    const auto setDefaultLocale = [](const char *name) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(icu::Locale(name), status);
        return U_SUCCESS(status);
    };
    const auto restoreEnglish = qScopeGuard([&] { setDefaultLocale("en_US"); });
    // Short names from a small alphabet repeat, so the two sorts must also keep equal names in the same order.
    QRandomGenerator random(11);
    QList<FileItem> items;
    for (int count = 0; count < 3000; ++count) {
        QString name;
        for (int length = 1 + random.bounded(4); length > 0; --length)
            name += alphabet[random.bounded(int(alphabet.size()))];
        items.append(FileItem(NativePath::fromText(u"/nonexistent/"_s + name), false));
    }
    const FileListFilter filter;
    // The C locale's collation under a name that the byte order is not taken for (collators ignore the
    // calendar): the names are sorted by their collation keys.
    QVERIFY(setDefaultLocale("en_US_POSIX@calendar=gregorian"));
    const QList<qsizetype> byCollationKeys = filter.positions(items);
    QVERIFY(setDefaultLocale("en_US_POSIX"));
    QCOMPARE(filter.positions(items), byCollationKeys);
}

void TestFileCollection::dateSortPutsNewestFirstAndUndatedLast()
{
    TestFiles files;
    const NativePath old = files.file(u"old.txt"_s);
    const NativePath recent = files.file(u"recent.txt"_s);
    setModificationTime(old, 3600);
    setModificationTime(recent, 60);
    AppViewModel vm;
    vm.addFiles({files.path(u"gone.txt"_s), old, recent});
    vm.setSortOrder(AppViewModel::SortOrder::Date);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"recent.txt"_s, u"old.txt"_s, u"gone.txt"_s}));
    // Every sort reads the dates afresh.
    setModificationTime(old, 1);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"old.txt"_s, u"recent.txt"_s, u"gone.txt"_s}));
}

void TestFileCollection::dateSortTellsApartTimesWithinOneMillisecond()
{
    TestFiles files;
    const NativePath earlier = files.file(u"earlier.txt"_s);
    const NativePath later = files.file(u"later.txt"_s);
    QVERIFY(setModificationNanosecond(earlier, 500'001'000));
    QVERIFY(setModificationNanosecond(later, 500'004'000));
    AppViewModel vm;
    vm.addFiles({earlier, later});
    vm.setSortOrder(AppViewModel::SortOrder::Date);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"later.txt"_s, u"earlier.txt"_s}));
}

void TestFileCollection::sizeSortPutsLargestFirstAndFoldersLast()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.folder(u"folder"_s),
        files.file(u"small.txt"_s, "12"),
        files.file(u"empty.txt"_s),
        files.file(u"large.txt"_s, QByteArray(5000, 'x'))});
    vm.setSortOrder(AppViewModel::SortOrder::Size);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"large.txt"_s, u"small.txt"_s, u"folder"_s, u"empty.txt"_s}));
}

void TestFileCollection::typeSortPutsNoExtensionFirst()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"b.txt"_s), files.file(u"a.jpg"_s), files.file(u"README"_s), files.file(u"c.JPG"_s)});
    vm.setSortOrder(AppViewModel::SortOrder::Type);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"README"_s, u"a.jpg"_s, u"c.JPG"_s, u"b.txt"_s}));
}

void TestFileCollection::sortIsStable()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"z.txt"_s), files.file(u"y.txt"_s), files.file(u"x.txt"_s)});
    vm.setSortOrder(AppViewModel::SortOrder::Type);
    QCOMPARE(names(vm.filteredFiles()), (QStringList{u"z.txt"_s, u"y.txt"_s, u"x.txt"_s}));
}

void TestFileCollection::selectAllReachesFilteredOutItems()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.jpg"_s)});
    vm.deselectAll();
    QCOMPARE(vm.selectedCount(), 0);
    vm.setFilterText(u"jpg"_s);
    QSignalSpy filesSpy(&vm, &AppViewModel::filesChanged);
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.selectAll();
    QCOMPARE(vm.selectedCount(), 2);
    QVERIFY(filesSpy.count() >= 1);
    QCOMPARE(previewsSpy.count(), 0);
}

void TestFileCollection::deselectAndInvert()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s), files.file(u"c.txt"_s)});
    QVERIFY(vm.filteredFiles()[1].isSelected);
    vm.setFileSelected(vm.files()[1].id, false);
    QCOMPARE(vm.selectedCount(), 2);
    QVERIFY(!vm.filteredFiles()[1].isSelected); // the filtered list shows every selection change
    vm.invertSelection();
    QCOMPARE(vm.selectedCount(), 1);
    QVERIFY(vm.files()[1].isSelected);
    QVERIFY(vm.filteredFiles()[1].isSelected);
    QVERIFY(!vm.filteredFiles()[0].isSelected);
    vm.deselectAll();
    QCOMPARE(vm.selectedCount(), 0);
    QVERIFY(!vm.filteredFiles()[1].isSelected);
    vm.selectAll();
    QVERIFY(vm.filteredFiles()[0].isSelected);
}

void TestFileCollection::removeFilesById()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s), files.file(u"b.txt"_s), files.file(u"c.txt"_s)});
    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    FileItem stale = vm.files()[1];
    stale.previewName = u"whatever"_s;
    vm.removeFiles({stale});
    QCOMPARE(names(vm.files()), (QStringList{u"a.txt"_s, u"c.txt"_s}));
    QCOMPARE(vm.previews().size(), 2);
    QCOMPARE(previewsSpy.count(), 1);
}

void TestFileCollection::clearFilesKeepsRulesAndHistory()
{
    TestFiles files;
    AppViewModel vm;
    vm.addFiles({files.file(u"a.txt"_s)});
    vm.addRule(RenameRule(RuleType::Trim));
    vm.setSelectedFileIDs({vm.files().first().id});
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    vm.undoRename();
    QCOMPARE(vm.redoStack().size(), 1);
    vm.performRename();
    QTRY_VERIFY(!vm.isRenaming());
    QCOMPARE(vm.undoStack().size(), 1);

    QSignalSpy previewsSpy(&vm, &AppViewModel::previewsChanged);
    vm.clearFiles();
    QVERIFY(vm.files().isEmpty());
    QVERIFY(vm.previews().isEmpty());
    QCOMPARE(vm.rules().size(), 1);
    QCOMPARE(vm.undoStack().size(), 1);
    QCOMPARE(vm.selectedFileIDs().size(), 1);
    QCOMPARE(previewsSpy.count(), 1);
}

void TestFileCollection::selectFilesAddsChosenOrNothingOnCancel()
{
    TestFiles files;
    FakePanelProvider panels;
    AppViewModel vm;
    vm.setPanelProvider(&panels);
    vm.selectFiles();
    QVERIFY(vm.files().isEmpty());
    QCOMPARE(panels.openTitles, QStringList{u"Add Files & Folders"_s});
    panels.openAnswer = QList<NativePath>{files.file(u"b.txt"_s), files.file(u"a.txt"_s)};
    vm.selectFiles();
    QCOMPARE(names(vm.files()), (QStringList{u"b.txt"_s, u"a.txt"_s}));
}

void TestFileCollection::sortOrderRawValues()
{
    QStringList values;
    for (auto order : allCases<AppViewModel::SortOrder>())
        values << rawValue(order);
    QCOMPARE(values, (QStringList{u"Name"_s, u"Date Modified"_s, u"Size"_s, u"Type"_s}));
    QCOMPARE(fromRawValue<AppViewModel::SortOrder>(u"Size"), std::optional(AppViewModel::SortOrder::Size));
    QCOMPARE(fromRawValue<AppViewModel::SortOrder>(u"size"), std::nullopt);
}

void TestFileCollection::directoriesHaveNoSize()
{
    TestFiles files;
    QCOMPARE(fileattributes::fileSize(files.folder(u"d"_s)), std::nullopt);
    QCOMPARE(fileattributes::fileSize(files.file(u"f"_s, "abc")), std::optional<qint64>(3));
    QCOMPARE(fileattributes::fileSize(files.path(u"missing"_s)), std::nullopt);
}

QTEST_GUILESS_MAIN(TestFileCollection)
#include "tst_filecollection.moc"
