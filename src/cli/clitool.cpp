#include "cli/clitool.h"

#include "cli/historycommands.h"
#include "cli/previewprinter.h"
#include "cli/resultlinewriter.h"
#include "cli/stopsignals.h"
#include "engine/batchhistory.h"
#include "engine/batchrunner.h"
#include "engine/renameengine.h"
#include "engine/systemfilemover.h"
#include "model/counting.h"
#include "parser/naturallanguageparser.h"
#include "presets/presetmanager.h"
#include "state/appviewmodel.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#define QUILLFERN_ISATTY _isatty
#define QUILLFERN_FILENO _fileno
#else
#include <unistd.h>
#define QUILLFERN_ISATTY isatty
#define QUILLFERN_FILENO fileno
#endif

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

bool isTerminal(FILE *stream)
{
    return QUILLFERN_ISATTY(QUILLFERN_FILENO(stream)) != 0;
}

AppViewModel::SortOrder sortOrderNamed(const QString &name)
{
    if (name == u"date"_s)
        return AppViewModel::SortOrder::Date;
    if (name == u"size"_s)
        return AppViewModel::SortOrder::Size;
    if (name == u"type"_s)
        return AppViewModel::SortOrder::Type;
    return AppViewModel::SortOrder::Name;
}

QJsonArray rulesJson(const QList<RenameRule> &rules)
{
    QJsonArray array;
    for (const RenameRule &rule : rules)
        array.append(rule.toJson());
    return array;
}

const Preset *presetNamed(const PresetManager &manager, const QString &name)
{
    const QList<Preset> &presets = manager.presets();
    const auto found =
        std::find_if(presets.cbegin(), presets.cend(), [&](const Preset &preset) { return preset.name == name; });
    return found == presets.cend() ? nullptr : &*found;
}

} // namespace

CliTool::CliTool(CliOptions options)
    : m_options(std::move(options))
    , m_out(stdout)
    , m_err(stderr)
{
}

int CliTool::run()
{
    if (m_options.showVersion) {
        m_out << "quillfern-cli " << QCoreApplication::applicationVersion() << '\n';
        return Success;
    }
    if (m_options.showHelp || m_options.command == CliOptions::Command::None) {
        m_out << helpText(m_options.command);
        return m_options.showHelp ? Success : BadInput;
    }
    HistoryCommands history(m_options, m_out, m_err);
    if (m_options.command != CliOptions::Command::Recover)
        history.warnAboutInterrupted();
    switch (m_options.command) {
    case CliOptions::Command::Preview:
        return runPreview();
    case CliOptions::Command::Rename:
        return runRename();
    case CliOptions::Command::Parse:
        return runParse();
    case CliOptions::Command::Presets:
        return runPresets();
    case CliOptions::Command::History:
        return history.runHistory();
    case CliOptions::Command::Undo:
        return history.runUndo();
    case CliOptions::Command::Recover:
        return history.runRecover();
    case CliOptions::Command::None:
        break;
    }
    return BadInput;
}

int CliTool::fail(const QString &message)
{
    m_err << "quillfern-cli: " << message << '\n';
    return BadInput;
}

std::optional<QList<RenameRule>> CliTool::readRulesFile(const QString &fileName)
{
    QFile file(fileName);
    const bool isOpen = fileName == u"-"_s ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    const QString label = fileName == u"-"_s ? u"standard input"_s : fileName;
    if (!isOpen) {
        fail(u"cannot read rules file %1: %2"_s.arg(label, file.errorString()));
        return std::nullopt;
    }
    QJsonParseError parseError{};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        fail(u"%1: not valid JSON: %2 at offset %3"_s.arg(label, parseError.errorString()).arg(parseError.offset));
        return std::nullopt;
    }
    if (!document.isArray()) {
        fail(u"%1: expected a JSON array of rules"_s.arg(label));
        return std::nullopt;
    }
    QList<RenameRule> rules;
    const QJsonArray array = document.array();
    for (qsizetype index = 0; index < array.size(); ++index) {
        auto decoded = RenameRule::fromJson(array[index]);
        if (!decoded.isSuccess()) {
            fail(u"%1: rule %2: %3"_s.arg(label).arg(index + 1).arg(decoded.error()));
            return std::nullopt;
        }
        rules.append(std::move(decoded).value());
    }
    return rules;
}

