#include "project/line_file.h"

#include "link/baud.h"
#include "link/codes.h"
#include "link/json_object.h"
#include "link/json_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/module_access.h"
#include "project/file_content.h"
#include "project/saved_json.h"

#include <algorithm>
#include <set>

namespace kavro {

namespace {

constexpr std::string_view Format = "kavro-line";
constexpr int Version = 1;
constexpr int HighestVersion = 2'000'000'000;
constexpr std::size_t ModelWidth = 6;

void RequireFormat(const JsonNode& root) {
    const JsonNode* const format = root.Member("format");
    if (!format || format->Text != Format)
        FailAt(format ? *format : root, "this is no line file, which has \"format\": \"kavro-line\". "
                                        "File > Back Up Line... and kavroctl backup write one.");
    if (WholeIn(root, "version", 1, HighestVersion) > Version)
        FailAt(*root.Member("version"), "a newer version of this program wrote the file. Update the "
                                        "program to use it.");
}

std::vector<SavedModule> ReadModules(const JsonNode& root) {
    const JsonNode* const list = root.Member("modules");
    if (!list || list->Is != JsonNode::Kind::List)
        FailAt(list ? *list : root, "\"modules\" must be a list in brackets.");
    std::vector<SavedModule> modules;
    std::set<int> addresses;
    for (const JsonNode& node : list->Within) {
        modules.push_back(ReadSavedModule(node));
        if (!addresses.insert(modules.back().Address).second)
            FailAt(node, "two modules have the address " + ShownAddress(modules.back().Address) +
                             "; one of them must go.");
    }
    return modules;
}

ModuleRecord RecordOf(const SavedModule& module) {
    ModuleRecord record;
    record.Address = module.Address;
    record.Model = FixedText(module.Model, ModelWidth);
    record.BaudCode = SavedWay(module).BaudCode;
    record.Checksum = SavedWay(module).Checksum;
    record.Complete = false; // what the list does not show is asked for when it is needed
    if (const SettingValue* const range = SettingIn(module, "range"))
        record.InputRange = static_cast<std::int16_t>(HexNumber(std::get<std::string>(*range)).value_or(0));
    for (std::int16_t code = EngineeringUnits; code <= Ohms; ++code)
        if (SettingIn(module, "format") &&
            *SettingIn(module, "format") == SettingValue(Trim(FormatName(code))))
            record.DataFormat = code;
    if (const SettingValue* const type = SettingIn(module, "type"))
        record.InputRange = std::get<std::string>(*type) == "frequency" ? FrequencyRange : CounterRange;
    return record;
}

} // namespace

LineFile ReadLineFileText(const std::string& text) {
    const JsonNode root = ReadJson(text);
    if (root.Is != JsonNode::Kind::Object)
        FailAt(root, "the file must hold one object in braces.");
    RequireFormat(root);
    return {TextIn(root, "name"), TextIn(root, "time"), TextIn(root, "program"), ReadModules(root),
            OthersIn(root, {"format", "version", "name", "time", "program", "modules"})};
}

LineFile LoadLineFile(const std::string& path) {
    try {
        return ReadLineFileText(FileContent(path));
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("The line file \"" + path + "\" cannot be used: " + failure.what());
    }
}

std::string LineFileText(const LineFile& file) {
    JsonObject object(0);
    object.Add("format", JsonText(Format));
    object.Add("version", std::to_string(Version));
    object.Add("name", JsonText(file.Name));
    object.Add("time", JsonText(file.Time));
    object.Add("program", JsonText(file.Program));
    std::vector<std::string> modules;
    for (const SavedModule& module : file.Modules)
        modules.push_back(SavedModuleJson(module, 2));
    object.Add("modules", JsonList(modules, 1));
    object.Add(file.Others);
    return object.Text() + "\n";
}

const SavedModule* ModuleIn(const LineFile& file, int address) {
    const auto found = std::ranges::find(file.Modules, address, &SavedModule::Address);
    return found == file.Modules.end() ? nullptr : &*found;
}

SavedModule* ModuleIn(LineFile& file, int address) {
    const auto found = std::ranges::find(file.Modules, address, &SavedModule::Address);
    return found == file.Modules.end() ? nullptr : &*found;
}

const SettingValue* SettingIn(const SavedModule& module, std::string_view name) {
    const auto found = std::ranges::find(module.Settings, name, &SavedSetting::Name);
    return found == module.Settings.end() ? nullptr : &found->Value;
}

SendSettings SavedWay(const SavedModule& module) {
    SendSettings way;
    if (const SettingValue* const baud = SettingIn(module, "baud"))
        way.BaudCode = CodeFromBaud(static_cast<std::int32_t>(std::get<double>(*baud)));
    const SettingValue* const checksum = SettingIn(module, "checksum");
    way.Checksum = checksum && std::get<bool>(*checksum) ? 1 : 0;
    return way;
}

std::string ShownModule(const SavedModule& module) {
    return (module.Tags.Tag.empty() ? "" : module.Tags.Tag + ", ") + module.Model + " at address " +
           ShownAddress(module.Address);
}

ModuleMap MapOf(const LineFile& file) {
    ModuleMap map;
    for (const SavedModule& module : file.Modules)
        map.Table[map.Count++] = RecordOf(module);
    return map;
}

} // namespace kavro
