#include "cli/loop_check_command.h"

#include "cli/cli_text.h"
#include "cli/compare_command.h"
#include "cli/interrupt.h"
#include "cli/key_reader.h"
#include "cli/terminal_line.h"
#include "diag/line_recovery.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "loop/loop_check.h"
#include "loop/loop_report.h"
#include "loop/loop_words.h"
#include "map/module_access.h"
#include "monitor/csv_log.h"
#include "pdf/html_pdf.h"
#include "ports/replace_file.h"
#include "ports/user_name.h"
#include "project/backup.h"
#include "project/file_content.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <set>

namespace kavro {

namespace {

constexpr int PauseMs = 150; // between two looks at a channel
// A key that is held down comes again within these: after its first time, and from then on.
constexpr std::int64_t HeldFirstUs = 700'000, HeldNextUs = 200'000;
constexpr const char* KeysText = "Keys: P pass, F fail, S skip, N note, A again, B back, Q leave.";

struct LoopCheckOptions {
    std::string LinePath;
    LoopPlan Plan;
    std::optional<LoopRecord> Before; // what is kept of a check that was left
    bool Resume = false;
    std::string Report; // path; empty: none
};

// One run of the command.
class LoopCheckRun {
public:
    LoopCheckRun(Session& session, LoopCheckOptions options)
        : session_(session), options_(std::move(options)) {}

    int Run() {
        if (!ChooseRecord() || !AskToDrive())
            return Declined();
        LoopCheck check(session_, options_.Plan);
        PrintNote(KeysText);
        bool left = false;
        try {
            left = !GoThrough(check);
        } catch (const Interruption&) {
            left = true;
        } catch (const RuntimeFailure&) {
            PutBack(check);
            throw;
        }
        return End(check, left);
    }

private:
    // A key, in upper case; '\0' when none came.
    char Key(int milliseconds) {
        if (watch_.Interrupted())
            throw Interruption();
        const auto key = keys_.Next(milliseconds);
        return key ? static_cast<char>(std::toupper(static_cast<unsigned char>(*key))) : '\0';
    }

    // What is typed ahead, or comes of a key that is held down, is no answer to what came up meanwhile.
    char AnswerKey() {
        const char key = Key(PauseMs);
        if (key == '\0' || key == EndKey)
            return key;
        const bool several = key != 'N' && keys_.DropTyped(key); // the note follows at once
        const std::int64_t now = session_.Line.Time().Microseconds();
        const bool held =
            key == last_.Key && (several || now - last_.Taken < HeldFirstUs || now - last_.Seen < HeldNextUs);
        last_ = {key, held ? last_.Taken : now, now};
        return held ? '\0' : key;
    }

    char Ask(const std::string& question, std::string_view answers) {
        PrintNote(question);
        for (;;) {
            const char key = Key(PauseMs);
            if (key != '\0' && answers.find(key) != std::string_view::npos)
                return key;
            if (key == EndKey)
                return 'Q';
        }
    }

    bool ChooseRecord() {
        LoopPlan& plan = options_.Plan;
        const std::string name = plan.File.Name.empty() ? NameFromPath(options_.LinePath) : plan.File.Name;
        plan.Record = NewLoopRecord(plan.File, name, plan.Now(), options_.Before);
        if (!options_.Before) {
            if (options_.Resume)
                PrintNote("There is no check of this line to go on with. Beginning anew.");
            return true;
        }
        if (!options_.Resume) {
            const char key = Ask(GoOnQuestion(*options_.Before) + " G go on, B begin anew, Q leave.", "GBQ");
            if (key != 'G')
                return key == 'B';
        }
        plan.Record = TakenUp(*options_.Before, plan.File);
        PrintNote("Going on: " + LoopSummary(plan.Record));
        return true;
    }

    bool AskToDrive() {
        const auto& entries = options_.Plan.Record.Entries;
        if (std::ranges::none_of(entries, [](const auto& each) { return IsOutput(each.Point.Kind); }))
            return PrintNote(BeginQuestion(options_.Plan.Record)), true;
        const char key = Ask(
            BeginQuestion(options_.Plan.Record) + " Drive outputs? Y yes, N inputs only, Q leave.", "YNQ");
        options_.Plan.Drives = key == 'Y';
        return key != 'Q';
    }