std::optional<QList<RenameRule>> CliTool::collectRules()
{
    QList<RenameRule> rules;
    std::unique_ptr<PresetManager> presets;
    for (const RuleSource &source : std::as_const(m_options.ruleSources)) {
        switch (source.kind) {
        case RuleSource::Kind::RulesFile: {
            const auto fromFile = readRulesFile(source.value);
            if (!fromFile)
                return std::nullopt;
            rules += *fromFile;
            break;
        }
        case RuleSource::Kind::Preset: {
            if (!presets)
                presets = std::make_unique<PresetManager>();
            const Preset *preset = presetNamed(*presets, source.value);
            if (!preset) {
                fail(u"unknown preset '%1'"_s.arg(source.value));
                return std::nullopt;
            }
            rules += preset->rules;
            break;
        }
        case RuleSource::Kind::Command: {
            const QList<ParsedRule> suggestions = NaturalLanguageParser::parse(source.value);
            if (suggestions.isEmpty()) {
                fail(u"could not understand the command '%1'"_s.arg(source.value));
                return std::nullopt;
            }
            for (const ParsedRule &suggestion : suggestions)
                rules.append(suggestion.rule);
            break;
        }
        }
    }
    return rules;
}

std::optional<QList<RenameRule>> CliTool::prepare(AppViewModel &vm)
{
    auto rules = collectRules();
    if (!rules)
        return std::nullopt;
    vm.setIncludeSubfolders(m_options.recursive);
    vm.setFilterText(m_options.filterText);
    vm.setShowOnlyFiles(m_options.filesOnly);
    vm.setShowOnlyFolders(m_options.foldersOnly);
    vm.setSortOrder(sortOrderNamed(m_options.sort));
    vm.addFiles(m_options.paths);
    // Rules that would stop the engine are refused here, before any preview or rename runs them.
    // Numbering counts positions in the previewed list, so that list's length is what must not overflow.
    const QString violation = RenameEngine::preconditionViolation(*rules, vm.filteredFiles().size());
    if (!violation.isEmpty()) {
        fail(violation);
        return std::nullopt;
    }
    return rules;
}

void CliTool::showPreview(AppViewModel &vm, const QList<RenameRule> &rules)
{
    // Loading all rules at once computes the preview once, not once per rule.
    vm.loadPreset(Preset(u"command line"_s, rules));
}

int CliTool::runPreview()
{
    AppViewModel vm;
    const auto rules = prepare(vm);
    if (!rules)
        return BadInput;
    showPreview(vm, *rules);
    switch (m_options.format) {
    case CliOptions::Format::Csv:
        m_out << vm.exportCSV();
        break;
    case CliOptions::Format::Json:
        m_out << PreviewPrinter::json(vm.previews(), vm.filteredFiles(), forecast(vm, *rules));
        break;
    case CliOptions::Format::Table:
        m_out << PreviewPrinter::table(vm.previews(), forecast(vm, *rules), isTerminal(stdout));
        break;
    }
    return Success;
}

QList<QString> CliTool::forecast(AppViewModel &vm, const QList<RenameRule> &rules)
{
    // The same list and rules that rename would take, checked against the disk as it is now.
    SystemFileMover disk;
    return RenameEngine::forecast(vm.filteredFiles(), rules, disk);
}

bool CliTool::confirm(qsizetype count)
{
    m_out << "Rename " << counted(count, u"file"_s) << "? [y/N] " << Qt::flush;
    QTextStream in(stdin);
    const QString answer = in.readLine().trimmed().toLower();
    return answer == u"y"_s || answer == u"yes"_s;
}

std::optional<int> CliTool::confirmPreview(AppViewModel &vm, const QList<RenameRule> &rules)
{
    const QList<PreviewEntry> shown = vm.previews();
    const auto changes = std::count_if(shown.cbegin(), shown.cend(), [](const PreviewEntry &entry) {
        return entry.original != entry.preview;
    });
    if (changes == 0)
        return std::nullopt;
    if (!isTerminal(stdin))
        return fail(u"refusing to rename without confirmation: pass --yes when not on a terminal"_s);
    m_out << PreviewPrinter::table(shown, forecast(vm, rules), isTerminal(stdout));
    if (!confirm(changes)) {
        m_out << "Nothing renamed.\n";
        return Success;
    }
    // Time passed while the user read the preview: what is renamed must still be what was confirmed.
    vm.updatePreviews();
    if (vm.previews() != shown)
        return fail(u"the files or their new names changed while waiting for confirmation; nothing was renamed"_s);
    return std::nullopt;
}

