#include "engine/moveplan.h"

#include <QSet>
#include <QTest>

#include <algorithm>
#include <numeric>
#include <random>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// The order of a batch's moves on disk: chains from their free end, cycles broken by one temporary name.
class TestMovePlan final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ordersMoves_data();
    void ordersMoves();
    void everyRequestIsPlannedOnce();
    void aLongCycleTakesOneMoreMoveThanItHasItems();
};

namespace {

/// Requests written as "a>b c>d": the item at "/f/a" takes the name "b". A name with a slash lies deeper.
QList<MoveRequest> requestsFrom(const QString &text)
{
    QList<MoveRequest> requests;
    for (const QString &pair : text.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList names = pair.split(u'>');
        const NativePath source = NativePath::fromText(u"/f/"_s + names[0]);
        requests.append({source, NativePath::fromText(names[1])});
    }
    return requests;
}

/// The plan written as units separated by " | ", each step as "from>to" with "~" for the temporary name.
QString describe(const QList<MoveRequest> &requests, const MovePlan &plan)
{
    QStringList units;
    for (const MovePlan::Unit &unit : plan.units()) {
        QStringList steps;
        for (qsizetype index = unit.firstStep; index < unit.firstStep + unit.stepCount; ++index) {
            const MovePlan::Step &step = plan.steps()[std::size_t(index)];
            const MoveRequest &request = requests[step.request];
            const QString from =
                step.kind == MovePlan::Step::Kind::FromTemporary ? u"~"_s : request.source.fileNameText();
            const QString to = step.kind == MovePlan::Step::Kind::ToTemporary ? u"~"_s : request.newName.toText();
            steps.append(from + u'>' + to);
        }
        units.append(steps.join(u' '));
    }
    return units.join(u" | "_s);
}

} // namespace

void TestMovePlan::ordersMoves_data()
{
    QTest::addColumn<QString>("requests");
    QTest::addColumn<QString>("plan");

    QTest::newRow("independent moves keep the list order") << u"a>x b>y c>z"_s << u"a>x | b>y | c>z"_s;
    QTest::newRow("a chain listed from its head moves its free end first") << u"1>2 2>3 3>4"_s << u"3>4 | 2>3 | 1>2"_s;
    QTest::newRow("a chain listed from its free end keeps that order") << u"3>4 2>3 1>2"_s << u"3>4 | 2>3 | 1>2"_s;
    QTest::newRow("a swap takes three moves in one unit") << u"a>b b>a"_s << u"a>~ b>a ~>b"_s;
    QTest::newRow("a rotation of three takes four moves") << u"a>b b>c c>a"_s << u"a>~ c>a b>c ~>b"_s;
    QTest::newRow("a cycle first, then a later file that wants one of its names")
        << u"a>b b>a x>a"_s << u"a>~ b>a ~>b | x>a"_s;
    QTest::newRow("two files for one name: the first in the list gets its turn first")
        << u"a>n b>n"_s << u"a>n | b>n"_s;
    QTest::newRow("two files for a name still taken: both wait, the first goes first")
        << u"a>c b>c c>d"_s << u"c>d | a>c | b>c"_s;
    QTest::newRow("an item inside a renamed folder moves first") << u"d>e d/x>y"_s << u"x>y | d>e"_s;
    QTest::newRow("a case-only rename is an ordinary move") << u"Photo.JPG>photo.jpg"_s << u"Photo.JPG>photo.jpg"_s;
}

void TestMovePlan::ordersMoves()
{
    QFETCH(QString, requests);
    QFETCH(QString, plan);
    const QList<MoveRequest> parsed = requestsFrom(requests);
    QCOMPARE(describe(parsed, MovePlan::make(parsed)), plan);
}

void TestMovePlan::everyRequestIsPlannedOnce()
{
    // Random permutations of 500 names: many cycles of every length, each request moved to its destination
    // exactly once.
    for (int round = 0; round < 20; ++round) {
        std::vector<int> order(500);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), std::mt19937(round));
        QList<MoveRequest> requests;
        for (int i = 0; i < 500; ++i)
            requests.append(
                {NativePath::fromText(u"/f/%1"_s.arg(i)), NativePath::fromText(u"%1"_s.arg(order[std::size_t(i)]))});
        // A file already at its name is no request.
        requests.removeIf([](const MoveRequest &request) { return request.source.fileName() == request.newName; });
        const MovePlan plan = MovePlan::make(requests);
        std::vector<int> arrivals(std::size_t(requests.size()), 0);
        qsizetype cycles = 0;
        for (const MovePlan::Unit &unit : plan.units())
            cycles += unit.isCycle() ? 1 : 0;
        for (const MovePlan::Step &step : plan.steps()) {
            if (step.kind != MovePlan::Step::Kind::ToTemporary)
                ++arrivals[std::size_t(step.request)];
        }
        QVERIFY(std::all_of(arrivals.cbegin(), arrivals.cend(), [](int count) { return count == 1; }));
        QCOMPARE(qsizetype(plan.steps().size()), requests.size() + cycles);

        // Replaying the plan on a set of names never meets an occupied destination.
        QSet<QString> present;
        for (int i = 0; i < 500; ++i)
            present.insert(u"%1"_s.arg(i));
        for (const MovePlan::Step &step : plan.steps()) {
            const MoveRequest &request = requests[step.request];
            const QString from = step.kind == MovePlan::Step::Kind::FromTemporary ? u"~%1"_s.arg(step.request)
                                                                                  : request.source.fileNameText();
            const QString to =
                step.kind == MovePlan::Step::Kind::ToTemporary ? u"~%1"_s.arg(step.request) : request.newName.toText();
            QVERIFY2(present.contains(from), qPrintable(from));
            QVERIFY2(!present.contains(to), qPrintable(to));
            present.remove(from);
            present.insert(to);
        }
        QCOMPARE(present.size(), 500);
    }
}

void TestMovePlan::aLongCycleTakesOneMoreMoveThanItHasItems()
{
    QList<MoveRequest> requests;
    for (int i = 0; i < 100; ++i)
        requests.append({NativePath::fromText(u"/f/%1"_s.arg(i)), NativePath::fromText(u"%1"_s.arg((i + 1) % 100))});
    const MovePlan plan = MovePlan::make(requests);
    QCOMPARE(plan.units().size(), std::size_t(1));
    QCOMPARE(plan.steps().size(), std::size_t(101));
}

QTEST_APPLESS_MAIN(TestMovePlan)
#include "tst_moveplan.moc"
