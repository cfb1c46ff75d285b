#include "cli/replace_command.h"

#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/compare_command.h"
#include "cli/interrupt.h"
#include "cli/notes.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/module_access.h"
#include "map/module_command.h"
#include "project/replacement.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr int LongestWaitS = 3600;
constexpr std::int64_t SecondUs = 1'000'000; // also between two looks
constexpr std::int64_t NapUs = 50'000;       // Ctrl+C is noticed within that time
constexpr int MostLooks = 3;                 // at a module that is not quite as it should be

std::string DifferenceText(const LineDifference& difference) {
    return "  " + difference.Setting + ": " + difference.Line.Text + " -> " + difference.File.Text + "\n";
}

// One run of the command.
class Replacement {
public:
    Replacement(Session& session, const ReplaceOptions& options)
        : session_(session), saved_(options.Saved), waitS_(options.WaitS) {}

    int Run() {
        try {
            return Replace();
        } catch (const Interruption&) {
            PrintNote("Stopped. " + StateText(stage_, saved_));
            return ExitNotAccepted;
        } catch (const RuntimeFailure&) {
            PrintNote(StateText(stage_, saved_));
            throw;
        }
    }

private:
    int Refuse(const std::string& why) const {
        PrintNote(why + " " + StateText(stage_, saved_));
        return ExitNotAccepted;
    }

    int Replace() {
        PrintNote("Looking whether anything answers at address " + ShownAddress(saved_.Address) + ".");
        if (const std::string taken = PlaceTaken(work_, saved_); !taken.empty())
            return Refuse(taken);
        const NewModule found = AwaitNewModule();
        if (!found.Refusal.empty())
            return Refuse(found.Refusal);
        if (const std::string kept = KeptSettings(saved_); !kept.empty())
            PrintNote(kept);
        if (!Write(found))
            return ExitNotAccepted;
        return AwaitInPlace();
    }

    void StopIfAsked() const {
        if (watch_.Interrupted())
            throw Interruption();
    }

    // Lets a second pass; false at the deadline.
    bool Nap(std::int64_t deadline) const {
        Clock& clock = session_.Line.Time();
        const std::int64_t next = std::min(deadline, clock.Microseconds() + SecondUs);
        while (clock.Microseconds() < next) {
            StopIfAsked();
            clock.SleepUntil(std::min(next, clock.Microseconds() + NapUs));
        }
        return next < deadline;
    }

    std::int64_t Deadline() const { return session_.Line.Time().Microseconds() + waitS_ * SecondUs; }
    std::string WaitText() const { return " Waiting up to " + std::to_string(waitS_) + " s for it."; }

    // A module that is just being connected may be silent, or tell nonsense, at first.
    NewModule AwaitNewModule() const {
        const std::int64_t deadline = Deadline();
        NewModule found = FindNewModule(work_, saved_);
        if (found.Reading.Is == Presence::Silent)
            PrintNote(ConnectAdvice + WaitText());
        while (!found.Refusal.empty() && !found.OtherModel && Nap(deadline))
            found = FindNewModule(work_, saved_);
        return found;
    }

    bool Write(const NewModule& found) {
        if (found.Coming.empty()) {
            PrintOut("The new module has every setting of the file already.\n");
            stage_ = ReplacementStage::Written;
            return true;
        }
        std::string text = "The new " + saved_.Model + " gets these settings:\n";
        for (const LineDifference& difference : found.Coming)
            text += DifferenceText(difference);
        PrintOut(text);
        stage_ = ReplacementStage::Writing;
        const WrittenModule written = WriteReplacement(work_, saved_, found.Reading);
        if (written.AsWanted()) {
            stage_ = ReplacementStage::Written;
            PrintOut("All of them are written.\n");
            return true;
        }
        for (const std::string& told : written.Told)
            PrintNote(told);
        for (const LineDifference& each : written.NotTaken)
            PrintNote("The " + each.Setting + " did not take: " + each.File.Text +
                      " is wanted, the module has " + each.Line.Text + ".");
        PrintNote(StateText(stage_, saved_));
        return false;
    }

    // Looks at its place. A port may go away with the power of the module; it is opened again.
    std::optional<ModuleComparison> LookAgain() {
        try {
            OpenPort(session_.Line);
            auto comparison = LookAtReplacement(work_, saved_);
            portFailure_.clear();
            return comparison;
        } catch (const Interruption&) {
            throw;
        } catch (const RuntimeFailure& failure) {
            if (portFailure_.empty())
                PrintNote(std::string(failure.what()) + " Going on as soon as the port can be opened again.");
            portFailure_ = failure.what();
            return std::nullopt;
        }
    }

