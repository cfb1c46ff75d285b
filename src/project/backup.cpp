#include "project/backup.h"

#include "link/text.h"
#include "link/utc_text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/product.h"

#include <algorithm>
#include <filesystem>

namespace kavro {

namespace {

// What the list knows of a module that does not answer now.
SavedModule ListedModule(const ModuleRecord& record) {
    SavedModule module;
    module.Address = record.Address;
    module.Model = Trim(ShownModel(record.Model));
    return module;
}

std::string IncompleteText(const SavedModule& module, const ModuleReading& reading) {
    if (reading.Is == Presence::Silent)
        return "The " + ShownModule(module) + " does not answer; none of its settings are in the file.";
    if (reading.Is == Presence::Unclear)
        return "The " + ShownModule(module) + " is in the file without settings. " + reading.Trouble;
    return "The " + ShownModule(module) + " did not tell its " + Listed(reading.Untold) +
           "; the file has the rest.";
}

struct ListedContact {
    SavedModule Module;
    Contact Way;
};

std::vector<ListedContact> ContactsOfList(const Session& session) {
    std::vector<ListedContact> contacts;
    for (int index = 0; index < session.ModuleCount; ++index)
        contacts.push_back({ListedModule(session.ModuleTable[index]), ContactOfEntry(session, index)});
    std::ranges::stable_sort(contacts, {}, [](const ListedContact& each) { return each.Module.Address; });
    return contacts;
}

void KeepWhatIsTheUsers(SavedModule& module, const SavedModule& before) {
    module.Tags = before.Tags;
    module.Channels = before.Channels;
    module.History = before.History;
    module.Others = before.Others;
    module.OtherSettings = before.OtherSettings;
}

} // namespace

Backup ReadLine(const LineWork& work, const std::string& name) {
    const std::vector<ListedContact> contacts = ContactsOfList(work.Session);
    Backup backup{{name, UtcToSecond(work.Session.Line.Time().UtcMicroseconds()), ProductVersion}};
    for (std::size_t i = 0; i < contacts.size(); ++i) {
        const auto& [listed, way] = contacts[i];
        work.Progress("Reading " + ShownModule(listed), static_cast<int>(i),
                      static_cast<int>(contacts.size()));
        if (ModuleIn(backup.File, listed.Address)) {
            backup.Incomplete.push_back("Another module has the address of the " + ShownModule(listed) +
                                        ", too; the file has one of them.");
            continue;
        }
        const ModuleReading reading = ReadModuleAt(work.Session, way, work.Tell.Words);
        const SavedModule& module = reading.Is == Presence::Answers ? reading.Module : listed;
        backup.File.Modules.push_back(module);
        if (reading.Is != Presence::Answers || !reading.Untold.empty())
            backup.Incomplete.push_back(IncompleteText(module, reading));
    }
    return backup;
}

void KeepWhatIsTheUsers(LineFile& file, const LineFile& before) {
    file.Others = before.Others;
    for (SavedModule& module : file.Modules)
        if (const SavedModule* const old = ModuleIn(before, module.Address))
            KeepWhatIsTheUsers(module, *old);
}

std::vector<std::string> LostFrom(const LineFile& before, const LineFile& file) {
    std::vector<std::string> lost;
    for (const SavedModule& old : before.Modules) {
        const SavedModule* const module = ModuleIn(file, old.Address);
        std::vector<std::string> names;
        for (const SavedSetting& setting : old.Settings)
            if (module && module->Model == old.Model && !SettingIn(*module, setting.Name))
                names.push_back(setting.Name);
        if (!module)
            lost.push_back("The " + ShownModule(old) + " is no longer in the list.");
        else if (module->Model != old.Model)
            lost.push_back("The " + ShownModule(old) + " is now a " + module->Model + ".");
        else if (!names.empty())
            lost.push_back("Of the " + ShownModule(old) + " the file had " + Listed(names) + ".");
    }
    return lost;
}

std::optional<LineFile> FileBefore(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::u8path(path), error))
        return std::nullopt;
    return LoadLineFile(path);
}

std::string NameFromPath(const std::string& path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::string_view suffix = LineFileSuffix;
    return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : name;
}

std::string OldPath(const std::string& path) {
    std::string old = path + ".old";
    std::error_code error;
    for (int number = 2; std::filesystem::exists(std::filesystem::u8path(old), error); ++number)
        old = path + ".old" + std::to_string(number);
    return old;
}

bool BackUpLine(const LineWork& work, const std::string& path, const std::optional<LineFile>& before,
                const std::string& name) {
    const std::string present = before && !before->Name.empty() ? before->Name : NameFromPath(path);
    Backup backup = ReadLine(work, name.empty() ? present : name);
    for (const std::string& text : backup.Incomplete)
        work.Tell(text);
    if (before) {
        KeepWhatIsTheUsers(backup.File, *before);
        const std::vector<std::string> lost = LostFrom(*before, backup.File);
        for (const std::string& text : lost)
            work.Tell(text);
        if (!lost.empty()) {
            const std::string old = OldPath(path);
            work.Session.ReplaceFile(old, LineFileText(*before));
            work.Tell("The file as it was is kept as \"" + old + "\".");
        }
    }
    work.Session.ReplaceFile(path, LineFileText(backup.File));
    return backup.Incomplete.empty();
}

} // namespace kavro
