#include "project/saved_config.h"

#include "config/setting_changes.h"
#include "link/runtime_failure.h"

namespace kavro {

NamedConfig ConfigOf(const SavedModule& module) {
    NamedConfig config = BlankConfig(module.Model);
    for (const SavedSetting& saved : module.Settings)
        if (NamedSetting* const setting = FindSetting(config, saved.Name)) {
            try {
                TakeValue(*setting, saved.Value);
            } catch (const RuntimeFailure&) { // it stays as it stands in the file
            }
        }
    return config;
}

} // namespace kavro
