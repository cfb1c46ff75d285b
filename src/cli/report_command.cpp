#include "cli/report_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "link/runtime_failure.h"
#include "pdf/html_pdf.h"
#include "ports/replace_file.h"
#include "ports/user_name.h"
#include "project/file_content.h"
#include "project/line_report.h"

#include <QCommandLineParser>
#include <QDateTime>

namespace kavro {

namespace {

// A line without a port that is set up has a report, too.
std::string PortText(const LineOptions& options) {
    if (!options.Recording.Path.empty())
        throw RuntimeFailure("A report asks no module, so that there is nothing to record. Leave out "
                             "--record.");
    try {
        const CliSession cli(options);
        const int port = cli.Session.Line.CurrentPort;
        return port < 1 || port > PortTotal ? std::string()
                                            : "COM" + std::to_string(port) + ": " + ShownDevice(cli.Device());
    } catch (const RuntimeFailure&) {
        if (options.Port)
            throw;
        return {};
    }
}

ReportSource ReadSource(const QCommandLineParser& parser) {
    ReportSource source;
    source.Facts.Path = parser.positionalArguments().first().toStdString();
    source.Facts.Port = PortText(ReadLineOptions(parser));
    source.Facts.Date = QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm").toStdString();
    source.Facts.Person = parser.isSet("person") ? parser.value("person").toStdString() : UserName();
    source.CheckPath = parser.value("check").toStdString();
    return source;
}

} // namespace

void AddReportOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Writes the commissioning report of a line: title page, table of the modules, their settings, and "
        "the\n"
        "findings of a line check. OUT ends in .pdf or .html. No module is asked: --port and --demo only "
        "say\n"
        "which port stands on the title page.\n\n"
        "Exit codes: 0 written, 2 wrong use, or a file cannot be used, 3 OUT cannot be written.");
    parser.addPositionalArgument("FILE", "The line file.");
    parser.addPositionalArgument("OUT", "The report.");
    parser.addOptions({
        {"check", "Add the findings of CHECK, a line check that kavroctl check --json printed.", "CHECK"},
        {"person", "Who makes the report; the user unless given.", "NAME"},
    });
}

CommandAction PrepareReport(const QCommandLineParser& parser) {
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() < 2)
        throw RuntimeFailure("Give the line file and the report to write. See kavroctl report --help.");
    const std::string out = arguments[1].toStdString();
    const auto kind = ReportKindOf(out);
    if (!kind)
        throw RuntimeFailure("The report '" + out + "' must end in .pdf or .html.");
    const ReportSource source = ReadSource(parser);
    RefuseOwnSource(source, out);
    RequireFolderOf(out);
    return [out, kind, html = LoadReport(source)] {
        ReplaceFile(out, *kind == ReportKind::Pdf ? PdfOfHtml(html) : html);
        return ExitSuccess;
    };
}

} // namespace kavro
