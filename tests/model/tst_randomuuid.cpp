#include "model/randomuuid.h"

#include <QSet>
#include <QTest>

using namespace quillfern;

class TestRandomUuid final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAVersionFourUuid();
    void neverRepeats();
};

void TestRandomUuid::isAVersionFourUuid()
{
    for (int i = 0; i < 100; ++i) {
        const QUuid id = randomUuid();
        QCOMPARE(id.version(), QUuid::Random);
        QCOMPARE(id.variant(), QUuid::DCE);
        QVERIFY(!id.isNull());
    }
}

void TestRandomUuid::neverRepeats()
{
    constexpr int count = 100'000;
    QSet<QUuid> ids;
    for (int i = 0; i < count; ++i)
        ids.insert(randomUuid());
    QCOMPARE(ids.size(), count);
}

QTEST_APPLESS_MAIN(TestRandomUuid)
#include "tst_randomuuid.moc"