int CliTool::runRename()
{
    AppViewModel vm;
    const auto rules = prepare(vm);
    if (!rules)
        return BadInput;
    // With --yes nobody reads a preview, so none is computed: the engine names the same list the same way.
    if (!m_options.assumeYes) {
        showPreview(vm, *rules);
        if (const std::optional<int> refused = confirmPreview(vm, *rules))
            return *refused;
    }
    SystemFileMover mover;
    BatchRunner runner(mover);
    runner.setHistoryFolder(BatchHistory::standardFolder());
    const StopSignals stopSignals;
    runner.setStopFlag(StopSignals::flag());
    // Each line is written as its move is done, after what the stream holds; JSON is one array at the end.
    m_out.flush();
    std::optional<ResultLineWriter> lines;
    if (!m_options.json)
        lines.emplace(stdout);
    const auto writeLine = [&](const RenameResult &result) {
        lines->write(result);
    };
    // What the preview shows, in its order, is what is renamed: the filtered, sorted list with its numbering.
    const QList<RenameResult> results = RenameEngine::rename(vm.filteredFiles(),
        *rules,
        runner,
        lines ? std::function<void(const RenameResult &)>(writeLine) : nullptr);
    if (!runner.error().isEmpty())
        return fail(runner.error());
    if (m_options.json) {
        m_out << PreviewPrinter::resultJson(results);
        m_err << PreviewPrinter::resultSummary(results) << '\n';
    } else {
        lines->flush();
        m_out << PreviewPrinter::resultSummary(results) << '\n';
    }
    if (runner.wasStopped())
        m_err << "quillfern-cli: stopped; the other files were not attempted.\n";
    const auto failed =
        std::count_if(results.cbegin(), results.cend(), [](const RenameResult &result) { return !result.success; });
    return HistoryCommands::exitStatusOf(failed);
}

int CliTool::runParse()
{
    if (m_options.words.isEmpty())
        return fail(u"parse needs a command, for example: quillfern-cli parse \"replace a with b\""_s);
    QJsonArray array;
    for (const ParsedRule &suggestion : NaturalLanguageParser::parse(m_options.words.join(u' '))) {
        array.append(QJsonObject{{u"rule"_s, suggestion.rule.toJson()},
            {u"confidence"_s, suggestion.confidence},
            {u"description"_s, suggestion.description}});
    }
    m_out << QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
    return Success;
}

int CliTool::runPresets()
{
    const QStringList &words = m_options.words;
    const QString action = words.value(0, u"list"_s);
    PresetManager manager;
    if (action == u"list"_s && words.size() <= 1) {
        for (const Preset &preset : manager.presets())
            m_out << preset.name << '\t' << counted(preset.rules.size(), u"rule"_s) << '\n';
        return Success;
    }
    if (words.size() != 2)
        return fail(u"usage: quillfern-cli presets [list | show NAME | save NAME --rules FILE | delete NAME]"_s);
    const QString &name = words[1];
    const Preset *existing = presetNamed(manager, name);
    if (action == u"show"_s) {
        if (!existing)
            return fail(u"unknown preset '%1'"_s.arg(name));
        m_out << QString::fromUtf8(QJsonDocument(rulesJson(existing->rules)).toJson(QJsonDocument::Indented));
        return Success;
    }
    if (action == u"delete"_s) {
        if (!existing)
            return fail(u"unknown preset '%1'"_s.arg(name));
        manager.deletePreset(*existing);
        return Success;
    }
    if (action == u"save"_s) {
        if (m_options.ruleSources.isEmpty())
            return fail(u"presets save needs the rules, for example --rules FILE"_s);
        const auto rules = collectRules();
        if (!rules)
            return BadInput;
        // Saving under an existing name replaces that preset's rules and keeps its place and id.
        Preset preset = existing ? *existing : Preset(name, {});
        preset.rules = *rules;
        manager.save(preset);
        return Success;
    }
    return fail(u"unknown presets action '%1'"_s.arg(action));
}

