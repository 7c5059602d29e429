#pragma once

#include <QString>

namespace quillfern {

/// Whether a new name can be given to an item in its folder.
namespace newnamecheck {

/// Why the name cannot be used (empty, "." or "..", a path separator or forbidden character, too long); empty
/// when it can.
QString whyInvalid(const QString &name);

} // namespace newnamecheck
} // namespace quillfern
