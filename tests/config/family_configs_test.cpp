#include "config/analog_input_config.h"
#include "config/analog_output_config.h"
#include "config/digital_config.h"
#include "config/entry_notes.h"
#include "config/port_direction_config.h"
#include "link/model_choices.h"
#include "support/test_session.h"

#include <sstream>

namespace kavro {
namespace {

using Change = std::function<ConfigOutcome(Session& session, Messages& messages)>;

/// Applies these settings to entry 0.
template <class Config, auto Apply>
Change Applying(Config config) {
    return [config](Session& session, Messages& messages) { return Apply(session, 0, config, messages); };
}

constexpr auto Input = Applying<AnalogInputConfig, ApplyAnalogInputConfig>;
constexpr auto Output = Applying<AnalogOutputConfig, ApplyAnalogOutputConfig>;
constexpr auto Digital = Applying<DigitalConfig, ApplyDigitalConfig>;
constexpr auto Ports = Applying<PortDirectionConfig, ApplyPortDirectionConfig>;

const std::string Done = ConfigCompleteText, Failed = ConfigFailedText;
const std::string TooHigh = "Address can not exceed 255.";
const std::string ChannelsFailed = "Channel enable/disable configuration failed.";
const std::string PolarityFailed = "Digital I/O polarity configuration failed.";
const std::string PortsFailed = "Port input/output configuration failed.";

/// All that a configuration can change.
struct Kept {
    std::int16_t Address = 1, BaudCode = 3, Range = 0, Format = 0, Checksum = 0, Polarity = 0;
    bool operator==(const Kept&) const = default;
};

/// A scripted module and its entry 0, selected.
struct ConfigSession : ScriptedSession {
    ConfigSession(const char* model, const Kept& kept, bool initialising = false) {
        Session.Line.SetPortBaud(1, kept.BaudCode, 0, 8, 0);
        Session.SelectedModule = 0;
        Session.ScanIndex = initialising ? 0 : -1;
        Record = {.Address = kept.Address,
                  .Model = model,
                  .DataFormat = kept.Format,
                  .BaudCode = kept.BaudCode,
                  .InputRange = kept.Range,
                  .Checksum = kept.Checksum,
                  .Digital = {kept.Polarity}};
    }

    kavro::Kept Kept() const {
        return {Record.Address,    Record.BaudCode, Record.InputRange,
                Record.DataFormat, Record.Checksum, Record.Digital.Polarity};
    }

    /// What was sent, each line behind its rate.
    Lines Sent() const {
        Lines sent;
        for (const std::string& line : Log)
            if (line.find(",n,8,1") == std::string::npos)
                sent.push_back(line.substr(line.find(' ') + 1));
        return sent;
    }

    /// The texts shown; each of them but the success is an error.
    Lines Shown() const {
        Lines texts;
        for (const auto& [text, title] : Messages.Shown) {
            EXPECT_EQ(title, text == Done ? "" : "Error");
            texts.push_back(text);
        }
        return texts;
    }