    // False when it is left.
    bool GoThrough(LoopCheck& check) {
        int told = -1;
        while (!check.Over() || !check.Record().Standing.empty()) {
            const bool tried =
                recovery_.Lost() || check.Record().Standing.size() == check.NotPutBack().size();
            if (check.Over() && tried)
                return true; // told at the end
            if (!check.Over() && std::exchange(told, check.Current()) != check.Current())
                TellChannel(check);
            Step(check);
            ShowLine(check);
            if (!check.Over() && !Answer(check, AnswerKey()))
                return false;
        }
        return true;
    }

    void TellChannel(const LoopCheck& check) {
        const LoopEntry& entry = check.Entry();
        line_.Clear();
        troubles_.clear();
        keys_.DropTyped();
        std::fputc('\n', stderr);
        PrintNote(std::to_string(check.Current() + 1) + " of " +
                  std::to_string(check.Record().Entries.size()) + ": " + ShortName(entry.Point) + ", " +
                  LoopKindText(entry.Point.Kind) + ", " + PlaceText(entry.Point) +
                  (entry.Note.empty() ? "" : ". Note: " + entry.Note));
        if (!check.View().Todo.empty())
            PrintNote(check.View().Todo);
    }

    void ShowLine(const LoopCheck& check) {
        if (check.Over())
            return;
        const LoopView& view = check.View();
        if (view.Mood == LoopMood::Trouble && troubles_.insert(view.Notice).second)
            TellAside(view.Notice + " " + view.Todo);
        line_.Write(FirstCharacters("    [ " + view.Value + " ]   " + view.Notice, LineWidth));
    }

    // On a line of its own.
    void TellAside(const std::string& text) {
        line_.Clear();
        PrintNote(text);
    }

    // A port that fails is told, and opened again as soon as it is there.
    void Step(LoopCheck& check) {
        if (!recovery_.Ready())
            return check.Lost(portFailure_);
        try {
            const LineWorkScope scope(session_);
            if (recovery_.Attempt([&] {
                    OpenPort(session_.Line);
                    check.Step(session_);
                }))
                recovery_.Succeeded();
        } catch (const Interruption&) {
            throw;
        } catch (const RuntimeFailure& failure) {
            portFailure_ = failure.what();
            check.Lost(portFailure_);
        }
    }

    // False when the check is to be left. An answer that cannot be kept leaves the channel in work.
    bool Answer(LoopCheck& check, char key) {
        try {
            return Take(check, key);
        } catch (const Interruption&) {
            throw;
        } catch (const RuntimeFailure& failure) {
            TellAside(std::string(failure.what()) + " The answer is not kept. Give it again, or Q leaves.");
            return true;
        }
    }

    bool Take(LoopCheck& check, char key) {
        switch (key) {
        case 'P':
            check.Pass();
            break;
        case 'F':
            check.Fail();
            break;
        case 'S':
            check.Skip();
            break;
        case 'A':
            check.Again();
            break;
        case 'B':
            check.Back();
            break;
        case 'N':
            TakeNote(check);
            break;
        default:
            return key != 'Q' && key != EndKey;
        }
        return true;
    }

    void TakeNote(LoopCheck& check) {
        TypedLine typed(check.Entry().Note);
        for (bool ended = false; !ended;) {
            line_.Write("Note: " + typed.Text + "_");
            if (watch_.Interrupted())
                throw Interruption();
            if (const auto key = keys_.Next(PauseMs))
                ended = typed.Take(*key);
        }
        if (!typed.GivenUp)
            check.SetNote(Trim(typed.Text));
    }

    // Ctrl+C has been heeded: putting back goes on, and another one ends the program.
    void PutBack(LoopCheck& check) {
        line_.Clear();
        if (check.Settled())
            return;
        session_.Line.Interrupted = {};
        try {
            const LineWorkScope scope(session_);
            OpenPort(session_.Line);
            check.PutAllBack(session_);
        } catch (const RuntimeFailure& failure) {
            PrintNote(failure.what());
        }
        TellStanding(check.Record());
    }

