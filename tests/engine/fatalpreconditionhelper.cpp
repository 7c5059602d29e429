// Applies a rule that violates a fatal precondition, chosen by the first argument, and exits normally only if
// the engine failed to stop.
#include "engine/renameengine.h"

#include <QList>
#include <QString>

#include <cstdio>
#include <limits>

using namespace quillfern;
using namespace Qt::StringLiterals;

namespace {

QList<RenameRule> rulesFor(const QString &violation)
{
    if (violation == u"negative-count") {
        RenameRule rule(RuleType::Remove);
        rule.removeTarget = RemoveTarget::LastN;
        rule.removeCount = -2;
        return {rule};
    }
    if (violation == u"negative-position") {
        RenameRule rule(RuleType::Remove);
        rule.removeTarget = RemoveTarget::FromTo;
        rule.removeFromIndex = -1;
        rule.removeToIndex = 3;
        return {rule};
    }
    RenameRule rule(RuleType::Numbering);
    rule.numberingStart = std::numeric_limits<qint64>::max() - 1;
    return {rule};
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        return 2;
    const QString violation = QString::fromLocal8Bit(argv[1]);
    const QList<RenameRule> rules = rulesFor(violation);
    // The overflow happens at the third file (start + 2 * step), so file indexes 0 and 1 must pass.
    for (qint64 index = 0; index < 3; ++index) {
        std::puts(qPrintable(RenameEngine::applyRules(rules, u"name"_s, index, QString())));
        std::fflush(stdout);
    }
    return 0;
}