    ModuleRecord& Record = Session.ModuleTable[0];
};

enum class State { Normal, Initialisation };

struct Expected {
    kavro::Kept Kept;
    Lines Shown = {Done};
    std::int16_t Result = 1; // `ConfigResult`
    std::int16_t ResultBefore = 0;
};

/// `script` is all that is sent, each time rate, command and reply; "-" is no reply.
void Check(const char* model, const Kept& before, const Change& apply, const char* script,
           const Expected& expected, State state = State::Normal) {
    SCOPED_TRACE(std::string(model) + script);
    ConfigSession session(model, before, state == State::Initialisation);
    session.Session.ConfigResult = expected.ResultBefore;
    Lines sent;
    std::istringstream words(script);
    for (std::string rate, command, reply; words >> rate >> command >> reply;) {
        sent.push_back(rate.append(" ").append(command));
        session.Port().Queue.push_back({reply == "-" ? "" : reply + "\r"});
    }
    const bool complete = std::ranges::all_of(expected.Shown, [](const auto& text) { return text == Done; });
    EXPECT_EQ(apply(session.Session, session.Messages) == ConfigOutcome::Complete, complete);
    EXPECT_EQ(session.Sent(), sent);
    EXPECT_EQ(session.Shown(), expected.Shown);
    EXPECT_EQ(session.Kept(), expected.Kept);
    EXPECT_EQ(session.Session.ConfigResult, expected.Result);
}

TEST(FamilyConfigs, AnalogInputAsBytes) {
    // Nothing changed: the channels alone. Then with checksum: the channels go to the new address.
    Check("8250  ", {1, 5, 8}, Input({{1, 5, 0}, 8, 0, 0xA5}), "38400 $015A5 !01", {{1, 5, 8}});
    Check("8260  ", {1, 3, 2, 2, 1}, Input({{0x1F, 3, 1}, 2, 2, 0xFF}),
          "9600 %011F0206422B !1F98 9600 $1F5FF5C !1F98", {{0x1F, 3, 2, 2, 1}});
    // No channel beyond the model's; Ohms is code 3.
    Check("8230  ", {1, 3, 0x20}, Input({{1, 3, 0}, 0x20, FormatCodes("8230").at(1), 0xFF}),
          "9600 %0101200603 !01 9600 $01507 !01", {{1, 3, 0x20, 3}});
    // In its initialisation state a module is spoken to at 00 to the end. 115200 is 09, 57600 is 0A.
    Check("8260  ", {7, 6, 4, 0, 1}, Input({{8, 6, 1}, 4, 2, 1}), "9600 %0008040942 !08 9600 $00501 !08",
          {{8, 6, 4, 2, 1}}, State::Initialisation);
    // Of two ranges of one name the first; no range selected: the nameless code 07.
    Check("8260  ", {7, 3, 0x0A}, Input({{7, 7, 0}, RangeCodeNamed("8260", "+/- 1V ")}),
          "9600 %0007040A00 !07 9600 $00500 !07", {{7, 7, 4}}, State::Initialisation);
    Check("8260  ", {1, 3, 0x1F}, Input({{1, 3, 0}, RangeCodeNamed("8260", "")}),
          "9600 %0101070600 ?01 9600 $01500 ?01", {{1, 3, 0x1F}, {Failed, ChannelsFailed}, 2, 1});
    // A result from before does not count.
    Check("8250  ", {}, Input({{1, 3, 0}}), "9600 $01500 -", {{}, {ChannelsFailed}, 2, 1});
    Check("8250  ", {}, Input({{256, 3, 0}}), "", {{}, {TooHigh}, 2, 1});
}

TEST(FamilyConfigs, AnalogOutputAsBytes) {
    Check("8320  ", {1, 3, 0, 0, 0, 3}, Output({{1, 3, 0}, 0, 0, 1}), "", {{1, 3, 0, 0, 0, 3}, {}, 7, 7});
    Check("8320  ", {}, Output({{1, 3, 0}, 0, 0, 1}), "9600 ~01CP01 !01", {{1, 3, 0, 0, 0, 1}, {}});
    // The 8310 has no polarity.
    Check("8310  ", {1, 3, 0x30}, Output({{1, 3, 1}, 0x30, 1, 1}), "9600 %0001300641 !01",
          {{1, 3, 0x30, 1, 1}}, State::Initialisation);
    // No range selected: one past the end. The polarity goes to the new address.
    Check("8320  ", {1, 3, 0x30, 0, 0, 3}, Output({{2, 3, 0}, RangeCodeNamed("8320", ""), 0, 0}),
          "9600 %0102340600 !02 9600 ~02CP00 !02", {{2, 3, 0x34}});
}

TEST(FamilyConfigs, DigitalAsBytes) {
    Check("8410  ", {1, 3, 0, 0, 0, 2}, Digital({{1, 3, 0}, 0, 1}), "", {{1, 3, 0, 0, 0, 2}, {}, 7, 7});
    Check("8410  ", {}, Digital({{1, 3, 0}, 1, 1}), "9600 ~01CP11 !", {{1, 3, 0, 0, 0, 3}, {}});
    Check("8480  ", {1, 3, 0, 0, 0, 1}, Digital({{1, 3, 0}, 0, 1}), "9600 ~01CP10 !01",
          {{1, 3, 0, 0, 0, 2}, {}});
    Check("8490  ", {0}, Digital({{1, 3, 1}, 1, 0}), "9600 %0001400640 !01 9600 ~00CP01 !01",
          {{1, 3, 0, 0, 1, 1}}, State::Initialisation);
    // A result from before stays when the polarity alone fails.
    Check("8410  ", {}, Digital({{1, 3, 0}, 1, 0}), "9600 ~01CP01 ?01", {{}, {PolarityFailed}, 1, 1});
}

TEST(FamilyConfigs, PortDirectionsAsBytes) {
    Check("8460  ", {}, Ports({{1, 3, 0}, 15}), "9600 $01S0F !01", {{}});
    Check("8460  ", {}, Ports({{255, 3, 0}, 8}), "9600 %01FF400600 !FF 9600 $FFS08 !FF", {{255}});
    // A result from before is told although the directions failed.
    Check("8460  ", {}, Ports({{1, 3, 0}}), "9600 $01S00 ?01", {{}, {PortsFailed, Done}, 1, 1});
    Check("8460  ", {}, Ports({{1, 3, 0}}), "9600 $01S00 ?01", {{}, {PortsFailed}, 0, 0});
    Check("8460  ", {}, Ports({{1, 3, 1}}), "9600 %0001400640 !00 9600 $00S00 ?00",
          {{}, {Failed, PortsFailed}, 2, 1}, State::Initialisation);
}

TEST(FamilyConfigs, ReadsBeforeTheDialog) {
    // Reply, enabled channels and whether they are known, input ports and whether they are known.
    const std::tuple<const char*, unsigned, bool, unsigned, bool> cases[] = {
        {"!01A5\r", 0xA5, true, 1, false},  {"!0300\r", 0, false, 3, true},  {"!0100\r", 0, true, 1, true},
        {"!02A5\r", 0xA5, false, 2, false}, // of another module
        {"?01fF\r", 0xFF, false, 1, false}, {"!01G0\r", 0, false, 1, false}, {"!0G00\r", 0, false, 15, false},
        {"!1300\r", 0, false, 3, false},    {"!F\r", 0, false, 15, false},   {"!x\r", 0, false, 15, false},
        {"!01\r", 0, false, 1, false},      {"!01A5", 0, false, 15, false}};
    for (const auto& [reply, enabled, enabledKnown, inputs, inputsKnown] : cases) {
        SCOPED_TRACE(reply);
        ConfigSession session("8250  ", {});
        session.Port().Replies["9600 $016"] = {reply};
        const AnalogInputConfig channels = ReadAnalogInputConfig(session.Session, 0);
        EXPECT_EQ(std::tuple(channels.EnabledChannels, channels.ChannelsKnown),
                  std::tuple(enabled, enabledKnown));
        session.Record.Model = "8460  ";
        const auto start = session.Time.GetTickCount();
        const PortDirectionConfig ports = ReadPortDirectionConfig(session.Session, 0);
        EXPECT_EQ(std::tuple(ports.InputPorts, ports.PortsKnown), std::tuple(inputs, inputsKnown));
        EXPECT_LE(session.Time.GetTickCount() - start, session.Session.Line.ReplyTimeout)
            << "not the long one";
    }
}

TEST(FamilyConfigs, NotesBesideEntries) {
    ScriptedSession list;
    list.Session.ModuleCount = 2;
    list.Session.ModuleTable[0].Address = 1;
    list.Session.ModuleTable[1] = {.Address = 7, .Model = "8250  "};
    const auto address = [&](const char* text) { return AddressNote(list.Session, 0, text); };
    for (const char* text : {"1", "2", "0", "", "256", "99999999999"})
        EXPECT_EQ(address(text), "") << text;
    EXPECT_EQ(address("007"), "The list already has a module at this address: 8250.");

    const std::string whole = ": enter digits only.", written = "Sent as written" + whole;
    // Text, separator, notes of a count, a width and a level: behind "Taken as " but for `written`.
    using Note = std::string;
    const std::tuple<const char*, const char*, Note, Note, Note> cases[] = {
        {"12", ".", "", "", ""},
        {" -5", ",", "", written, ""},
        {"2.4", ".", "2" + whole, written, ""},
        {"2,4", ".", "2" + whole, written, "2 V: not a number."},
        {"2,4", ",", "2" + whole, written, ""},
        {"2.4", ",", "2" + whole, written, ""},
        {"2,44", ",", "2" + whole, written, "2,4 V."},
        {"1,000", ".", "1" + whole, written, "1 V: not a number."},
        {"1,000", ",", "1" + whole, written, ""},
        {"12abc", ".", "12" + whole, written, "12 V: not a number."},
        {"1e3", ".", "1000" + whole, written, "1000 V: not a number."},
        {"-0.01", ".", "0" + whole, written, "0 V."},
        {"x", ".", "0" + whole, written, "0 V: not a number."},
        {"", ".", "0" + whole, "0.", "0 V: not a number."},
        {"1e30", ".", "", written, ""}}; // too large, which OK refuses
    const auto taken = [](const std::string& note) {
        return note.starts_with("Taken as ") ? note.substr(9) : note;
    };
    for (const auto& [text, separator, count, width, level] : cases) {
        SCOPED_TRACE(std::string(text) + " " + separator);
        EXPECT_EQ(taken(CountNote(text, separator)), count);
        EXPECT_EQ(taken(WidthNote(text, separator)), width);
        EXPECT_EQ(taken(LevelNote(text, separator)), level);
    }
}

} // namespace
} // namespace kavro
