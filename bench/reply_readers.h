#pragma once

#include "bench/mutations.h"
#include "calib/ad_calibration.h"
#include "calib/da_calibration.h"
#include "cli/command_sender.h"
#include "cli/config_command.h"
#include "cli/map_output.h"
#include "cli/monitor_command.h"
#include "cli/output_command.h"
#include "cli/read_command.h"
#include "cli/search_run.h"
#include "config/config_names.h"
#include "diag/alarm_panel.h"
#include "diag/analog_input_panel.h"
#include "diag/analog_output_panel.h"
#include "diag/counter_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/baud.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_dispatch.h"
#include "map/search.h"
#include "monitor/monitor.h"
#include "support/recorded_messages.h"

namespace kavro {

constexpr std::size_t Baud9600Code = 3;

/// What a reader reads from: a session whose line has one module, which is also its only entry.
struct ReaderContext {
    kavro::Session Session;
    SimulatedModule& Module;
    kavro::Dice& Dice;
    RecordedMessages Messages = {};
    kavro::Contact Contact = {};
    Identified Found = Identified::No;

    /// Asks the module for itself, as the search does; without an answer its entry is made of its settings.
    void Identify() {
        const ModuleSettings& own = Module.Settings;
        const bool initialising = own.Initialisation;
        const auto address = static_cast<std::int16_t>(initialising ? 0 : own.Address);
        const auto baudCode = initialising ? std::int16_t{3} : CodeFromBaud(own.Baud);
        const auto checksum = static_cast<std::int16_t>(own.Checksum && !initialising);
        Contact = {address, {{checksum, baudCode}}};
        Session.Line.SettingsOf(1).BaudEnabled[static_cast<std::size_t>(baudCode)] = 1;
        ModuleRecord& record = Session.ModuleTable[0];
        record.Address = static_cast<std::int16_t>(own.Address);
        record.Model = FixedText(own.Model, 6);
        record.BaudCode = baudCode;
        record.Checksum = static_cast<std::int16_t>(own.Checksum);
        record.InputRange = static_cast<std::int16_t>(own.TypeCode);
        record.DataFormat = static_cast<std::int16_t>(own.DataFormat);
        Session.ModuleCount = 1;
        Session.SelectedModule = 0;
        Session.ScanIndex = initialising ? 0 : -1;
        Found = FindModule(Session, Contact, {Messages, {"the bench", "the bench", "a search"}});
    }

