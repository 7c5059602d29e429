#pragma once

#include <QUuid>

namespace quillfern {

/// A new random (version 4) UUID for an item, rule or preset. Drawn from Qt's global generator, which the
/// system seeds, rather than from the system source for every id: a list of 100,000 files needs 100,000 ids,
/// and the system source (a CPU instruction that virtual machines may trap) made that a measurable cost.
QUuid randomUuid();

} // namespace quillfern
