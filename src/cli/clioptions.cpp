#include "cli/clioptions.h"

#include <QHash>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

std::optional<CliOptions::Command> commandNamed(const QString &name)
{
    static const QHash<QString, CliOptions::Command> commands{
        {u"preview"_s, CliOptions::Command::Preview},
        {u"rename"_s, CliOptions::Command::Rename},
        {u"parse"_s, CliOptions::Command::Parse},
        {u"presets"_s, CliOptions::Command::Presets},
        {u"history"_s, CliOptions::Command::History},
        {u"undo"_s, CliOptions::Command::Undo},
        {u"recover"_s, CliOptions::Command::Recover},
    };
    const auto found = commands.constFind(name);
    return found == commands.cend() ? std::nullopt : std::optional(*found);
}

std::optional<CliOptions::Format> formatNamed(const QString &name)
{
    if (name == u"table"_s)
        return CliOptions::Format::Table;
    if (name == u"csv"_s)
        return CliOptions::Format::Csv;
    if (name == u"json"_s)
        return CliOptions::Format::Json;
    return std::nullopt;
}

/// Reads the command line one argument at a time, keeping the raw bytes of each for paths.
class ArgumentReader final
{
public:
    ArgumentReader(int argc, char **argv)
        : m_argc(argc)
        , m_argv(argv)
    {
    }

    [[nodiscard]] bool atEnd() const { return m_next >= m_argc; }
    [[nodiscard]] const char *raw() const { return m_argv[m_next]; }
    QString take() { return QString::fromLocal8Bit(m_argv[m_next++]); }

    /// The value of an option: the text after "=" if given inline, else the next argument.
    std::optional<QString> valueOf(const QString &option, const std::optional<QString> &inlineValue, QString &error)
    {
        if (inlineValue)
            return inlineValue;
        if (atEnd()) {
            error = u"option %1 needs a value"_s.arg(option);
            return std::nullopt;
        }
        return take();
    }

private:
    int m_argc;
    char **m_argv;
    int m_next = 1;
};

/// The options that only switch something on.
const QHash<QString, bool CliOptions::*> &flagMembers()
{
    static const QHash<QString, bool CliOptions::*> flags{
        {u"--help"_s, &CliOptions::showHelp},
        {u"-h"_s, &CliOptions::showHelp},
        {u"--version"_s, &CliOptions::showVersion},
        {u"--recursive"_s, &CliOptions::recursive},
        {u"-r"_s, &CliOptions::recursive},
        {u"--files-only"_s, &CliOptions::filesOnly},
        {u"--folders-only"_s, &CliOptions::foldersOnly},
        {u"--yes"_s, &CliOptions::assumeYes},
        {u"-y"_s, &CliOptions::assumeYes},
        {u"--json"_s, &CliOptions::json},
        {u"--finish"_s, &CliOptions::finish},
        {u"--revert"_s, &CliOptions::revert},
    };
    return flags;
}

} // namespace

std::optional<CliOptions> CliOptions::parse(int argc, char **argv, QString &error)
{
    CliOptions options;
    ArgumentReader reader(argc, argv);
    bool onlyPositionals = false;
    while (!reader.atEnd()) {
        const char *raw = reader.raw();
        const QString argument = reader.take();
        if (onlyPositionals || !argument.startsWith(u'-') || argument == u"-"_s) {
            if (options.command == Command::None && !onlyPositionals) {
                const auto command = commandNamed(argument);
                if (!command) {
                    error = u"unknown command '%1'"_s.arg(argument);
                    return std::nullopt;
                }
                options.command = *command;
                continue;
            }
            options.words << argument;
            options.paths << NativePath(raw);
            continue;
        }
        if (argument == u"--"_s) {
            onlyPositionals = true;
            continue;
        }

        const qsizetype equals = argument.indexOf(u'=');
        const QString name = equals < 0 ? argument : argument.left(equals);
        const std::optional<QString> inlineValue = equals < 0 ? std::nullopt : std::optional(argument.mid(equals + 1));
        const auto value = [&]() {
            return reader.valueOf(name, inlineValue, error);
        };

        if (const auto flag = flagMembers().constFind(name); flag != flagMembers().cend()) {
            if (inlineValue) {
                error = u"option %1 takes no value"_s.arg(name);
                return std::nullopt;
            }
            options.**flag = true;
        } else if (name == u"--rules"_s || name == u"--preset"_s || name == u"--do"_s) {
            const auto text = value();
            if (!text)
                return std::nullopt;
            const RuleSource::Kind kind = name == u"--rules"_s ? RuleSource::Kind::RulesFile
                : name == u"--preset"_s                        ? RuleSource::Kind::Preset
                                                               : RuleSource::Kind::Command;
            options.ruleSources.append({kind, *text});
        } else if (name == u"--filter"_s) {
            const auto text = value();
            if (!text)
                return std::nullopt;
            options.filterText = *text;
        } else if (name == u"--sort"_s) {
            const auto text = value();
            if (!text)
                return std::nullopt;
            if (!QStringList{u"name"_s, u"date"_s, u"size"_s, u"type"_s}.contains(*text)) {
                error = u"--sort takes name, date, size or type, not '%1'"_s.arg(*text);
                return std::nullopt;
            }
            options.sort = *text;
        } else if (name == u"--format"_s) {
            const auto text = value();
            if (!text)
                return std::nullopt;
            const auto format = formatNamed(*text);
            if (!format) {
                error = u"--format takes table, csv or json, not '%1'"_s.arg(*text);
                return std::nullopt;
            }
            options.format = *format;
        } else {
            error = u"unknown option '%1'"_s.arg(name);
            return std::nullopt;
        }
    }
    if (options.finish && options.revert) {
        error = u"--finish and --revert exclude each other"_s;
        return std::nullopt;
    }
    return options;
}

} // namespace quillfern
