#include "cli/read_command.h"

#include "cli/cli_text.h"
#include "cli/notes.h"
#include "link/codes.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr int UsualIntervalMs = 1000;

std::string ModuleText(const Session& session) {
    const ModuleRecord& record = session.ModuleTable[0];
    return "The module " + Trim(ShownModel(record.Model)) + " at address " + ShownAddress(record.Address);
}

// Reads a module again and again, or one channel of it.
class ValueReader {
public:
    ValueReader(Session& session, const ReadOptions& options)
        : session_(session), options_(options), printer_(session, options.Form) {}

    int Run() {
        PollEnd end = PollEnd::Done;
        try {
            end = Poll(session_.Line, options_.Pace, {[this] { Read(); }, [this] { return Print(); }});
        } catch (const RuntimeFailure&) {
            printer_.Close();
            throw;
        }
        if (exit_ != ExitWrongUse)
            printer_.Close();
        if (end == PollEnd::PortLost)
            return ExitPortTrouble;
        return end == PollEnd::Interrupted && exit_ == ExitSuccess ? ExitReplyMissing : exit_;
    }

private:
    void Read() {
        if (!options_.Channel.empty() && !enables_)
            enables_ = EnableOfChannel();
        values_ = ReadModuleValues(session_, 0, enables_);
    }

    // Leaves one channel of several analog inputs, so that no other is read.
    std::optional<unsigned> EnableOfChannel() {
        const bool several = ModuleFamily(session_.ModuleTable[0].Model) == MultiAnalogInput;
        const char digit = options_.Channel.front();
        if (!several || options_.Channel.size() != 1 || digit < '0' || digit > '7')
            return std::nullopt;
        const ModuleReply enables = AskModuleTwice(session_, 0, '$', "6");
        if (enables.Answer != Answer::Ok)
            return std::nullopt;
        return enables.Digits(0, 2) & 1U << (digit - '0');
    }

    bool Print() {
        std::vector<ChannelValue> chosen;
        for (const ChannelValue& value : values_)
            if (options_.Channel.empty() || SameText(options_.Channel, value.Channel))
                chosen.push_back(value);
        if (chosen.empty())
            return TellWrongChannel();
        for (const ChannelValue& value : chosen)
            if (IsMissing(value) || (value.State == ValueState::Disabled && chosen.size() == 1))
                exit_ = ExitReplyMissing;
        return printer_.Print(0, chosen, SystemTime());
    }

    bool TellWrongChannel() {
        std::vector<std::string> names;
        for (const ChannelValue& value : values_)
            names.push_back(value.Channel);
        PrintNote(ModuleText(session_) + (names.empty() ? " has no values."
                                                        : " has no channel '" + options_.Channel +
                                                              "'; it has " + Listed(names) + "."));
        exit_ = ExitWrongUse;
        return false;
    }

    Session& session_;
    const ReadOptions& options_;
    ValuePrinter printer_;
    std::optional<unsigned> enables_;
    std::vector<ChannelValue> values_;
    int exit_ = ExitSuccess;
};

} // namespace

int ReadValues(Session& session, const Contact& contact, const ReadOptions& options) {
    Notes notes;
    if (FindModule(session, contact, notes.InWords()) == Identified::No)
        return ExitReplyMissing;
    return ValueReader(session, options).Run();
}

void AddReadOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Reads the values of the module at ADDRESS, once or again and again: analog inputs and outputs in\n"
        "the unit of the range, counts, frequencies, and digital words in hexadecimal with bit n for\n"
        "channel n. ADDRESS 0 is the module that is in its initialisation state. A port that fails between\n"
        "two readings is opened again as soon as it is there.\n\n"
        "Exit codes: 0 every value was read, 2 wrong use, 3 port trouble, 4 a value could not be read, or\n"
        "Ctrl+C came before the last reading that was asked for.");
    AddContactOptions(parser);
    parser.addOptions({
        {"channel",
         "Read channel N only: 0 to 7, an output or a port such as A, or a digital word, IN or OUT.", "N"},
        {"interval",
         "Read every MS milliseconds, until Ctrl+C unless --count says how often. 1000 unless given.", "MS"},
        {"count", "Read N times. Once unless this or --interval is given.", "N"},
    });
    AddGiveUpOption(parser);
    AddValueFormOptions(parser);
}

CommandAction PrepareRead(const QCommandLineParser& parser) {
    ReadOptions options{.Channel = parser.value("channel").toStdString(),
                        .Pace = ReadPace(parser, UsualIntervalMs),
                        .Form = ReadValueForm(parser)};
    if (parser.isSet("channel") && options.Channel.empty())
        throw RuntimeFailure("--channel needs the name of a channel, for example 0.");
    if (!parser.isSet("interval") && !parser.isSet("count"))
        options.Pace.Turns = 1;
    const auto [cli, contact] = ReadModuleOnLine(parser);
    return [cli = cli, contact = contact, options] {
        return cli->Run([&] { return ReadValues(cli->Session, contact, options); });
    };
}

} // namespace kavro