    const ModuleRecord& Record() const { return Session.ModuleTable[0]; }
    bool Serves(Operation operation, ModuleDialog dialog) const {
        return DispatchModule(Session, operation).Dialog == dialog;
    }
    int Channel() { return static_cast<int>(Dice.Below(8)); }
};

inline void ReadNetwork(ReaderContext& context) {
    SearchOptions options;
    options.HighestAddress = static_cast<std::int16_t>(context.Dice.Below(256));
    if (context.Dice.Chance(0.9)) // the module's own address, and as a rule no more
        options.HighestAddress = static_cast<std::int16_t>(std::min(context.Module.Settings.Address, 24));
    SearchLine(context.Session, options);
    MapText(context.Session);
    MapJson(context.Session, {"device", true});
}

inline void ReadConfigOfModule(ReaderContext& context) {
    ReadModuleConfig(context.Session, 0);
    BuildListLine(context.Session, 0);
}

/// Some of the values that can be given for a setting, some that cannot.
inline std::string AnyValue(const NamedSetting& setting, Dice& dice) {
    const char* const values[] = {"0",    "1",     "2",         "3",       "5",    "on",        "off",
                                  "08",   "none",  "all",       "0x13",    "0,2",  "normal",    "inverted",
                                  "-1",   "0.5",   "1000000",   "latch",   "even", "input",     "output",
                                  "9600", "19200", "frequency", "counter", "255",  "4294967295"};
    return dice.Chance(0.3) ? SettingText(setting) : dice.Of(values);
}

inline void ReadAndWriteConfig(ReaderContext& context) {
    auto config = ReadNamedConfig(context.Session, context.Found);
    if (!config.Writable)
        return;
    for (NamedSetting& setting : config.Settings)
        if (context.Dice.Chance(0.3)) {
            try {
                setting.Take(AnyValue(setting, context.Dice));
            } catch (const RuntimeFailure&) { // does not fit
            }
        }
    config.Apply(context.Messages);
    BuildListLine(context.Session, 0);
}

inline void ShowSettings(ReaderContext& context) {
    ShowConfig(context.Session, context.Contact, context.Dice.Chance(0.5));
}

inline void SetSetting(ReaderContext& context) {
    const auto names = SettingNames();
    const NamedSetting any = FixedSetting("any", "1");
    SetConfig(context.Session, context.Contact, {{context.Dice.Of(names), AnyValue(any, context.Dice)}});
}

inline void ReadAllValues(ReaderContext& context) {
    const ValueForm forms[] = {ValueForm::Text, ValueForm::Csv, ValueForm::Json};
    ReadOptions options{.Form = context.Dice.Of(forms)};
    if (context.Dice.Chance(0.5))
        options.Channel = std::to_string(context.Channel());
    ReadValues(context.Session, context.Contact, options);
}

inline void MonitorRounds(ReaderContext& context) {
    MonitorModules(context.Session, {.IntervalMs = 500, .Turns = 3},
                   context.Dice.Chance(0.5) ? ValueForm::Text : ValueForm::Json);
    Monitor monitor(context.Session);
    for (int turn = 0; turn < 3; ++turn)
        monitor.Tick();
    monitor.State(0);
    monitor.AgeMs(0);
}

inline void DriveAnOutput(ReaderContext& context) {
    const char* const outputs[] = {"", "0", "1", "7", "A", "D", "A0", "CL3", "all"};
    const char* const values[] = {"on", "off", "1.5", "-7.25", "20", "0F05", "3", "FFFFFF"};
    DriveOutputs(context.Session, context.Contact, {{context.Dice.Of(outputs), context.Dice.Of(values)}},
                 context.Dice.Chance(0.5));
}

inline void SendSomething(ReaderContext& context) {
    CommandSender sender(context.Session,
                         {.Checksum = context.Contact.Ways[0].Checksum, .Json = context.Dice.Chance(0.5)});
    std::string garbled = "$012";
    Mutate(garbled, "#050", context.Dice);
    sender.Send({"$" + ToHex(context.Contact.Address, 2) + "2", garbled});
}

inline void ReadAlarmPanel(ReaderContext& context) {
    if (!context.Serves(Operation::Diagnostic, ModuleDialog::MultiDiagForm))
        return;
    AlarmStates states;
    ReadAlarmStates(context.Session, 0, states);
    ActiveAlarmsText(states);
    std::string text;
    ReadAlarmLimit(context.Session, 0, context.Dice.Chance(0.5), text);
    SwitchAlarmOutput(context.Session, 0, context.Channel() % 2, true);
    ClearAlarms(context.Session, 0);
    SignedReading(ReadAnalogInput(context.Session, 0, 0), ".");
}

inline void ReadInputPanel(ReaderContext& context) {
    if (!context.Serves(Operation::Diagnostic, ModuleDialog::AdDiagForm))
        return;
    SignedReading(ReadAnalogInput(context.Session, 0, context.Channel()), ".");
    ReadChannelEnables(context.Session, 0, context.Session.Line.ReplyTimeout);
    ReadOpenStatus(context.Session, 0);
}

inline void ReadCounterPanel(ReaderContext& context) {
    Session& session = context.Session;
    if (ModuleFamily(context.Record().Model) != CounterFrequency)
        return;
    std::uint32_t value = 0;
    CounterFlags flags;
    CounterAlarms alarms;
    ReadCounter(session, 0, context.Channel() % 2, value);
    ReadCounterStarted(session, 0, flags);
    ReadCounterOverflow(session, 0, flags);
    ReadCounterAlarms(session, 0, alarms);
    StartCounter(session, 0, 1, true);
    ClearCounter(session, 0, 0);
}

inline void ReadDigitalPanel(ReaderContext& context) {
    if (ModuleFamily(context.Record().Model) != DigitalIo)
        return;
    Session& session = context.Session;
    DigitalStates states;
    ReadDigitalStates(session, 0, states);
    SwitchOutput(session, 0, context.Channel(), true);
    SwitchAllOutputs(session, 0, context.Dice.Chance(0.5));
    PolarityText(context.Record());
    unsigned word = 0;
    ReadPortDirections(session, 0, word);
    ReadPortLevels(session, 0, word);
    SwitchPortLines(session, 0, 0xFF, true);
}

inline void ReadOutputPanel(ReaderContext& context) {
    if (ModuleFamily(context.Record().Model) != AnalogOutput)
        return;
    ReadOutputModuleInputs(context.Session, 0);
    OutputCommand("01", context.Record(), {context.Channel(), 8});
}

inline void CalibrateInput(ReaderContext& context) {
    if (!context.Serves(Operation::Calibration, ModuleDialog::AdCalibForm))
        return;
    AdCalibration calibration(context.Session, 0, [&](int ms) { context.Session.Line.Time().Sleep(ms); });
    using Button = void (AdCalibration::*)();
    const Button buttons[] = {&AdCalibration::OffsetBtn_Click, &AdCalibration::SpanBtn_Click,
                              &AdCalibration::CJCBtn_Click, &AdCalibration::BackBtn_Click,
                              &AdCalibration::NextBtn_Click};
    calibration.CJCInput = context.Dice.Chance(0.5) ? "25.3" : RandomText(context.Dice, 12);
    for (int click = 0; click < 8; ++click) {
        const CalibrationView& view = calibration.View();
        const Button button = context.Dice.Of(buttons);
        const bool back = button == &AdCalibration::BackBtn_Click;
        const bool next = button == &AdCalibration::NextBtn_Click;
        if (back ? view.BackEnabled : !next || view.NextEnabled)
            (calibration.*button)();
    }
}

inline void CalibrateOutput(ReaderContext& context) {
    if (!context.Serves(Operation::Calibration, ModuleDialog::DaCalibForm))
        return;
    DaCalibration calibration(context.Session, 0);
    calibration.SetUp();
    for (int click = 0; click < 8; ++click) {
        const std::size_t button = context.Dice.Below(4);
        if (button == 0 && calibration.View().BackEnabled)
            calibration.BackBtn_Click();
        else if (button == 1 && calibration.NextBtn_Click())
            break;
        else if (button > 1 && calibration.View().TrimShown)
            button == 2 ? calibration.TrimUpBtn_Click() : calibration.TrimDownBtn_Click();
    }
    calibration.Restore();
}

/// A function that reads replies, or several that belong together.
struct ReplyReader {
    const char* Name;
    void (*Read)(ReaderContext& context);
};

inline constexpr ReplyReader ReplyReaders[] = {
    {"search", ReadNetwork},
    {"ReadModuleConfig", ReadConfigOfModule},
    {"configuration", ReadAndWriteConfig},
    {"config show", ShowSettings},
    {"config set", SetSetting},
    {"read", ReadAllValues},
    {"monitor", MonitorRounds},
    {"output", DriveAnOutput},
    {"send", SendSomething},
    {"alarm panel", ReadAlarmPanel},
    {"input panel", ReadInputPanel},
    {"counter panel", ReadCounterPanel},
    {"digital panel", ReadDigitalPanel},
    {"output panel", ReadOutputPanel},
    {"input calibration", CalibrateInput},
    {"output calibration", CalibrateOutput},
};

} // namespace kavro
