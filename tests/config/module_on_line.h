#pragma once

#include "config/config_commands.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

#include <functional>

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
        Line.Log = [this](const LineEvent& event) {
            const std::size_t checksum = Module.Settings.Checksum && !Module.Settings.Initialisation ? 2 : 0;
            Sent.push_back(event.Command.substr(0, event.Command.size() - checksum));
            if (static_cast<int>(Sent.size()) == UnplugAt)
                Line.Unplug();
        };
    }

    SimulatedModule& Module;
    ModuleRecord& Record;
    Lines Sent;
    int UnplugAt = 0; ///< the adapter is pulled out at that command, counted from 1
};

/// Applies the entry's settings with a change.
template <class Config, auto ConfigOf, auto Apply>
ConfigOutcome ApplyChange(ModuleOnLine& test, const std::function<void(Config&)>& change) {
    Config config = ConfigOf(test.Session, 0);
    change(config);
    test.Sent.clear();
    test.Messages.Shown.clear();
    return Apply(test.Session, 0, config, test.Messages);
}

/// A command of a sequence and what is shown when the module does not accept it.
struct ConfigStep {
    std::string Command, Failure;
};

/// `apply` sends `steps` to a module with `record`. Each of them failing in each way is told, does not stop
/// the others and leaves its own field alone, so that the next time nothing else is sent; the port lost at it
/// is an exception, and what comes from there on is sent the next time.
inline void ExpectFaultsAtEachStep(const ModuleRecord& record, const std::vector<ConfigStep>& steps,
                                   const std::function<ConfigOutcome(ModuleOnLine& test)>& apply) {
    Lines all;
    for (const ConfigStep& step : steps)
        all.push_back(step.Command);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        SCOPED_TRACE(steps[i].Command);
        ShownMessages shown = {{steps[i].Failure, "Error"}};
        if (steps.size() > 1)
            shown.push_back(CompleteMessage);
        for (const Faults& fault : {Faults{.Silent = true}, Faults{.Refuse = true},
                                    Faults{.WrongChecksum = true}, Faults{.WrongAddress = true}}) {
            ModuleOnLine test(record);
            test.Module.CommandFaults = [&](std::string_view command) {
                return command.starts_with(steps[i].Command) ? fault : Faults{};
            };
            EXPECT_EQ(apply(test), ConfigOutcome::Incomplete);
            EXPECT_EQ(test.Sent, all);
            EXPECT_EQ(test.Messages.Shown, shown);
            test.Module.CommandFaults = {};
            EXPECT_EQ(apply(test), ConfigOutcome::Complete);
            EXPECT_EQ(test.Sent, Lines{steps[i].Command});
        }
        ModuleOnLine test(record);
        test.UnplugAt = static_cast<int>(i) + 1;
        EXPECT_THROW(apply(test), RuntimeFailure);
        test.UnplugAt = 0;
        test.Line.Plug();
        test.Session.Line.CommPort(1).PortOpen(true);
        EXPECT_EQ(apply(test), ConfigOutcome::Complete);
        EXPECT_EQ(test.Sent, Lines(all.begin() + static_cast<std::ptrdiff_t>(i), all.end()));
    }
}

} // namespace kavro
