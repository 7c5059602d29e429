#include "engine/preconditions_p.h"

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace quillfern::preconditions {

QString removeViolation(const RenameRule &rule)
{
    switch (rule.removeTarget) {
    case RemoveTarget::FirstN:
    case RemoveTarget::LastN:
        if (rule.removeCount < 0) {
            return u"Fatal error: the remove rule “%1” has a negative character count (%2)."_s.arg(
                rawValue(rule.removeTarget),
                QString::number(rule.removeCount));
        }
        return {};
    case RemoveTarget::FromTo:
        // The positions are clamped to the text length n >= 0 before use, so a negative start lies below the
        // clamped end exactly when it lies below the unclamped one: the outcome does not depend on the text.
        if (rule.removeFromIndex < 0 && rule.removeFromIndex < rule.removeToIndex) {
            return u"Fatal error: the remove rule “%1” starts at a negative position (%2)."_s.arg(
                rawValue(rule.removeTarget),
                QString::number(rule.removeFromIndex));
        }
        return {};
    case RemoveTarget::Text:
    case RemoveTarget::BetweenText:
        return {};
    }
    Q_UNREACHABLE();
    return {};
}

std::optional<qint64> numberFor(const RenameRule &rule, qint64 index)
{
    qint64 offset = 0;
    qint64 number = 0;
    if (qMulOverflow(index, rule.numberingStep, &offset) || qAddOverflow(rule.numberingStart, offset, &number))
        return std::nullopt;
    return number;
}

QString numberingOverflow(const RenameRule &rule, qint64 index)
{
    return u"Fatal error: sequential numbering overflows a signed 64-bit integer at file index %1 "
           u"(start %2, step %3)."_s.arg(QString::number(index),
               QString::number(rule.numberingStart),
               QString::number(rule.numberingStep));
}

namespace {

/// The first file index at which the rule is fatal, or none.
std::optional<qint64> firstFatalIndex(const RenameRule &rule, qint64 fileCount)
{
    if (fileCount <= 0 || !rule.isEnabled)
        return std::nullopt;
    if (rule.type == RuleType::Remove)
        return removeViolation(rule).isEmpty() ? std::nullopt : std::optional<qint64>(0);
    if (rule.type != RuleType::Numbering || numberFor(rule, fileCount - 1))
        return std::nullopt;
    // start + i * step moves away from start as i grows, so once it overflows it stays overflowed: the first
    // overflowing index is found by bisection.
    qint64 safe = -1;
    qint64 overflowing = fileCount - 1;
    while (overflowing - safe > 1) {
        const qint64 middle = safe + (overflowing - safe) / 2;
        (numberFor(rule, middle) ? safe : overflowing) = middle;
    }
    return overflowing;
}

QString violationAt(const RenameRule &rule, qint64 index)
{
    return rule.type == RuleType::Remove ? removeViolation(rule) : numberingOverflow(rule, index);
}

} // namespace

QString firstViolation(const QList<RenameRule> &rules, qint64 fileCount)
{
    // Files are transformed one after the other, each through every rule in order: the earliest file index
    // fails first, and within it the earliest rule.
    const RenameRule *firstRule = nullptr;
    qint64 firstIndex = 0;
    for (const RenameRule &rule : rules) {
        const std::optional<qint64> index = firstFatalIndex(rule, fileCount);
        if (index && (!firstRule || *index < firstIndex)) {
            firstRule = &rule;
            firstIndex = *index;
        }
    }
    return firstRule ? violationAt(*firstRule, firstIndex) : QString();
}

void fail(const QString &message)
{
    std::fputs(qPrintable(message + u'\n'), stderr);
    std::fflush(stderr);
    std::abort();
}

} // namespace quillfern::preconditions
