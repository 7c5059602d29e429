#pragma once

#include "parser/parsedrule.h"

#include <QList>
#include <QString>

#include <optional>

namespace quillfern {

/// Turns a short English command into suggested rename rules. Stateless and safe to call from any thread.
class NaturalLanguageParser final
{
public:
    /// Every suggestion the command yields, in a fixed order of rule kinds; empty when nothing was understood.
    /// Never fails.
    [[nodiscard]] static QList<ParsedRule> parse(const QString &input);

private:
    // Each sub-parser gets the text it searches: replace commands the input as typed, the others the input
    // lower-cased and trimmed. Each returns at most one suggestion.
    static std::optional<ParsedRule> parseReplace(const QString &original);
    static std::optional<ParsedRule> parseInsert(const QString &lowered);
    static std::optional<ParsedRule> parseRemove(const QString &lowered);
    static std::optional<ParsedRule> parseCase(const QString &lowered);
    static std::optional<ParsedRule> parseNumbering(const QString &lowered);
    static std::optional<ParsedRule> parseCleanup(const QString &lowered);
    static std::optional<ParsedRule> parseDate(const QString &lowered);

    /// An ordinal word ("first" to "tenth") or decimal digits as a number; 1 for anything else.
    static qint64 ordinalToInt(const QString &word);
};

} // namespace quillfern
