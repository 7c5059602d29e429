#pragma once

#include "cli/clioptions.h"
#include "model/renamerule.h"

#include <QTextStream>

#include <optional>

namespace quillfern {

class AppViewModel;

/// Runs one quillfern-cli command. Exit status: 0 success, 1 when a rename failed, 2 for bad usage or input.
class CliTool final
{
public:
    enum ExitStatus {
        Success = 0,
        RenameFailed = 1,
        BadInput = 2,
    };

    explicit CliTool(CliOptions options);

    [[nodiscard]] int run();

    /// The usage text of the program, or of one command.
    [[nodiscard]] static QString helpText(CliOptions::Command command);

private:
    int runPreview();
    int runRename();
    int runParse();
    int runPresets();

    /// Adds the paths to the state object as the window would and returns the rules for them, not yet given
    /// to the state object; none, after printing why, when the rules are unusable.
    std::optional<QList<RenameRule>> prepare(AppViewModel &vm);
    /// Gives the rules to the state object, which previews them.
    static void showPreview(AppViewModel &vm, const QList<RenameRule> &rules);
    /// The rules of every source, in order; none after printing why.
    std::optional<QList<RenameRule>> collectRules();
    std::optional<QList<RenameRule>> readRulesFile(const QString &fileName);
    bool confirm(qsizetype count);
    /// Shows the preview and asks before anything is renamed; none to go on, else the exit status to end with.
    std::optional<int> confirmPreview(AppViewModel &vm, const QList<RenameRule> &rules);
    /// Why each previewed file's rename would fail, in preview order; empty texts for the others.
    static QList<QString> forecast(AppViewModel &vm, const QList<RenameRule> &rules);
    int fail(const QString &message);

    CliOptions m_options;
    QTextStream m_out;
    QTextStream m_err;
};

} // namespace quillfern
