#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace kavro {

struct Session;

/// What the user calls a module or a channel, and what is to be remembered of it; UTF-8, empty when nothing.
struct TagAndNote {
    std::string Tag;  ///< one line: "TT-101"
    std::string Note; ///< may have several

    bool operator==(const TagAndNote&) const = default;
};

/// The tags of a module and of its channels.
struct ModuleTags {
    std::string Model; ///< of the line file, without blanks at its end: "8250"
    TagAndNote Module{};
    std::map<int, TagAndNote> Channels{}; ///< by number; those without tag and note are left out

    bool operator==(const ModuleTags&) const = default;
};

/// What the line file that is open says of the line.
struct LineTags {
    std::string Path;                             ///< of the file; empty: none is open
    std::string Name;                             ///< of the line
    std::map<std::int16_t, ModuleTags> Modules{}; ///< by address

    /// Takes over what the file says now. Throws `RuntimeFailure` when it cannot be read.
    std::function<void()> Reload = [] {};

    /// Rewrites the file with these tags of the module at `address`. Throws `RuntimeFailure` when that
    /// fails; nothing has changed then.
    std::function<void(std::int16_t address, const ModuleTags& tags)> Keep = [](std::int16_t,
                                                                                const ModuleTags&) {};

    /// Rewrites the file with one more record in the history of the module at `address`, which must be of
    /// that model; `json` is the record on one line. Throws `RuntimeFailure` when that fails; nothing has
    /// changed then.
    std::function<void(std::int16_t address, const std::string& model, const std::string& json)>
        AppendHistory = [](std::int16_t, const std::string&, const std::string&) {};
};

/// The tags of entry `index`; null when no line file is open, or when it has no module of that address and
/// model.
const ModuleTags* TagsOf(const Session& session, int index);

/// Tag and note of a channel of entry `index`, empty when there are none.
TagAndNote ChannelTagOf(const Session& session, int index, int channel);

} // namespace kavro
