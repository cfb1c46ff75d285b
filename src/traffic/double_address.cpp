#include "traffic/double_address.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr int FewestAnswers = 5; // to a command, before anything is concluded from them
constexpr std::size_t AddressEnd = 3;
constexpr double Nearly = 0.9;
constexpr double Mostly = 0.6;
constexpr double Often = 0.3;
constexpr double Sometimes = 0.1;

double Share(int part, int whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / whole;
}

bool IsKnown(const CommandTally& tally) {
    return tally.Answered >= FewestAnswers;
}

// The module is this one now, that one then.
bool HasTwoNatures(const CommandTally& tally) {
    const int fewest = std::max(2, static_cast<int>(Sometimes * tally.Asked));
    return std::ranges::count_if(tally.Good, [&](const auto& text) { return text.second >= fewest; }) >= 2;
}

bool IsGarbled(const CommandTally& tally, double share) {
    return IsKnown(tally) && Share(tally.Garbled, tally.Answered) >= share &&
           (Share(tally.Unclean, tally.Garbled) >= Often || Share(tally.Overlong, tally.Garbled) >= Often);
}

bool ComesThrough(const CommandTally& tally) {
    return IsKnown(tally) && Share(tally.Complete, tally.Answered) >= Nearly;
}

// Up to where the two replies differ, they are heard as one: so often, that is no chance.
bool BeginsAlike(const CommandTally& tally) {
    constexpr int FewestGarbled = 10;
    return tally.Garbled >= FewestGarbled && NamesAddress(tally.Command.Form) &&
           tally.CommonStart >= AddressEnd;
}

// One command suffers, another does not.
bool DependsOnTheCommand(const ModuleCheck& module) {
    return std::ranges::any_of(module.Tallies,
                               [](const CommandTally& tally) { return IsGarbled(tally, Mostly); }) &&
           std::ranges::any_of(module.Tallies, ComesThrough);
}

// Each command is garbled always, and one that names the address from the same place on, or not at all.
bool DependsOnThePlace(const ModuleCheck& module) {
    return std::ranges::any_of(module.Tallies, BeginsAlike) &&
           std::ranges::all_of(module.Tallies, [](const CommandTally& tally) {
               return !IsKnown(tally) || ComesThrough(tally) || IsGarbled(tally, Nearly);
           });
}

// Two replies that do not begin together are longer than one.
bool IsTooLong(const ModuleCheck& module) {
    int answered = 0, garbled = 0, overlong = 0;
    for (const CommandTally& tally : module.Tallies) {
        answered += tally.Answered;
        garbled += tally.Garbled;
        overlong += tally.Overlong;
    }
    return answered >= FewestAnswers && Share(garbled, answered) >= Mostly &&
           Share(overlong, garbled) >= Often;
}

} // namespace

bool LooksLikeTwo(const ModuleCheck& module) {
    const bool behind = module.Behind >= 3 && Share(module.Behind, module.Complete) >= Often;
    if (behind || std::ranges::any_of(module.Tallies, HasTwoNatures))
        return true;
    // One other module alone answers some commands well and others at greater length, too.
    return !module.IsAnother() &&
           (DependsOnTheCommand(module) || DependsOnThePlace(module) || IsTooLong(module));
}

} // namespace kavro
