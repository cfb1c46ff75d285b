#pragma once

#include "config/config_commands.h"
#include "map/family_reads.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {

inline const std::pair<std::string, std::string> CompleteMessage = {ConfigCompleteText, ""};

/// A simulated module at address 1, 9600 baud, and its entry 0, selected; what is sent to it, without
/// checksums.
struct ModuleOnLine : SimulatedSession {
    explicit ModuleOnLine(const ModuleRecord& record)
        : Module(Line.Add(MakeModule(Trim(record.Model), 1, 9600, record.Checksum == 1))),
          Record(Session.ModuleTable[0]) {
        Session.SelectedModule = 0;
        Session.ScanIndex = -1;
        Session.ConfigResult = 1; // of the dialog before
        Record = record;
        Record.Address = 1;
        Record.BaudCode = 3;
        Session.Line.SetPortBaud(1, 3, 0, 8, 0); // the pause after a change of speed is over
        Line.Log = [this](const LineEvent& event) {
            const std::size_t checksum = Module.Settings.Checksum && !Module.Settings.Initialisation ? 2 : 0;
            Sent.push_back(event.Command.substr(0, event.Command.size() - checksum));
            if (Sent.size() == UnplugAt)
                Line.Unplug();
        };
    }

    SimulatedModule& Module;
    ModuleRecord& Record;
    Lines Sent;
    std::size_t UnplugAt = 0; ///< the adapter is pulled out at that command, counted from 1
};

/// The entry of a converter with that format word.
inline ModuleRecord ConverterWith(std::int32_t word) {
    ModuleRecord record = {.Model = "8620  ", .Converter = {.SecondBaudCode = 3}};
    record.InputRange = static_cast<std::int16_t>(FactorySettings("8620").TypeCode);
    DecodeConverterFormat(word, record);
    return record;
}

} // namespace kavro
