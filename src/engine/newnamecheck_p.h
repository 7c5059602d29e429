#pragma once

#include <QString>

namespace quillfern {

/// Whether a new name can be given to an item in its folder.
namespace newnamecheck {

/// Why the name cannot be used (empty, "." or "..", a path separator or forbidden character, too long); empty
/// when it can. The name is escaped text, as rules give it (see NativePath::toEscapedText()); its length is that
/// of the bytes NativePath::fromEscapedText() writes, an escaped byte one byte.
QString whyInvalid(const QString &name);

} // namespace newnamecheck
} // namespace quillfern
