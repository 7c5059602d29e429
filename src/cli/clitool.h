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

    /// Fills the state object with the paths and rules as the window would; prints why and returns false
    /// when the rules are unusable.
    bool prepare(AppViewModel &vm);
    /// The rules of every source, in order; none after printing why.
    std::optional<QList<RenameRule>> collectRules();
    std::optional<QList<RenameRule>> readRulesFile(const QString &fileName);
    bool confirm(qsizetype count);
    int fail(const QString &message);

    CliOptions m_options;
    QTextStream m_out;
    QTextStream m_err;
};

} // namespace quillfern
