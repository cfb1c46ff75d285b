#pragma once

#include "config/ad_config_form.h"
#include "config/config_commands.h"
#include "config/ctr_config_form.h"
#include "config/da_config_form.h"
#include "config/dio_config_form.h"
#include "config/multi_config_form.h"
#include "config/n46_config_form.h"
#include "config/n8610_config_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/family_reads.h"
#include "sim/alarm_input_module.h"
#include "sim/converter_module.h"
#include "sim/module_factory.h"
#include "support/form_driver.h"

namespace kavro {

inline const std::pair<std::string, std::string> CompleteMessage = {ConfigCompleteText, ""};

/// A simulated module at address 1, 9600 baud, and its entry 0, selected; what is sent to it, without
/// checksums and without the commands by which a dialog reads its entry again.
struct ModuleOnLine : SimulatedSession {
    explicit ModuleOnLine(const ModuleRecord& record)
        : Module(Line.Add(MakeModule(Trim(record.Model), 1, 9600, record.Checksum == 1))),
          Record(Session.ModuleTable[0]) {
        Session.ConfigResult = 1; // of the dialog before
        Select(Session, record);
        MatchModule();
        Session.Line.SetPortBaud(1, 3, 0, 8, 0); // the pause after a change of speed is over
        Line.Log = [this](const LineEvent& event) {
            const std::size_t checksum = Module.Settings.Checksum && !Module.Settings.Initialisation ? 2 : 0;
            const std::string command = event.Command.substr(0, event.Command.size() - checksum);
            if (ReadsAgain(command))
                return;
            Sent.push_back(command);
            if (Sent.size() == UnplugAt)
                Line.Unplug();
        };
    }

    /// Gives the module what its entry says, where a dialog reads it again.
    void MatchModule() {
        Module.Settings.Address = Record.Address;
        if (auto* alarms = dynamic_cast<AlarmInputModule*>(&Module)) {
            Module.Settings.TypeCode = Record.InputRange;
            Module.Settings.DataFormat = Record.DataFormat;
            alarms->LowLimit = Record.LowAlarm;
            alarms->HighLimit = Record.HighAlarm;
            alarms->AlarmMode = Record.AlarmMode;
        } else if (dynamic_cast<ConverterModule*>(&Module)) {
            const bool checksum = std::exchange(Module.Settings.Checksum, false);
            const std::string address = ToHex(Record.Address, 2);
            Module.Hear("%" + address + address + ToHex(Record.InputRange, 2) +
                            ToHex(Record.Converter.SecondBaudCode + 3, 1) + ToHex(Record.BaudCode + 3, 1) +
                            ToHex(Record.Converter.FormatWord, 4),
                        9600, 0, {});
            Module.Settings.Checksum = checksum;
        }
    }

    bool ReadsAgain(const std::string& command) const {
        const std::int16_t family = ModuleFamily(Record.Model);
        if (family != AnalogInput && family != Converter)
            return false;
        const std::string tail = command.substr(3);
        return tail == "2" || tail == "M" || tail == "RL" || tail == "RH" || tail == "DI";
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

/// Makes entries in a dialog and clicks OK; whether it stays open. Each entry is a control and its text,
/// "Addr=2;BaudRate=9600", or a control alone to be clicked.
inline bool StaysOpen(QDialog& form, const QString& entries) {
    form.show();
    for (const QString& entry : entries.split(';', Qt::SkipEmptyParts)) {
        const QString name = entry.section('=', 0, 0);
        auto& control = Find<QWidget>(form, name);
        if (entry.contains('='))
            control.setProperty(qobject_cast<QComboBox*>(&control) ? "currentText" : "text",
                                entry.section('=', 1));
        else
            Click(form, name);
    }
    Click(form, "OKBtn");
    return form.isVisible();
}

template <class Form>
std::unique_ptr<QDialog> Open(Session& session, Messages& messages) {
    return std::make_unique<Form>(session, messages);
}

/// The configuration dialog of the module.
inline std::unique_ptr<QDialog> OpenFor(ModuleOnLine& module) {
    const std::map<std::string, std::unique_ptr<QDialog> (*)(Session&, Messages&)> dialogs = {
        {"8220", Open<MultiConfigForm>}, {"8230", Open<AdConfigForm>},   {"8250", Open<AdConfigForm>},
        {"8320", Open<DaConfigForm>},    {"8450", Open<DioConfigForm>},  {"8460", Open<N46ConfigForm>},
        {"8510", Open<CtrConfigForm>},   {"8620", Open<N8610ConfigForm>}};
    return dialogs.at(Trim(module.Record.Model))(module.Session, module.Messages);
}

} // namespace kavro