    static void TellStanding(const LoopRecord& record) {
        for (const StandingOutput& each : record.Standing)
            PrintNote(ShortName(each.Point) + " was not put back to " + each.Before +
                      ". The next loop check of this line does it.");
    }

    int Declined() const {
        TellStanding(options_.Plan.Record);
        return ExitNotAccepted;
    }

    int End(LoopCheck& check, bool left) {
        PutBack(check);
        PrintOut(LoopSummary(check.Record()) + "\n");
        if (!options_.Report.empty())
            WriteReport(check.Record());
        if (left)
            PrintNote("Left. kavroctl loop-check --resume goes on.");
        if (left || !check.Settled())
            return ExitNotAccepted;
        return AllPassed(check.Record()) ? ExitSuccess : ExitDifference;
    }

    void WriteReport(const LoopRecord& record) const {
        const bool pdf = LoopReportKindOf(options_.Report) == LoopReportKind::Pdf;
        ReplaceFile(options_.Report, pdf ? PdfOfHtml(LoopHtml(record, options_.LinePath)) : LoopCsv(record));
    }

    static constexpr std::size_t LineWidth = 79;

    Session& session_;
    LoopCheckOptions options_;
    const InterruptWatch watch_{session_.Line};
    KeyReader keys_;
    TerminalLine line_;
    LineRecovery recovery_{session_.Line, [](bool) {}};
    std::string portFailure_;        // of an outage
    std::set<std::string> troubles_; // told of the channel in work
    struct {
        char Key = '\0';
        std::int64_t Taken = 0; // us
        std::int64_t Seen = 0;  // us, also when it did not count
    } last_;
};

} // namespace

void AddLoopCheckOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Goes through the channels of FILE in the order of their tags, those without a tag behind them by\n"
        "address. An input is watched until its signal changes; an output is driven to 0, 50 and 100 % of "
        "its\n"
        "range, or off and on, when that is agreed to at the beginning, and put back. One key each says "
        "what\n"
        "was seen: P pass, F fail, S skip, N note, A again, B back, Q leave. Each answer is kept in\n"
        "FILE.loop-check at once, so that the check can be left and gone on with. It needs a terminal.\n\n"
        "Exit codes: 0 all passed, 1 any failed or was skipped, 2 wrong use (no terminal, a damaged file),\n"
        "3 port trouble, or a file cannot be written, 4 left before the end, or an output was not put back.");
    AddFileLineOptions(parser);
    parser.addOptions({
        {"report", "Write what came of it to OUT, which ends in .pdf or .csv, at the end.", "OUT"},
        {"resume", "Go on with the check that was left, without asking."},
        {"person", "Who checks; the user unless given.", "NAME"},
    });
}

CommandAction PrepareLoopCheck(const QCommandLineParser& parser) {
    LoopCheckOptions options;
    options.Plan.File = ReadFileArgument(parser);
    options.LinePath = parser.positionalArguments().first().toStdString();
    options.Plan.Path = LoopCheckPath(options.LinePath);
    options.Plan.Person = parser.isSet("person") ? parser.value("person").toStdString() : UserName();
    options.Plan.Now = [] { return IsoTime(SystemTime()); };
    options.Resume = parser.isSet("resume");
    options.Report = parser.value("report").toStdString();
    if (parser.isSet("report"))
        LoopReportKindOf(options.Report);
    RequireFolderOf(options.Report);
    if (LoopPointsOf(options.Plan.File).empty())
        throw RuntimeFailure("The modules of the file have no channels.");
    options.Before = LoadLoopRecord(options.Plan.Path);
    if (!IsAtTerminal())
        throw RuntimeFailure(
            "A loop check is done by somebody at a terminal. Run it in one, without a pipe.");
    const auto cli = ReadFileLine(parser);
    return [cli, options] { return cli->Run([&] { return LoopCheckRun(cli->Session, options).Run(); }); };
}

} // namespace kavro
