#pragma once

#include "model/nativepath.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillfern {

/// One source of rules on the command line; sources combine in the order given.
struct RuleSource
{
    enum class Kind {
        /// A JSON array of rules in a file ("-" for standard input).
        RulesFile,
        /// The rules of a saved preset.
        Preset,
        /// Every suggestion of the natural-language parser for a command.
        Command,
    };

    Kind kind;
    QString value;
};

/// The parsed command line of quillfern-cli.
struct CliOptions
{
    enum class Command {
        None,
        Preview,
        Rename,
        Parse,
        Presets,
        History,
        Undo,
        Recover,
    };
    enum class Format {
        Table,
        Csv,
        Json,
    };

    Command command = Command::None;
    bool showHelp = false;
    bool showVersion = false;
    QList<RuleSource> ruleSources;
    bool recursive = false;
    QString filterText;
    bool filesOnly = false;
    bool foldersOnly = false;
    QString sort = QStringLiteral("name");
    Format format = Format::Table;
    bool assumeYes = false;
    bool json = false;
    /// recover: complete the interrupted batch, or give its items their old names back.
    bool finish = false;
    bool revert = false;
    /// Positional arguments after the command, as text (parse's words, presets' sub-command and name).
    QStringList words;
    /// Positional arguments after the command as native paths, keeping bytes that are not valid UTF-8.
    QList<NativePath> paths;

    /// Parses the arguments after the program name; on bad usage returns none and sets `error`.
    [[nodiscard]] static std::optional<CliOptions> parse(int argc, char **argv, QString &error);
};

} // namespace quillfern
