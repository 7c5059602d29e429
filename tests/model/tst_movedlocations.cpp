#include "model/movedlocations.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestMovedLocations final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsItemsIntoMovedFolders_data();
    void followsItemsIntoMovedFolders();
};

void TestMovedLocations::followsItemsIntoMovedFolders_data()
{
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing above moved") << u"/x/y/z.txt"_s << u"/x/y/z.txt"_s;
    QTest::newRow("a file directly inside a moved folder") << u"/a/f.txt"_s << u"/b/f.txt"_s;
    QTest::newRow("deep inside a moved folder") << u"/a/c/d/f.txt"_s << u"/b/c/d/f.txt"_s;
    QTest::newRow("a moved folder inside a moved folder wins") << u"/a/e/f.txt"_s << u"/b/g/f.txt"_s;
    QTest::newRow("the moved item itself is not followed") << u"/a"_s << u"/a"_s;
    QTest::newRow("a sibling whose name starts alike") << u"/ab/f.txt"_s << u"/ab/f.txt"_s;
}

void TestMovedLocations::followsItemsIntoMovedFolders()
{
    QFETCH(QString, location);
    QFETCH(QString, expected);
    MovedLocations moved;
    QVERIFY(moved.isEmpty());
    moved.record("/a", "/b");
    // "/a/e" was renamed after its parent moved, so it went from "/b/e" to "/b/g"; it is recorded under the
    // location it was listed at.
    moved.record("/a/e", "/b/g");
    QCOMPARE(moved.currentLocation(NativePath::fromText(location)).toText(), expected);
    const std::optional<NativePath> followed = moved.newLocation(NativePath::fromText(location));
    QCOMPARE(followed.has_value(), expected != location);
    if (followed)
        QCOMPARE(followed->toText(), expected);
}

QTEST_APPLESS_MAIN(TestMovedLocations)
#include "tst_movedlocations.moc"
