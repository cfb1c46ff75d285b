#include "traffic/finding_texts.h"

#include <algorithm>
#include <functional>
#include <span>

namespace kavro {

namespace {

// By `Damage`: how many, and what to do when most are of that kind.
struct DamageWords {
    const char* Seen;
    const char* Advice;
};

constexpr DamageWords Words[DamageCount] = {
    {"behind noise", "Characters come in front of its replies: check the bias resistors, which hold the line "
                     "while nobody sends, and the ground between the cabinets."},
    {"with a wrong checksum",
     "The replies are whole but for their checksum: if they always are, the module is "
     "faulty; exchange it."},
    {"naming another address",
     "It names another address than the one it is asked at: power it off and on, and "
     "set its address anew."},
    {"cut short", "The ends of its replies are missing: check its power supply, its terminals and its stub."},
    {"without end", "It sends without end: take it off the line and exchange it."},
    {"not what the command asks for",
     "Where these are clean texts, its settings or its model may not be those of the list: choose Network > "
     "Refresh. Else check its terminals and its stub."},
    {"garbled",
     "Check its terminals, its stub and the screen of its cable, and whether the line is terminated "
     "at both ends."},
};

constexpr const char* RefreshAdvice =
    "Search, or choose Network > Refresh, to bring the list up to date; then check again.";

std::string Count(std::int64_t part, std::int64_t whole) {
    return std::to_string(part) + " of " + std::to_string(whole);
}

std::string Addresses(const ModuleChecks& modules) {
    constexpr std::size_t MostNamed = 8;
    std::string text;
    for (std::size_t place = 0; place < modules.size() && place < MostNamed; ++place)
        text += (place == 0 ? "" : ", ") + std::to_string(modules[place]->Address);
    return modules.size() > MostNamed ? text + ", ..." : text;
}

using DamageCounts = std::array<int, DamageCount>;

// A clean line of another form is mere damage where the same command came complete at other times.
DamageCounts DamagesOf(const ModuleCheck& module) {
    DamageCounts damages = module.Damages;
    for (const CommandTally& tally : module.Tallies)
        if (tally.Complete > 0) {
            damages[static_cast<std::size_t>(Damage::OtherForm)] -= tally.OtherForm;
            damages[static_cast<std::size_t>(Damage::Garbled)] += tally.OtherForm;
        }
    return damages;
}

std::string KindsOf(const DamageCounts& damages) {
    std::string text;
    for (std::size_t kind = 0; kind < DamageCount; ++kind)
        if (damages[kind] > 0)
            text += (text.empty() ? " (" : ", ") + std::to_string(damages[kind]) + " " + Words[kind].Seen;
    return text.empty() ? text : text + ")";
}

// The model that the module tells, when it is not the list's.
std::string ToldInstead(const ModuleCheck& module) {
    constexpr std::size_t HeadLength = 3;
    for (const CommandTally& tally : module.Tallies)
        if (tally.Command.Tail == "M" && tally.TellsAnother())
            return ": it tells the model " +
                   std::ranges::max_element(tally.Good, {}, [](const auto& text) { return text.second; })
                       ->first.substr(HeadLength) +
                   ", the list " + module.Model;
    return {};
}

template <class Modules>
int Sum(const Modules& modules, int ModuleCheck::*count) {
    int sum = 0;
    for (const ModuleCheck* module : modules)
        sum += module->*count;
    return sum;
}

bool IsMuchMore(std::span<const ModuleCheck* const> more, std::span<const ModuleCheck* const> less) {
    constexpr double Times = 2, AtLeast = 0.02;
    const auto share = [](auto modules) {
        const int answered = Sum(modules, &ModuleCheck::Sent) - Sum(modules, &ModuleCheck::Silent);
        return answered == 0 ? 0.0 : static_cast<double>(Sum(modules, &ModuleCheck::Damaged)) / answered;
    };
    return !more.empty() && !less.empty() && share(more) >= Times * share(less) + AtLeast;
}

std::string GrowthText(const LineCheckResult& result) {
    constexpr std::size_t FewestModules = 4;
    ModuleChecks all, slowest, fastest;
    for (const ModuleCheck& module : result.Modules)
        if (module.Sent > 0)
            all.push_back(&module);
    const auto [low, high] = std::ranges::minmax(all, {}, &ModuleCheck::Baud);
    for (const ModuleCheck* module : all)
        if (low->Baud != high->Baud && (module->Baud == low->Baud || module->Baud == high->Baud))
            (module->Baud == low->Baud ? slowest : fastest).push_back(module);
    if (IsMuchMore(fastest, slowest))
        return " It grows with the rate: the cable is too long or too poor for " +
               std::to_string(high->Baud) + " baud. Set the modules to a lower rate.";
    const std::span<const ModuleCheck* const> list(all);
    if (all.size() >= FewestModules && IsMuchMore(list.last(all.size() / 2), list.first(all.size() / 2)))
        return " It grows along the list: where the addresses follow the cable, look for the cause towards "
               "its far end.";
    return {};
}

} // namespace

std::string LineSilentText(const LineCheckResult&, const ModuleChecks& modules) {
    const int sent = Sum(modules, &ModuleCheck::Sent), silent = Sum(modules, &ModuleCheck::Silent);
    if (silent < sent)
        return "Modules of the whole line do not answer now and then: " + Count(silent, sent) +
               " commands. Check the adapter, the supply of the modules and the two wires where they leave "
               "the "
               "adapter.";
    return "No module answers. Check whether the wires A and B are swapped, the baud rate and checksum, the "
           "adapter, and "
           "the "
           "power of the modules.";
}

std::string ModuleSilentText(const LineCheckResult& result, const ModuleCheck& module) {
    if (module.Silent == module.Sent)
        return result.Modules.size() > 1
                   ? "The module never answers, while others do. Check its power, its "
                     "address, its baud rate and checksum, and its stub of the line."
                   : "The module never answers. Check its power, its address and its stub.";
    return "The module does not answer now and then: " + Count(module.Silent, module.Sent) +
           " commands. Check its power, its terminals and its stub of the line.";
}

std::string DoubleAddressText(const LineCheckResult&, const ModuleCheck& module) {
    return "Two modules seem to answer at this address: " +
           (module.Behind > 0 ? std::to_string(module.Behind) + " replies came with another one behind them, "
                              : std::string()) +
           Count(module.Damaged, module.Sent) +
           " were garbled as by two at once. Take one of them off the line and give it another address.";
}

std::string ModuleDamagedText(const LineCheckResult&, const ModuleCheck& module) {
    const DamageCounts damages = DamagesOf(module);
    const auto worst = std::ranges::max_element(damages) - damages.begin();
    return Count(module.Damaged, module.Sent) + " replies are damaged" + KindsOf(damages) + ". " +
           Words[worst].Advice;
}

std::string ModuleAnotherText(const LineCheckResult&, const ModuleCheck& module) {
    return "The replies are clean, but those of another module than in the list, or of one that is set "
           "otherwise" +
           ToldInstead(module) + ". " + RefreshAdvice;
}

std::string LineAnotherText(const LineCheckResult&, const ModuleChecks& modules) {
    return "The replies of all modules are clean, but those of other modules than in the list, or of modules "
           "that are set otherwise: addresses " +
           Addresses(modules) + ". " + RefreshAdvice;
}

std::string LineDamagedText(const LineCheckResult& result, const ModuleChecks& modules) {
    DamageCounts damages{};
    for (const ModuleCheck* module : modules)
        std::ranges::transform(damages, DamagesOf(*module), damages.begin(), std::plus<>());
    const std::string whose =
        modules.size() == result.Modules.size() ? "all modules" : "addresses " + Addresses(modules);
    return Count(Sum(modules, &ModuleCheck::Damaged), Sum(modules, &ModuleCheck::Sent)) + " replies of " +
           whose + " are damaged" + KindsOf(damages) + "." + GrowthText(result) +
           " Check that the line is terminated at both ends and nowhere else, its bias resistors, the cable "
           "and "
           "its screen.";
}

std::string ModuleRefusedText(const LineCheckResult&, const ModuleCheck& module) {
    const std::string seen = "The module refused (\"?\") " + Count(module.Refused, module.Sent) +
                             " commands that a module " +
                             (module.Model.empty() ? "of its kind" : module.Model) + " must know. ";
    if (module.IsAnother())
        return seen + "It is another module than in the list, or set otherwise" + ToldInstead(module) + ". " +
               RefreshAdvice;
    return seen + "It may be another module than in the list, or set otherwise: search, or choose Network > "
                  "Refresh, then check again. Else power it off and on, or exchange it.";
}

std::string LineRefusedText(const LineCheckResult&, const ModuleChecks& modules) {
    const auto another = std::ranges::count_if(modules, &ModuleCheck::IsAnother);
    return "All modules refuse (\"?\") commands that they must know: " +
           Count(Sum(modules, &ModuleCheck::Refused), Sum(modules, &ModuleCheck::Sent)) +
           (2 * another > std::ssize(modules)
                ? std::string(". They are other modules than in the list, or set otherwise. ") + RefreshAdvice
                : std::string(". The list may be that of another line: search, then check again."));
}

std::string ModuleSlowText(const LineCheckResult& result, const ModuleCheck& module) {
    return Count(module.Slow + module.Late, module.Sent) + " replies come near the time-out of " +
           std::to_string(result.ReplyTimeoutMs) +
           " ms, or after it. Raise the time-out under Network > ComPort, "
           "or look for what delays this module: a converter or a repeater before it.";
}

std::string LineSlowText(const LineCheckResult& result, const ModuleChecks& modules) {
    return Count(Sum(modules, &ModuleCheck::Slow) + Sum(modules, &ModuleCheck::Late),
                 Sum(modules, &ModuleCheck::Sent)) +
           " replies of all modules come near the time-out of " + std::to_string(result.ReplyTimeoutMs) +
           " ms, or after it. Raise the time-out under Network > ComPort: the adapter, the network or a "
           "repeater "
           "takes that long.";
}

std::string ForeignText(const LineCheckResult& result, const ModuleChecks&) {
    return std::to_string(result.Foreign) + (result.Foreign == 1 ? " character" : " characters") +
           " came while no module was asked. " +
           (result.Busy ? "The line did not fall silent, so the check ended. " : "") +
           "Another program or master speaks on this line, or it catches noise: find and stop the other one, "
           "or "
           "check the bias resistors. Damaged and missing replies may come from it.";
}

std::string EchoText(const LineCheckResult&, const ModuleChecks&) {
    return "The adapter hands back every character that is sent. The echo is taken away, and nothing needs "
           "to be "
           "set; other programs may need an adapter that does not.";
}

} // namespace kavro
