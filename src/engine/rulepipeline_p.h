#pragma once

#include "engine/casemapper_p.h"
#include "engine/graphemes_p.h"
#include "engine/icumatcher_p.h"
#include "model/renamerule.h"

#include <QList>
#include <QString>

#include <unicode/smpdtfmt.h>

#include <memory>
#include <optional>
#include <vector>

namespace quillfern {

/// A rule list compiled once for many names: patterns, searches and date formatters are built when the
/// pipeline is made, break iterators when a name first needs them; never per name. Not thread-safe: each
/// thread makes its own.
class RulePipeline final
{
public:
    explicit RulePipeline(const QList<RenameRule> &rules);

    /// The new base name of `name` after every enabled rule, in order; `index` is the file's batch position.
    [[nodiscard]] QString applyRules(const QString &name, qint64 index);

    /// The full new name of the file named `original` at `index`: its base name through the rules, then its
    /// extension or that of the last enabled extension rule.
    [[nodiscard]] QString newName(const QString &original, qint64 index);

    /// The key under which names clash: the name lower-cased.
    [[nodiscard]] QString conflictKey(const QString &name) const;

private:
    /// One enabled rule with what it needs compiled.
    struct Step
    {
        const RenameRule *rule = nullptr;
        /// The pattern of a regex rule or a regex replace.
        std::unique_ptr<IcuMatcher> pattern;
        /// The replacement template of that pattern.
        std::optional<ReplacementTemplate> replacement;
        /// The case-insensitive search of a replace, an insert anchor, a removed text or a start marker.
        std::unique_ptr<IcuMatcher> search;
        /// The end marker of a remove between two strings.
        std::unique_ptr<IcuMatcher> endSearch;
        std::unique_ptr<icu::SimpleDateFormat> dateFormat;
    };

    [[nodiscard]] static Step compile(const RenameRule &rule);
    [[nodiscard]] static std::unique_ptr<IcuMatcher> literalSearch(const QString &literal, bool isCaseSensitive);
    static void compilePattern(Step &step, uint32_t flags);

    [[nodiscard]] QString applyStep(Step &step, const QString &text, qint64 index);
    [[nodiscard]] static QString applyReplace(Step &step, const QString &text);
    [[nodiscard]] QString applyInsert(Step &step, const QString &text);
    [[nodiscard]] QString applyRemove(Step &step, const QString &text);
    [[nodiscard]] QString applyRemoveBetween(Step &step, const QString &text);
    [[nodiscard]] QString applyCase(const RenameRule &rule, const QString &text);
    [[nodiscard]] QString capitalizeFirst(const QString &text);
    [[nodiscard]] static QString applyNumbering(const RenameRule &rule, const QString &text, qint64 index);
    [[nodiscard]] static QString applyCleanup(const RenameRule &rule, const QString &text);
    [[nodiscard]] static QString applyDate(Step &step, const QString &text);
    [[nodiscard]] static QString applyRegex(Step &step, const QString &text);

    QList<RenameRule> m_rules;
    std::vector<Step> m_steps;
    std::optional<QString> m_extension;
    Graphemes m_graphemes;
    CaseMapper m_caseMapper;
};

} // namespace quillfern