    int AwaitInPlace() {
        PrintNote(PowerUpAdvice + WaitText());
        const std::int64_t deadline = Deadline();
        std::optional<ModuleComparison> comparison;
        int looks = 0;
        do {
            auto seen = LookAgain();
            looks += seen ? 1 : 0;
            comparison = seen ? std::move(seen) : std::move(comparison);
        } while (!(comparison && (comparison->Same() || looks == MostLooks)) && Nap(deadline));
        if (comparison)
            return Result(*comparison);
        if (!portFailure_.empty())
            throw RuntimeFailure(portFailure_);
        return Refuse(WhySilent(work_, saved_));
    }

    int Result(const ModuleComparison& comparison) {
        stage_ = ReplacementStage::InPlace;
        PrintOut(StateText(stage_, saved_) + "\n");
        if (comparison.Same())
            PrintOut(std::string("Every setting is as in the file. ") + CalibrationNotCopied + "\n");
        else if (comparison.OtherModel())
            PrintNote("It is a " + comparison.Line.Module.Model + ", the file has a " + saved_.Model + ".");
        for (const LineDifference& each : comparison.Differences)
            PrintNote("The " + each.Setting + " is not as in the file: " + each.File.Text +
                      " is wanted, the module has " + each.Line.Text + ".");
        if (!comparison.Untold.empty())
            PrintNote("It did not tell " + Listed(comparison.Untold) + ".");
        return comparison.Same() ? ExitSuccess : ExitNotAccepted;
    }

    Session& session_;
    const SavedModule& saved_;
    const int waitS_;
    Notes notes_;
    const InterruptWatch watch_{session_.Line};
    const BeforeEachCommand stop_{session_.Line, [this](const std::string&) { StopIfAsked(); }};
    const LineWorkScope scope_{session_};
    const LineWork work_{session_, notes_.InWords()};
    ReplacementStage stage_ = ReplacementStage::Untouched;
    std::string portFailure_; // while the port is away
};

std::string NotInFile(const LineFile& file, std::int16_t address) {
    std::vector<std::string> there;
    for (const SavedModule& module : file.Modules)
        there.push_back(ShownAddress(module.Address) + " " + module.Model);
    return "The file has no module at address " + ShownAddress(address) + ", it has " +
           (there.empty() ? "none" : Listed(there)) + ".";
}

} // namespace

int ReplaceModule(Session& session, const ReplaceOptions& options) {
    return Replacement(session, options).Run();
}

void AddReplaceOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Gives a new module the settings that the line file has of the module at ADDRESS, which is dead:\n"
        "  1. nothing may answer at ADDRESS, at whatever baud rate;\n"
        "  2. the new module, of the same model, is waited for in its initialisation state;\n"
        "  3. its settings to come are printed and written, baud rate and checksum included;\n"
        "  4. it is to be powered down, switched out of that state and powered up, is waited for at\n"
        "     ADDRESS, and read back.\n"
        "The calibration is not copied. Ctrl+C ends it and says what state the module is in.\n\n"
        "Exit codes: 0 every setting is as in the file, 2 wrong use or a damaged file (nothing was sent),\n"
        "3 port trouble, 4 a module answers at ADDRESS, another model, no module came in time, or a\n"
        "setting is not as in the file.");
    AddFileLineOptions(parser);
    parser.addPositionalArgument("ADDRESS",
                                 "Address of the dead module, 1 to 255; hexadecimal as 0xFF or FFH.");
    parser.addOption({"wait",
                      "How long the new module is waited for each time, 1 to 3600 s; 120 unless given.",
                      "SECONDS"});
}

CommandAction PrepareReplace(const QCommandLineParser& parser) {
    const LineFile file = ReadFileArgument(parser);
    if (parser.positionalArguments().size() < 2)
        throw RuntimeFailure("Give the address of the dead module behind the file, 1 to 255.");
    const std::int16_t address = ParseAddress(parser.positionalArguments()[1].toStdString());
    const SavedModule* const saved = ModuleIn(file, address);
    if (!saved)
        throw RuntimeFailure(NotInFile(file, address));
    if (const std::string why = NotReplaceable(*saved); !why.empty())
        throw RuntimeFailure(why);
    ReplaceOptions options{*saved};
    if (parser.isSet("wait"))
        options.WaitS =
            ParseWholeNumber(parser.value("wait").toStdString(), "a time in seconds", 1, LongestWaitS);
    const auto cli = ReadFileLine(parser);
    return [cli, options] { return cli->Run([&] { return ReplaceModule(cli->Session, options); }); };
}

} // namespace kavro
