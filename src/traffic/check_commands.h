#pragma once

#include "map/session.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A command that a line check asks with.
struct CheckCommand {
    char Lead = '$';
    std::string Tail;      ///< what stands behind the address
    std::string_view Form; ///< of the good reply, in the letters of `FitsForm`
    bool Lasting = false;  ///< what one module answers stays the same: its configuration, its model
};

/// The commands that entry `index` is asked with in turn. None of them changes, clears or latches anything.
std::vector<CheckCommand> CheckCommandsOf(const Session& session, int index);

/// Whether a good reply to the command tells the model, or the range and data format, that entry `index` has.
/// True for a reply that tells none of them.
bool IsAsListed(const Session& session, int index, const CheckCommand& command, std::string_view reply);

/// The reading of the first enabled channel, told by the mask in a good reply to the command; nothing for
/// another command, or when no channel is enabled.
std::optional<CheckCommand> ChannelReading(const Session& session, int index, const CheckCommand& command,
                                           std::string_view reply);

} // namespace kavro
