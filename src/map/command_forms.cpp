#include "map/command_forms.h"

#include "link/codes.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/command_table.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

namespace kavro {

namespace {

bool MatchesTail(std::string_view pattern, std::string_view tail) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '*')
            return tail.size() > i;
        if (i == tail.size())
            return false;
        const bool digit = tail[i] >= '0' && tail[i] <= '9';
        const bool port = tail[i] >= 'A' && tail[i] <= 'D';
        if (pattern[i] == 'n' ? !digit : pattern[i] == 'p' ? !port : pattern[i] != tail[i])
            return false;
    }
    return pattern.size() == tail.size();
}

const CommandForm* FindForm(std::span<const CommandForm> forms, std::string_view suffix, char lead,
                            std::string_view tail) {
    const auto found = std::ranges::find_if(forms, [&](const CommandForm& form) {
        return form.Lead == lead && MatchesTail(form.Tail, tail) &&
               (form.Suffix.empty() || form.Suffix == suffix);
    });
    return found == forms.end() ? nullptr : &*found;
}

} // namespace

std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail) {
    const std::string suffix = ModelSuffix(model);
    const CommandForm* form = FindForm(CommandsOf(model, suffix), suffix, lead, tail);
    if (!form)
        form = FindForm(CommonCommands(), suffix, lead, tail);
    if (!form)
        throw RuntimeFailure("A module " + Trim(model) + " has no command " + lead + "AA" +
                             std::string(tail) + ".");
    return form->Reply;
}

} // namespace kavro
