#pragma once

#include "config/config_exchange.h"
#include "link/baud.h"
#include "project/line_comparison.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <algorithm>
#include <fstream>

namespace kavro {

/// Messages that nobody looks at, and work that is told there.
struct WorkOnLine : SimulatedSession {
    explicit WorkOnLine(SimulatedLine line) : SimulatedSession(std::move(line)) {
        Session.Line.BaudChangePauseMs = 0;
        Session.ReplaceFile = [](const auto& path, const auto& content) { std::ofstream(path) << content; };
    }

    /// The modules of the line become the list of the session.
    void ListAll() {
        Session.ModuleCount = 0;
        Session.ScanIndex = -1;
        for (const auto& module : Line.Modules()) {
            ModuleRecord& record = Session.ModuleTable[Session.ModuleCount];
            record = {.Address = static_cast<std::int16_t>(module->Settings.Address)};
            record.Model = FixedText(module->Settings.Model, 6);
            record.BaudCode = CodeFromBaud(module->Settings.Baud);
            record.Checksum = module->Settings.Checksum ? 1 : 0;
            if (module->Settings.Initialisation)
                Session.ScanIndex = Session.ModuleCount;
            ++Session.ModuleCount;
        }
    }

    LineWorkScope Scope{Session}; // as whoever starts such work
    LineWork Work = {Session, {Messages, {"the program", "the terminal", "a search"}}};
};

/// A line of one module of each family, and of a counter module that measures frequencies.
inline SimulatedLine EachFamily() {
    SimulatedLine line;
    std::int16_t address = 1;
    for (const char* model : {"8220", "8250", "8310", "8320", "8410", "8460", "8510", "8510", "8620"})
        line.Add(MakeModule(model, address++));
    line.ModuleAt(8).Settings.TypeCode = 0x51;
    return line;
}

/// Another value that the setting can have; false when it has one alone.
inline bool ChangeValue(NamedSetting& setting) {
    const SettingValue before = setting.Value();
    std::vector<std::string> texts = {
        "on",  "off", "inverted", "normal", "input", "output",    "momentary", "odd",    "1",
        "2",   "7",   "1.5",      "0,1",    "start", "stop",      "RS-485",    "RS-422", "photo-isolated",
        "TTL", "1s",  "0.1s",     "high",   "low",   "frequency", "counter",   "19200",  "9600"};
    for (int range = 0; range < 0x40; ++range)
        texts.push_back(ToHex(range, 2));
    for (const std::string& text : texts) {
        try {
            setting.Take(text);
        } catch (const RuntimeFailure&) {
            continue;
        }
        if (setting.Value() != before)
            return true;
    }
    return false;
}

/// Gives every setting of every module another value, but those that only the initialisation state takes
/// where the module is not in it. Returns "ADDRESS NAME" of each.
inline Lines ChangeEverything(WorkOnLine& line, const LineFile& file) {
    Lines changed;
    for (const SavedModule& module : file.Modules) {
        const bool initialising = line.Line.ModuleAt(module.Address).Settings.Initialisation;
        const Contact way = {initialising ? std::int16_t{0} : module.Address, {SavedWay(module)}};
        for (const bool ofType : {false, true, false}) { // what a counter module counts by, then its type
            auto config = ReadConfigTwice(line.Session, way, line.Work.Tell).value();
            for (NamedSetting& setting : config.Settings) {
                const std::string name = std::to_string(module.Address) + " " + setting.Name;
                const bool isType = setting.Name == "type" || setting.Name == "gate-time";
                const bool fits = setting.When == Writable::Always ||
                                  (setting.When == Writable::Initialising && initialising);
                if (!fits || setting.Name == "address" || isType != ofType ||
                    std::ranges::find(changed, name) != changed.end() ||
                    (!ofType && !setting.Locked().empty()))
                    continue;
                if (ChangeValue(setting))
                    changed.push_back(name);
            }
            WriteConfig(line.Session, config, line.Messages);
        }
    }
    return changed;
}

} // namespace kavro
