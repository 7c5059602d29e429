#include "engine/renameengine.h"

#include <QProcess>
#include <QTest>

#include <limits>

using namespace quillfern;
using namespace Qt::StringLiterals;

/// The fatal preconditions stop the program with a message, and the same message is available beforehand.
class TestFatalPreconditions final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void violationAbortsWithItsMessage_data();
    void violationAbortsWithItsMessage();
    void reportsTheViolationBeforehand_data();
    void reportsTheViolationBeforehand();
};

namespace {

RenameRule removeRule(RemoveTarget target, qint64 count, qint64 from = 0, qint64 to = 0)
{
    RenameRule rule(RuleType::Remove);
    rule.removeTarget = target;
    rule.removeCount = count;
    rule.removeFromIndex = from;
    rule.removeToIndex = to;
    return rule;
}

RenameRule numberingRule(qint64 start, qint64 step)
{
    RenameRule rule(RuleType::Numbering);
    rule.numberingStart = start;
    rule.numberingStep = step;
    return rule;
}

constexpr qint64 maximum = std::numeric_limits<qint64>::max();

} // namespace

void TestFatalPreconditions::violationAbortsWithItsMessage_data()
{
    QTest::addColumn<QString>("violation");
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<qint64>("fileCount");
    QTest::newRow("a negative count to remove aborts")
        << u"negative-count"_s << QList{removeRule(RemoveTarget::LastN, -2)} << qint64(1);
    QTest::newRow("a negative start position to remove from aborts")
        << u"negative-position"_s << QList{removeRule(RemoveTarget::FromTo, 1, -1, 3)} << qint64(1);
    QTest::newRow("a numbering past the 64-bit maximum aborts at the overflowing file")
        << u"numbering-overflow"_s << QList{numberingRule(maximum - 1, 1)} << qint64(3);
}

void TestFatalPreconditions::violationAbortsWithItsMessage()
{
    QFETCH(QString, violation);
    QFETCH(QList<RenameRule>, rules);
    QFETCH(qint64, fileCount);
    QProcess helper;
    helper.start(QStringLiteral(QUILLFERN_FATAL_HELPER), {violation});
    QVERIFY(helper.waitForFinished(30000));
    QCOMPARE(helper.exitStatus(), QProcess::CrashExit);
    const QString expected = RenameEngine::preconditionViolation(rules, fileCount);
    QVERIFY(!expected.isEmpty());
    QCOMPARE(QString::fromUtf8(helper.readAllStandardError()).trimmed(), expected);
    // The files before an overflowing number are still named.
    QCOMPARE(QString::fromUtf8(helper.readAllStandardOutput()).count(u'\n'), fileCount - 1);
}

void TestFatalPreconditions::reportsTheViolationBeforehand_data()
{
    QTest::addColumn<QList<RenameRule>>("rules");
    QTest::addColumn<qint64>("fileCount");
    QTest::addColumn<QString>("message");
    QTest::newRow("valid rules have no violation")
        << QList{removeRule(RemoveTarget::FirstN, 0), numberingRule(maximum - 1, 1)} << qint64(2) << QString();
    QTest::newRow("no files, nothing is applied")
        << QList{removeRule(RemoveTarget::FirstN, -1)} << qint64(0) << QString();
    QTest::newRow("a disabled rule is never applied") << [] {
        RenameRule rule = removeRule(RemoveTarget::FirstN, -1);
        rule.isEnabled = false;
        return QList{rule};
    }() << qint64(5) << QString();
    QTest::newRow("a negative count of first characters")
        << QList{removeRule(RemoveTarget::FirstN, -3)} << qint64(1)
        << u"Fatal error: the remove rule “First N Characters” has a negative character count (-3)."_s;
    QTest::newRow("a negative start above the end leaves the text alone")
        << QList{removeRule(RemoveTarget::FromTo, 1, -1, -4)} << qint64(1) << QString();
    QTest::newRow("a negative count matters only for first or last characters")
        << QList{removeRule(RemoveTarget::Text, -1)} << qint64(1) << QString();
    QTest::newRow("a negative start below the end")
        << QList{removeRule(RemoveTarget::FromTo, 1, -2, 0)} << qint64(1)
        << u"Fatal error: the remove rule “From Position to Position” starts at a negative position (-2)."_s;
    QTest::newRow("numbering names the first overflowing file")
        << QList{numberingRule(maximum - 10, 3)} << qint64(100)
        << u"Fatal error: sequential numbering overflows a signed 64-bit integer at file index 4 "
           u"(start 9223372036854775797, step 3)."_s;
    QTest::newRow("numbering downward overflows too")
        << QList{numberingRule(std::numeric_limits<qint64>::min() + 1, -1)} << qint64(3)
        << u"Fatal error: sequential numbering overflows a signed 64-bit integer at file index 2 "
           u"(start -9223372036854775807, step -1)."_s;
    QTest::newRow("the earliest file fails first, whatever the rule order")
        << QList{numberingRule(maximum, 1), removeRule(RemoveTarget::LastN, -1)} << qint64(3)
        << u"Fatal error: the remove rule “Last N Characters” has a negative character count (-1)."_s;
    QTest::newRow("within one file the earlier rule fails first")
        << QList{numberingRule(maximum, 1), numberingRule(maximum - 1, 2)} << qint64(3)
        << u"Fatal error: sequential numbering overflows a signed 64-bit integer at file index 1 "
           u"(start 9223372036854775807, step 1)."_s;
}

void TestFatalPreconditions::reportsTheViolationBeforehand()
{
    QFETCH(QList<RenameRule>, rules);
    QFETCH(qint64, fileCount);
    QFETCH(QString, message);
    QCOMPARE(RenameEngine::preconditionViolation(rules, fileCount), message);
}

QTEST_APPLESS_MAIN(TestFatalPreconditions)
#include "tst_fatalpreconditions.moc"
