#pragma once

#include "model/renamerule.h"

#include <QString>

namespace quillfern {

/// One suggestion of the natural-language parser: a complete rule, how sure the parser is of it, and a one-line
/// description for the user.
struct ParsedRule
{
    RenameRule rule;
    double confidence;
    QString description;

    friend bool operator==(const ParsedRule &, const ParsedRule &) = default;
};

} // namespace quillfern
