#include "cli/output_command.h"

#include "cli/cli_text.h"
#include "cli/exchange_printer.h"
#include "cli/notes.h"
#include "diag/module_outputs.h"
#include "link/baud.h"
#include "link/models.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

// A change that is possible: what to read before and after, and what drives it.
struct PlannedChange {
    const NamedOutput& Output;
    kavro::Drive Drive;
};

PlannedChange Planned(const Session& session, const std::vector<NamedOutput>& outputs,
                      const OutputChange& change) {
    const auto output = std::ranges::find_if(
        outputs, [&](const NamedOutput& each) { return SameText(each.Name, change.Output); });
    if (output != outputs.end())
        return {*output, output->Plan(change.Value)};
    const std::string module =
        "The module " + Trim(ShownModel(session.ModuleTable[session.SelectedModule].Model)) + " ";
    if (outputs.empty())
        throw RuntimeFailure(module + "has no outputs that can be driven.");
    if (outputs.front().Name.empty())
        throw RuntimeFailure(module + "has one output. Give its value alone, for example 12.5.");
    std::vector<std::string> names;
    names.reserve(outputs.size());
    for (const NamedOutput& each : outputs)
        names.push_back(each.Name);
    throw RuntimeFailure(module + "has no output '" + change.Output +
                         "'. Give OUTPUT=VALUE; the outputs are " + Listed(names) + ".");
}

Exchanged LastExchange(const Session& session) {
    const Line& line = session.Line;
    return {.Command = line.CommandText,
            .Reply = line.ReplyText,
            .Complete = line.ReplyStatus != 0,
            .Baud = BaudFromCode(ModuleBaudCode(session, session.SelectedModule))};
}

// True when the module accepted the command, which is printed also when nothing can be read after it.
bool Run(const Session& session, const PlannedChange& change, ExchangePrinter& printer) {
    const NamedOutput& output = change.Output;
    DrivenOutput driven = {output.Name, output.Unit, ReadTold(output), {}};
    const bool accepted = change.Drive();
    const Exchanged exchanged = LastExchange(session);
    try {
        driven.New = ReadTold(output);
    } catch (const RuntimeFailure&) {
        printer.Print(exchanged, driven);
        throw;
    }
    printer.Print(exchanged, driven);
    return accepted;
}

// The number of commands that were not accepted.
int Run(const Session& session, const std::vector<PlannedChange>& changes, ExchangePrinter& printer) {
    int failed = 0;
    for (const PlannedChange& change : changes)
        failed += Run(session, change, printer) ? 0 : 1;
    return failed;
}

OutputChange ParseChange(const std::string& text) {
    const auto sign = text.find('=');
    if (sign == std::string::npos)
        return {"", Trim(text)};
    return {Trim(text.substr(0, sign)), Trim(text.substr(sign + 1))};
}

struct OutputHelp {
    ModelKind Kind;
    const char* Text;
};

constexpr OutputHelp OutputHelps[] = {
    {ModelKind::SingleOutput, "12.5       the output in the unit of its range"},
    {ModelKind::PortOutputs, "A=+7.25    ports A to D in V"},
    {ModelKind::DigitalLines, "3=on       channels of digital outputs, on or off"},
    {ModelKind::PortLines, "B3=off     lines of the ports that are outputs: A0 to CL3"},
    {ModelKind::AlarmInput, "0=on       outputs 0 and 1; refused while the alarm has them"},
};

std::vector<std::string> ModelsWithOutputs(ModelKind kind) {
    std::vector<std::string> models;
    for (const ModelRow& row : KnownModelRows())
        if (row.Kind == kind && (kind != ModelKind::DigitalLines || row.Digital.Outputs > 0))
            models.emplace_back(row.Name);
    return models;
}

// Rows of models in the first column, four in a row; the text stands in the last.
std::string ModelRowsHelp(const OutputHelp& help) {
    constexpr std::size_t Width = 27, ModelsInRow = 4;
    std::vector<std::string> models = ModelsWithOutputs(help.Kind);
    std::string rows;
    for (; models.size() > ModelsInRow; models.erase(models.begin(), models.begin() + ModelsInRow))
        rows += "  " + Listed({models.begin(), models.begin() + ModelsInRow}) + ",\n";
    return rows + "  " + FixedText(Listed(models), Width) + help.Text + "\n";
}

std::string OutputsHelp() {
    std::string help;
    for (const OutputHelp& row : OutputHelps)
        help += ModelRowsHelp(row);
    const std::vector<std::string> alarms = ModelsWithOutputs(ModelKind::AlarmInput);
    return help +
           "  all digital ones           all=0F05   on, off, or a word of 4 hexadecimal digits, bit n for\n"
           "                                        channel n; of the " +
           Listed(ModelsWithOutputs(ModelKind::PortLines)) + " 6 digits, of " + alarms.front() + " to " +
           alarms.back() + " 2\n";
}

} // namespace

int DriveOutputs(Session& session, const Contact& contact, const std::vector<OutputChange>& changes,
                 bool json) {
    Notes notes;
    if (FindModule(session, contact, notes.InWords()) == Identified::No)
        return ExitNotAccepted;
    const auto outputs = OutputsOf(session);
    if (!outputs) {
        PrintNote("The module does not tell which of its ports are outputs. Try again.");
        return ExitNotAccepted;
    }
    std::vector<PlannedChange> planned;
    try {
        for (const OutputChange& change : changes)
            planned.push_back(Planned(session, *outputs, change));
    } catch (const RuntimeFailure& failure) {
        PrintNote(failure.what()); // a wrong value, not a failure of the line
        return ExitWrongUse;
    }
    ExchangePrinter printer(json);
    int failed = 0;
    try {
        failed = Run(session, planned, printer);
    } catch (const RuntimeFailure&) {
        printer.Close();
        throw;
    }
    printer.Close();
    if (failed > 0)
        PrintNote("The module did not accept " + std::to_string(failed) + " of " +
                  std::to_string(planned.size()) + (planned.size() == 1 ? " command." : " commands."));
    return failed > 0 ? ExitNotAccepted : ExitSuccess;
}

void AddOutputOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Drives outputs of the module at ADDRESS, in the order in which they are given, and prints each\n"
        "command with its reply, and what the module tells of the output before and after it. Nothing is\n"
        "asked. ADDRESS 0 is the module that is in its initialisation state.\n\n"
        "Outputs by model, and what can be given:\n" +
        QString::fromStdString(OutputsHelp()) +
        "\nExit codes: 0 every command was accepted, 2 wrong use (nothing was driven), 3 port trouble,\n"
        "4 the module did not answer, or did not accept every command.");
    AddContactOptions(parser);
    parser.addPositionalArgument("OUTPUT=VALUE", "An output and what it is to become.", "[OUTPUT=]VALUE...");
    parser.addOption({"json", "Print a JSON array with an object for each command: \"command\", \"reply\", "
                              "\"complete\", \"baud\", \"output\", \"unit\", \"old\" and \"new\"."});
}

CommandAction PrepareOutput(const QCommandLineParser& parser) {
    std::vector<OutputChange> changes;
    for (const QString& argument : parser.positionalArguments().mid(1))
        changes.push_back(ParseChange(argument.toStdString()));
    const auto [cli, contact] = ReadModuleOnLine(parser);
    if (changes.empty())
        throw RuntimeFailure("Give what the outputs are to become, for example 3=on. See kavroctl output "
                             "--help.");
    return [cli = cli, contact = contact, changes, json = parser.isSet("json")] {
        return cli->Run([&] { return DriveOutputs(cli->Session, contact, changes, json); });
    };
}

} // namespace kavro
