#include "map/command_forms.h"

#include "link/codes.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace kavro {

namespace {

// In `Tail`, n is a digit, p a port, and * whatever a command writes.
struct CommandForm {
    char Lead;
    std::string_view Tail;
    std::string_view Reply;
    std::string_view Suffix = {}; // of this model alone; empty: of every model of the family
};

constexpr CommandForm EveryModel[] = {
    {'$', "2", "!AAhhhhhh"},
    {'$', "M", "!AAM"},
    {'$', "F", "!AAT"},
    {'%', "*", "!AA"},
};

constexpr CommandForm AlarmInputs[] = {
    {'#', "", ">V"},
    {'@', "RL", "!AAE"},
    {'@', "RH", "!AAE"},
    {'@', "PL*", "!AA"},
    {'@', "PH*", "!AA"},
    {'@', "EAn", "!AA"},
    {'@', "DA", "!AA"},
    {'@', "CA", "!AA"},
    {'@', "DI", "!AAtzqzb"},
    {'@', "DO*", "!AA"},
    {'$', "3", "!AAS", "240"},
    {'$', "5", "!AAhh"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3", ">K"},
    {'$', "9*", "!AA"},
};

constexpr CommandForm MultiInputs[] = {
    {'#', "n", ">V"},
    {'$', "6", "!AAC"},
    {'$', "BA", "!AAC"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3", ">K"},
    {'$', "9*", "!AA"},
};

constexpr CommandForm SingleOutput[] = {
    {'$', "6", "!AAO"},
    {'#', "*", ">"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3*", "!AA"},
};

constexpr CommandForm VoltageOutputs[] = {
    {'$', "6p", "!AAP"},
    {'$', "8", "!ohzzzz"},
    {'~', "CR", "!AAzb"},
    {'#', "*", ">"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3*", "!AA"},
};

constexpr CommandForm DigitalModules[] = {
    {'~', "CR", "!AAbb"},
    {'$', "6", "!W"},
    {'@', "*", "!AA"},
};

constexpr CommandForm PortModule[] = {
    {'~', "CR", "!AAbb"},
    {'$', "6", "!zhzz"},
    {'$', "8", "!hhhhhh"},
    {'@', "*", "!AA"},
};

constexpr CommandForm Counters[] = {
    {'#', "n", ">hhhhhhhh"},
    {'$', "B", "!AAb"},
    {'$', "A", "!AAt"},
    {'$', "5", "!AAbb"},
    {'$', "7", "!AAbb"},
    {'$', "3", "!AAhhhhhhhh"},
    {'@', "G", "!AAhhhhhhhh"},
    {'$', "4", "!AAb"},
    {'$', "0H", "!AAdddd"},
    {'$', "0L", "!AAdddd"},
    {'$', "1H", "!AAdd"},
    {'$', "1L", "!AAdd"},
    {'@', "DI", "!AAbbzq"},
    {'@', "RP", "!AAhhhhhhhhhhhhhhhh"},
    {'@', "RA", "!AAhhhhhhhhhhhhhhhh"},
    // settings
    {'$', "B*", "!AA"},
    {'$', "A*", "!AA"},
    {'$', "5n*", "!AA"},
    {'$', "6n", "!AA"},
    {'$', "3n*", "!AA"},
    {'@', "P*", "!AA"},
    {'@', "SA*", "!AA"},
    {'$', "4*", "!AA"},
    {'$', "0H*", "!AA"},
    {'$', "0L*", "!AA"},
    {'$', "1H*", "!AA"},
    {'$', "1L*", "!AA"},
    {'@', "EAn", "!AA"},
    {'@', "DAn", "!AA"},
};

constexpr CommandForm Converters[] = {
    {'$', "2", "!AAhhhhhhhh"},
};

std::span<const CommandForm> FormsOf(std::string_view model, std::string_view suffix) {
    switch (ModuleFamily(model)) {
    case DigitalIo:
        return suffix == "460" ? std::span<const CommandForm>(PortModule) : DigitalModules;
    case AnalogInput:
        return AlarmInputs;
    case AnalogOutput:
        return suffix == "310" ? std::span<const CommandForm>(SingleOutput) : VoltageOutputs;
    case MultiAnalogInput:
        return MultiInputs;
    case CounterFrequency:
        return Counters;
    case Converter:
        return Converters;
    default:
        return {};
    }
}

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
    const CommandForm* form = FindForm(FormsOf(model, suffix), suffix, lead, tail);
    if (!form)
        form = FindForm(EveryModel, suffix, lead, tail);
    if (!form)
        throw RuntimeFailure("A module " + Trim(model) + " has no command " + lead + "AA" +
                             std::string(tail) + ".");
    return form->Reply;
}

} // namespace kavro
