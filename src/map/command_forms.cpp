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
};

constexpr CommandForm EveryModel[] = {
    {'$', "2", "!AAhhhhhh"},
    {'$', "M", "!AAM"},
    {'$', "F", "!AAT"},
};

constexpr CommandForm AlarmInputs[] = {
    {'#', "", ">V"},     {'@', "RL", "!AAE"}, {'@', "RH", "!AAE"}, {'@', "DI", "!AAtzqzb"},
    {'@', "DO*", "!AA"}, {'@', "CA", "!AA"},  {'$', "3", "!AAS"},  {'$', "5", "!AAhh"},
};

constexpr CommandForm MultiInputs[] = {
    {'#', "n", ">V"},
    {'$', "6", "!AAhh"},
    {'$', "BA", "!AAhh"},
};

constexpr CommandForm SingleOutput[] = {
    {'$', "6", "!AAO"},
    {'#', "*", ">"},
};

constexpr CommandForm VoltageOutputs[] = {
    {'$', "6p", "!AAsdd.ddd"},
    {'$', "8", "!hhzzzz"},
    {'~', "CR", "!AAzb"},
    {'#', "*", ">"},
};

constexpr CommandForm DigitalModules[] = {
    {'~', "CR", "!AAbb"},
    {'$', "6", "!hhhhhhhh"},
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
    {'$', "5nn", "!AA"},
    {'$', "6n", "!AA"},
};

constexpr CommandForm Converters[] = {
    {'$', "2", "!AAhhhhhhhh"},
};

std::span<const CommandForm> FormsOf(std::string_view model) {
    const std::string suffix = ModelSuffix(model);
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

const CommandForm* FindForm(std::span<const CommandForm> forms, char lead, std::string_view tail) {
    const auto found = std::ranges::find_if(
        forms, [&](const CommandForm& form) { return form.Lead == lead && MatchesTail(form.Tail, tail); });
    return found == forms.end() ? nullptr : &*found;
}

} // namespace

std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail) {
    const CommandForm* form = FindForm(FormsOf(model), lead, tail);
    if (!form)
        form = FindForm(EveryModel, lead, tail);
    if (!form)
        throw RuntimeFailure("A module " + Trim(model) + " has no command " + lead + "AA" +
                             std::string(tail) + ".");
    return form->Reply;
}

} // namespace kavro
