#include "state/itemcollector_p.h"

#include <QTest>

using namespace quillfern;
using namespace Qt::StringLiterals;

class TestItemCollector final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheOrderOfTheLocations_data();
    void keepsTheOrderOfTheLocations();
    void isEmptyAfterTaking();
};

void TestItemCollector::keepsTheOrderOfTheLocations_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("none") << 0;
    QTest::newRow("fewer than a batch") << 5;
    QTest::newRow("exactly one batch") << 1024;
    QTest::newRow("several batches and a part") << 3000;
}

void TestItemCollector::keepsTheOrderOfTheLocations()
{
    QFETCH(int, count);
    ItemCollector collector;
    for (int i = 0; i < count; ++i)
        collector.add(NativePath::fromText(u"/f/%1.txt"_s.arg(i)), i % 3 == 0);
    const QList<FileItem> items = collector.take();
    QCOMPARE(items.size(), count);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(items[i].originalName(), u"%1.txt"_s.arg(i));
        QCOMPARE(items[i].previewName, items[i].originalName());
        QCOMPARE(items[i].isDirectory, i % 3 == 0);
        QVERIFY(items[i].isSelected);
    }
}

void TestItemCollector::isEmptyAfterTaking()
{
    ItemCollector collector;
    for (int i = 0; i < 2000; ++i)
        collector.add(NativePath::fromText(u"/f/%1"_s.arg(i)), false);
    QCOMPARE(collector.take().size(), 2000);
    QVERIFY(collector.take().isEmpty());
    collector.add(NativePath("/f/again"), true);
    QCOMPARE(collector.take().size(), 1);
}

QTEST_GUILESS_MAIN(TestItemCollector)
#include "tst_itemcollector.moc"
