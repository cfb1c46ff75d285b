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

const CommandForm* RowOf(std::string_view model, char lead, std::string_view tail) {
    const std::string suffix = ModelSuffix(model);
    const CommandForm* form = FindForm(CommandsOf(model), suffix, lead, tail);
    return form ? form : FindForm(CommonCommands(), suffix, lead, tail);
}

// The row of each model that may be meant: those of one model alone, then that of all others.
void AddRows(std::vector<const CommandForm*>& rows, std::span<const CommandForm> forms, char lead,
             std::string_view tail) {
    for (const CommandForm& form : forms) {
        if (form.Lead != lead || !MatchesTail(form.Tail, tail))
            continue;
        rows.push_back(&form);
        if (form.Suffix.empty())
            return;
    }
}

} // namespace

std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail) {
    const CommandForm* form = RowOf(model, lead, tail);
    if (!form)
        throw RuntimeFailure("A module " + Trim(model) + " has no command " + lead + "AA" +
                             std::string(tail) + ".");
    return form->Reply;
}

std::vector<const CommandForm*> RowsOf(std::string_view model, char lead, std::string_view tail) {
    std::vector<const CommandForm*> rows;
    if (model.empty()) {
        for (const auto& table : AllCommands())
            AddRows(rows, table, lead, tail);
    } else if (const CommandForm* row = RowOf(model, lead, tail)) {
        rows.push_back(row);
    }
    return rows;
}

std::string_view WrittenPart(const CommandForm& row, std::string_view tail) {
    return tail.substr(std::min(row.Tail.find_first_of("np*"), tail.size()));
}

} // namespace kavro
