#include "config/config_names.h"

#include "config/alarm_input_config.h"
#include "config/analog_input_config.h"
#include "config/analog_output_config.h"
#include "config/converter_config.h"
#include "config/counter_config.h"
#include "config/digital_config.h"
#include "config/port_direction_config.h"
#include "link/codes.h"
#include "link/model_choices.h"
#include "link/models.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_dispatch.h"

#include <algorithm>
#include <memory>

namespace kavro {

namespace {

constexpr std::size_t NameWidth = 16; // of the help's column

using Settings = std::vector<NamedSetting>;

// What names and values depend on beside the settings themselves.
struct Subject {
    std::string Model;
    bool Initialising = false;
};

NamedSetting FormatSetting(const NumberField& field, const std::string& model) {
    std::vector<SettingChoice> formats;
    for (const std::int16_t code : FormatCodes(model))
        formats.push_back({code, Trim(FormatName(code))});
    NamedSetting setting = CodeSetting("format", field, formats);
    setting.Hint = "0 Engineering Units, 1 % of FSR, 2 Two's complement, 3 Ohms: number or name";
    return setting;
}

NamedSetting OnlyInitialising(NamedSetting setting, const Subject& subject) {
    setting.When = Writable::Initialising;
    return LockedWhile(
        std::move(setting), [locked = !subject.Initialising] { return locked; },
        "can be changed only while the module is in its initialisation state. Switch it on in "
        "that state and use address 00");
}

// Of every module; before those of its family.
Settings LinkNames(LinkSettings& link, const Subject& subject) {
    return {FixedSetting("model", Trim(ShownModel(subject.Model))), AddressSetting("address", link.Address),
            OnlyInitialising(BaudSetting("baud", link.BaudCode), subject),
            OnlyInitialising(SwitchSetting("checksum", link.Checksum), subject)};
}

NamedSetting Polarity(const std::string& name, const NumberField& inverted) {
    return ReadBy("~CR", ChoiceSetting(name, inverted, {"normal", "inverted"}));
}

Settings AnalogInputNames(AnalogInputConfig& settings, const Subject& subject) {
    return {RangeSetting("range", settings.InputRange, subject.Model),
            FormatSetting(settings.DataFormat, subject.Model),
            ReadBy("$6", BitsSetting("channels", settings.EnabledChannels,
                                     ChannelCount(subject.Model).value_or(0)))};
}

Settings AlarmInputNames(AlarmInputConfig& settings, const Subject& subject) {
    // The range's full scale, which may change along with the limit, is checked when all is known.
    const NumberBounds bounds = {-9999, 9999, 4, "a number within the full scale of the range"};
    const auto limit = [&settings, &bounds](const std::string& name, std::string& text) {
        NamedSetting setting = NumberSetting(name, text, bounds);
        setting.Sent = [&settings, &text] { // of no module yet it is empty, which counts as 0
            return FormatReading(text.empty() ? "0" : text, settings.InputRange);
        };
        return setting;
    };
    return {
        RangeSetting("range", settings.InputRange, subject.Model),
        FormatSetting(settings.DataFormat, subject.Model),
        ReadBy("@DI", ChoiceSetting("alarm-mode", settings.AlarmMode, {"disabled", "momentary", "latch"})),
        ReadBy("@RL", limit("low-alarm", settings.LowAlarm)),
        ReadBy("@RH", limit("high-alarm", settings.HighAlarm))};
}

Settings AnalogOutputNames(AnalogOutputConfig& settings, const Subject& subject) {
    Settings names = {RangeSetting("range", settings.OutputRange, subject.Model),
                      FormatSetting(settings.DataFormat, subject.Model)};
    if (HasInputPolarity(subject.Model))
        names.push_back(Polarity("input-polarity", settings.InputPolarity));
    return names;
}

Settings DigitalNames(DigitalConfig& settings, const Subject& /*subject*/) {
    return {Polarity("input-polarity", settings.InputPolarity),
            Polarity("output-polarity", settings.OutputPolarity)};
}

Settings PortNames(PortDirectionConfig& settings, const Subject& /*subject*/) {
    Settings names;
    int bit = 3;
    for (const char* port : {"port-a", "port-b", "port-ch", "port-cl"})
        names.push_back(ReadBy(
            "$6", ChoiceSetting(port, NumberField::Bit(settings.InputPorts, bit--), {"output", "input"})));
    return names;
}

Settings ConverterNames(ConverterConfig& settings, const Subject& subject) {
    return {OnlyInitialising(BaudSetting("second-baud", settings.SecondBaudCode), subject),
            NumberSetting("data-bits", settings.DataBits, {5, 8}),
            ChoiceSetting("parity", settings.Parity, {"none", "odd", "even"}),
            NumberSetting("stop-bits", settings.StopBits, {1, 2}),
            ChoiceSetting("interface", settings.Rs485, {"RS-422", "RS-485"})};
}

// The settings of one counter; `n` ends their names.
Settings OneCounterNames(CounterSettings& values, std::size_t counter) {
    const NumberBounds count = {0, UINT32_MAX};
    const std::string n = "-" + std::to_string(counter);
    const char* const readMax = counter == 0 ? "$3" : "@G";
    return {ReadBy("$5", ChoiceSetting("status" + n, values.CounterStatus[counter], {"stop", "start"})),
            ReadBy(readMax, NumberSetting("max" + n, values.MaxValue[counter], count)),
            ReadBy("@RP", NumberSetting("initial" + n, values.InitialValue[counter], count)),
            ReadBy("@DI", SwitchSetting("alarm" + n, values.AlarmSetting[counter])),
            ReadBy("@RA", NumberSetting("alarm-limit" + n, values.AlarmValue[counter], count))};
}

Settings CounterNames(CounterConfig& settings, const Subject& /*subject*/) {
    const NumberBounds microseconds = {0, 9999, 0, "0 to 9999 microseconds"};
    const NumberBounds volts = {0, 9.9, 1, "0 to 9.9 volts, at most one decimal"};
    CounterSettings& values = settings.Values;
    Settings counting = {
        ReadBy("$A", ChoiceSetting("gate-mode", values.GateMode, {"low", "high", "disabled"})),
        ReadBy("$4", SwitchSetting("filter", values.DigitalFilter)),
        ReadBy("$0H", NumberSetting("min-high", settings.MinAtHigh, microseconds)),
        ReadBy("$0L", NumberSetting("min-low", settings.MinAtLow, microseconds)),
        ReadBy("$1H", NumberSetting("ttl-high", settings.TtlAtHigh, volts)),
        ReadBy("$1L", NumberSetting("ttl-low", settings.TtlAtLow, volts))};
    for (const std::size_t counter : {0U, 1U})
        std::ranges::move(OneCounterNames(values, counter), std::back_inserter(counting));

    const auto counts = [&settings] { return settings.TypeCode == CounterRange; };
    const std::vector<SettingChoice> types = {{CounterRange, "counter"}, {FrequencyRange, "frequency"}};
    Settings names = {CodeSetting("type", settings.TypeCode, types),
                      LockedWhile(ChoiceSetting("gate-time", values.GateTime, {"0.1s", "1s"}), counts,
                                  "can be changed only while the type is frequency"),
                      ReadBy("$B", ChoiceSetting("input-mode", values.InputMode, {"TTL", "photo-isolated"}))};
    for (NamedSetting& setting : counting)
        names.push_back(LockedWhile(std::move(setting), std::not_fn(counts),
                                    "can be changed only while the type is counter"));
    return names;
}

// Whether it was told by the module, whose reads that failed stand in the entry.
void NoteTold(NamedSetting& setting, const ModuleRecord& record) {
    setting.Told = std::ranges::find(record.Unread, setting.ReadBy) == record.Unread.end();
}

template <class Config>
Settings AllNames(Config& config, const Subject& subject, Settings (*names)(Config&, const Subject&)) {
    Settings all = LinkNames(config.Link, subject);
    std::ranges::move(names(config, subject), std::back_inserter(all));
    return all;
}

template <class Config>
NamedConfig Bound(Session& session, int index, const Config& config,
                  Settings (*names)(Config&, const Subject&),
                  ConfigOutcome (*apply)(Session&, int, const Config&, Messages&)) {
    const auto kept = std::make_shared<Config>(config);
    const ModuleRecord& record = session.ModuleTable[index];
    const Subject subject = {record.Model, index == session.ScanIndex};
    Settings all = AllNames(*kept, subject, names);
    for (NamedSetting& setting : all)
        NoteTold(setting, record);
    const auto write = [kept, &session, index, apply](Messages& messages) {
        return apply(session, index, *kept, messages);
    };
    const bool known = std::ranges::all_of(all, &NamedSetting::Told);
    return {std::move(all), known, write};
}

template <auto Read, auto Names, auto Apply>
NamedConfig Open(Session& session, int index) {
    return Bound(session, index, Read(session, index), Names, Apply);
}

// Settings that are no module's; they cannot be written.
template <class Config>
NamedConfig Unbound(const Subject& subject, Settings (*names)(Config&, const Subject&),
                    const Config& config = {}) {
    const auto kept = std::make_shared<Config>(config);
    return {AllNames(*kept, subject, names), false, [kept](Messages&) { return ConfigOutcome::Refused; },
            false};
}

template <class Config, Settings (*Names)(Config&, const Subject&)>
NamedConfig Blank(const std::string& model) {
    return Unbound<Config>({model, true}, Names);
}

// What every module has, of a model without a configuration.
struct LinkConfig {
    LinkSettings Link;
};

Settings NoNames(LinkConfig& /*settings*/, const Subject& /*subject*/) {
    return {};
}

NamedConfig OpenLink(Session& session, int index) {
    const LinkConfig config{LinkSettingsOf(session.ModuleTable[index])};
    NamedConfig named = Unbound<LinkConfig>({session.ModuleTable[index].Model}, NoNames, config);
    named.Known = true;
    return named;
}

// Calls `use` with the names of a model's settings, which live only as long as the call.
using NamesUser = std::function<void(const Settings& settings)>;

template <class Config, Settings (*Names)(Config&, const Subject&)>
void WithNames(const char* model, const NamesUser& use) {
    Config config;
    use(Names(config, {model, true}));
}

struct ConfigFamily {
    ModuleDialog Dialog;
    const char* Sample;    // a model with all that the family can have
    bool NeedsFamilyReads; // the settings that the search reads are among those of the dialog
    NamedConfig (*Open)(Session& session, int index);
    void (*WithNames)(const char* model, const NamesUser& use);
    NamedConfig (*Blank)(const std::string& model);
};

constexpr ConfigFamily Families[] = {
    {ModuleDialog::MultiConfigForm, "8210", true,
     Open<AlarmInputConfigOf, AlarmInputNames, ApplyAlarmInputConfig>,
     WithNames<AlarmInputConfig, AlarmInputNames>, Blank<AlarmInputConfig, AlarmInputNames>},
    {ModuleDialog::AdConfigForm, "8260", true,
     Open<ReadAnalogInputConfigWell, AnalogInputNames, ApplyAnalogInputConfig>,
     WithNames<AnalogInputConfig, AnalogInputNames>, Blank<AnalogInputConfig, AnalogInputNames>},
    {ModuleDialog::DaConfigForm, "8320", true,
     Open<AnalogOutputConfigOf, AnalogOutputNames, ApplyAnalogOutputConfig>,
     WithNames<AnalogOutputConfig, AnalogOutputNames>, Blank<AnalogOutputConfig, AnalogOutputNames>},
    {ModuleDialog::DioConfigForm, "8410", true, Open<DigitalConfigOf, DigitalNames, ApplyDigitalConfig>,
     WithNames<DigitalConfig, DigitalNames>, Blank<DigitalConfig, DigitalNames>},
    {ModuleDialog::N46ConfigForm, "8460", false,
     Open<ReadPortDirectionConfigWell, PortNames, ApplyPortDirectionConfig>,
     WithNames<PortDirectionConfig, PortNames>, Blank<PortDirectionConfig, PortNames>},
    {ModuleDialog::CtrConfigForm, "8510", true, Open<CounterConfigOf, CounterNames, ApplyCounterConfig>,
     WithNames<CounterConfig, CounterNames>, Blank<CounterConfig, CounterNames>},
    {ModuleDialog::N8610ConfigForm, "8610", true,
     Open<ConverterConfigOf, ConverterNames, ApplyConverterConfig>,
     WithNames<ConverterConfig, ConverterNames>, Blank<ConverterConfig, ConverterNames>},
};

// The models of a family, and which of them alone have one of its settings.
std::string ModelsOf(const ConfigFamily& family) {
    std::vector<std::string> models, withPolarity;
    for (const ModelRow& row : KnownModelRows()) {
        if (DispatchModel(row.Name, 0, Operation::Configuration).Dialog != family.Dialog)
            continue;
        models.emplace_back(row.Name);
        if (HasInputPolarity(row.Name))
            withPolarity.emplace_back(row.Name);
    }
    if (withPolarity.empty() || withPolarity == models)
        return Listed(models);
    return Listed(models) + " (input-polarity: " + Listed(withPolarity) + " only)";
}

std::string HelpLines(const std::string& models, const Settings& settings) {
    std::string lines = models + ":\n";
    for (const NamedSetting& setting : settings)
        lines += "  " + FixedText(setting.Name, NameWidth) +
                 (setting.Hint.empty() ? setting.Values : setting.Hint) + "\n";
    return lines;
}

// Calls `use` with the settings of every module, then with those of each family.
void ForEachFamily(const std::function<void(const std::string& models, const Settings& settings)>& use) {
    LinkSettings link;
    use("every model", LinkNames(link, {}));
    for (const ConfigFamily& family : Families)
        family.WithNames(family.Sample, [&](const Settings& settings) { use(ModelsOf(family), settings); });
}

} // namespace

NamedConfig BlankConfig(const std::string& model) {
    const ModuleDialog dialog = DispatchModel(model, 0, Operation::Configuration).Dialog;
    const auto* family = std::ranges::find(Families, dialog, &ConfigFamily::Dialog);
    return family == std::end(Families) ? Blank<LinkConfig, NoNames>(model) : family->Blank(model);
}

NamedConfig ReadNamedConfig(Session& session, Identified identified) {
    const ModuleDialog dialog = DispatchModule(session, Operation::Configuration).Dialog;
    const auto* family = std::ranges::find(Families, dialog, &ConfigFamily::Dialog);
    if (family == std::end(Families))
        return OpenLink(session, session.SelectedModule);
    NamedConfig config = family->Open(session, session.SelectedModule);
    config.Known &= identified == Identified::Fully || !family->NeedsFamilyReads;
    return config;
}

std::string SettingsHelp() {
    std::string help;
    ForEachFamily([&help](const std::string& models, const Settings& settings) {
        help += HelpLines(models, settings);
    });
    return help;
}

std::vector<std::string> SettingNames() {
    std::vector<std::string> names;
    ForEachFamily([&names](const std::string& /*models*/, const Settings& settings) {
        for (const NamedSetting& setting : settings)
            if (std::ranges::find(names, setting.Name) == names.end())
                names.push_back(setting.Name);
    });
    return names;
}

} // namespace kavro
