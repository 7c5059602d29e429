#pragma once

#include "model/renamerule.h"

#include <QList>
#include <QString>

#include <optional>

namespace quillfern {

/// The fatal preconditions of rule application, and the one place that words them: a negative count or start
/// position in a remove rule, and a numbering that overflows signed 64-bit integers.
namespace preconditions {

/// Why applying the remove rule would be fatal, whatever the text; empty when it is safe.
QString removeViolation(const RenameRule &rule);

/// The number a numbering rule gives the file at `index`; none when it overflows signed 64-bit integers.
std::optional<qint64> numberFor(const RenameRule &rule, qint64 index);

/// Why numbering the file at `index` is fatal.
QString numberingOverflow(const RenameRule &rule, qint64 index);

/// The first fatal violation met when the rules are applied to files 0 to fileCount - 1 in order; empty when
/// none.
QString firstViolation(const QList<RenameRule> &rules, qint64 fileCount);

/// Prints the message on standard error and aborts the program.
[[noreturn]] void fail(const QString &message);

} // namespace preconditions
} // namespace quillfern