QString CliTool::helpText(CliOptions::Command command)
{
    switch (command) {
    case CliOptions::Command::Preview:
        return u"Usage: quillfern-cli preview [RULES] [SELECTION] [--format table|csv|json] PATH...\n\n"
               "Prints the new name of every file without renaming anything.\n"
               "  --format table   old and new names side by side, with a summary (default)\n"
               "  --format csv     the preview as CSV, as the window exports it\n"
               "  --format json    an array of {original, preview, hasConflict, path, failureReason}\n\n"
               "A rename that would fail (an invalid name, a name taken by a file that stays, a name an\n"
               "earlier file of the batch takes) is marked with its reason.\n"_s;
    case CliOptions::Command::Rename:
        return u"Usage: quillfern-cli rename [RULES] [SELECTION] [--yes] [--json] PATH...\n\n"
               "Renames exactly what preview shows, in its order. Asks for confirmation on a terminal;\n"
               "without a terminal it refuses unless --yes is given. Never replaces an existing file.\n"
               "Chains and swaps of names succeed. Each batch is journaled first, so that an interrupted\n"
               "batch can be recovered and any batch undone ('quillfern-cli history', 'undo', 'recover').\n"
               "  --yes            rename without asking\n"
               "  --json           print the results as an array of {originalPath, newPath, success, error}\n"_s;
    case CliOptions::Command::Parse:
        return u"Usage: quillfern-cli parse COMMAND...\n\n"
               "Prints the rules suggested for an English command as a JSON array of\n"
               "{rule, confidence, description}, for example: quillfern-cli parse remove first 3 characters\n"_s;
    case CliOptions::Command::Presets:
        return u"Usage: quillfern-cli presets [list | show NAME | save NAME --rules FILE | delete NAME]\n\n"
               "Lists, shows (as a rules file), saves or deletes the presets the window uses.\n"_s;
    case CliOptions::Command::History:
        return u"Usage: quillfern-cli history [--json]\n\n"
               "Lists the batches renamed on this machine, newest first: when, how many files, how many\n"
               "were moved or failed, and whether the batch ended, was stopped, interrupted or undone.\n"
               "The last 100 batches are kept, and every batch of the last 30 days.\n"_s;
    case CliOptions::Command::Undo:
        return u"Usage: quillfern-cli undo [BATCH] [--yes]\n\n"
               "Gives the files of the last batch (or of BATCH, an id from 'history') their old names back\n"
               "on disk, as a new batch. A file that was edited, replaced or moved since is left alone and\n"
               "said so. Asks for confirmation on a terminal; without one it refuses unless --yes is given.\n"_s;
    case CliOptions::Command::Recover:
        return u"Usage: quillfern-cli recover [--finish | --revert]\n\n"
               "Finds batches that were interrupted (the process was killed, the machine went down) and\n"
               "gives every file of each one the name it should have. Files are found by what they are,\n"
               "under their old, new or temporary names.\n"
               "  --finish         give every file its new name\n"
               "  --revert         give every file its old name back (the default on a terminal)\n"_s;
    case CliOptions::Command::None:
        break;
    }
    return u"Usage: quillfern-cli COMMAND [OPTIONS] [PATH...]\n\n"
           "Renames many files at once with the same engine as the Quillfern window.\n\n"
           "Commands:\n"
           "  preview    show the new names\n"
           "  rename     rename the files on disk\n"
           "  parse      turn an English command into rules\n"
           "  presets    list, show, save or delete presets\n"
           "  history    list the batches renamed so far\n"
           "  undo       give the files of a batch their old names back\n"
           "  recover    finish or revert a batch that was interrupted\n\n"
           "Rules (repeatable, combined in the order given):\n"
           "  --rules FILE       a JSON array of rules ('-' reads standard input)\n"
           "  --preset NAME      the rules of a saved preset\n"
           "  --do \"COMMAND\"     the rules suggested for an English command\n\n"
           "Selection:\n"
           "  --recursive        add the contents of folders, subfolders included\n"
           "  --filter TEXT      only names containing TEXT (ignoring case)\n"
           "  --files-only       only files\n"
           "  --folders-only     only folders\n"
           "  --sort name|date|size|type\n\n"
           "  --help             this text; COMMAND --help for a command\n"
           "  --version          the version\n\n"
           "Exit status: 0 success, 1 when a rename failed, 2 for bad usage or input, 130 or 143 when\n"
           "interrupted by SIGINT or SIGTERM (the files renamed so far are listed; the rest are not touched).\n"_s;
}

} // namespace quillfern
