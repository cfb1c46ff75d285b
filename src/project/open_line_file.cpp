#include "project/open_line_file.h"

#include "link/runtime_failure.h"
#include "map/module_access.h"

namespace kavro {

namespace {

ModuleTags TagsIn(const SavedModule& module) {
    ModuleTags tags{module.Model, module.Tags};
    for (const auto& [number, channel] : module.Channels)
        if (channel.Tags != TagAndNote())
            tags.Channels[number] = channel.Tags;
    return tags;
}

// A channel without tag and note stays while there is something else about it.
void Give(SavedModule& module, const ModuleTags& tags) {
    module.Tags = tags.Module;
    for (auto& [number, channel] : module.Channels)
        channel.Tags = {};
    for (const auto& [number, tag] : tags.Channels)
        module.Channels[number].Tags = tag;
    std::erase_if(module.Channels, [](const auto& each) {
        return each.second.Tags == TagAndNote() && each.second.Others.empty();
    });
}

void RewriteModule(const Session& session, const std::string& path, std::int16_t address,
                   const std::function<void(SavedModule& module)>& change) {
    LineFile file = LoadLineFile(path);
    SavedModule* const module = ModuleIn(file, address);
    if (!module)
        throw RuntimeFailure("The line file \"" + path + "\" no longer has a module at address " +
                             ShownAddress(address) + ". Back up the line again.");
    change(*module);
    session.ReplaceFile(path, LineFileText(file));
}

void AppendTo(SavedModule& module, const std::string& model, const std::string& json) {
    if (module.Model != model)
        throw RuntimeFailure("The open line file has a " + module.Model + " at address " +
                             ShownAddress(module.Address) + " and not a " + model +
                             ". Back up the line again.");
    module.History.push_back(json);
}

void Remember(Session& session, const std::string& path) {
    if (session.Preferences.LineFile == path)
        return;
    session.Preferences.LineFile = path;
    session.SavePreferences(session.Preferences);
}

} // namespace

void ShowTagsOf(Session& session, const std::string& path, const LineFile& file) {
    session.Tags = {path, file.Name};
    for (const SavedModule& module : file.Modules)
        session.Tags.Modules[module.Address] = TagsIn(module);
    session.Tags.Reload = [&session, path] { ShowTagsOf(session, path, LoadLineFile(path)); };
    session.Tags.Keep = [&session, path](std::int16_t address, const ModuleTags& tags) {
        WriteTags(session, path, address, tags);
        session.Tags.Modules[address] = tags;
    };
    session.Tags.AppendHistory = [&session, path](std::int16_t address, const std::string& model,
                                                  const std::string& json) {
        RewriteModule(session, path, address, [&](SavedModule& module) { AppendTo(module, model, json); });
    };
}

void OpenLineFile(Session& session, const std::string& path, const LineFile& file) {
    ShowTagsOf(session, path, file);
    Remember(session, path);
}

void ReopenLineFile(Session& session) {
    if (const std::string path = session.Preferences.LineFile; !path.empty())
        ShowTagsOf(session, path, LoadLineFile(path));
}

void CloseLineFile(Session& session) {
    session.Tags = {};
    Remember(session, {});
}

void WriteTags(const Session& session, const std::string& path, std::int16_t address,
               const ModuleTags& tags) {
    RewriteModule(session, path, address, [&](SavedModule& module) { Give(module, tags); });
}

} // namespace kavro
