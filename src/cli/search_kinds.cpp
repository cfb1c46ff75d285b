#include "cli/search_kinds.h"

#include "map/fast_search.h"
#include "map/refresh.h"
#include "map/search.h"

#include <utility>

namespace kavro {

namespace {

std::unique_ptr<LineSearch> MakeExact(Session& session, const SearchOptions&, SearchEvents events) {
    return std::make_unique<NetworkSearch>(session, std::move(events), Belief::Strict);
}

std::unique_ptr<LineSearch> MakeFast(Session& session, const SearchOptions&, SearchEvents events) {
    return std::make_unique<FastSearch>(session, std::move(events));
}

std::unique_ptr<LineSearch> MakeRefresh(Session& session, const SearchOptions& options, SearchEvents events) {
    return std::make_unique<ListRefresh>(session, std::move(events), options.ChecksumsKnown);
}

// "3 of 31"
std::string Of(int part, int whole) {
    return std::to_string(part) + " of " + std::to_string(whole);
}

std::string FoundText(const SearchPlace& place) {
    return std::to_string(place.Found) + (place.Found == 1 ? " module" : " modules");
}

std::string ExactProgress(const SearchPlace& place) {
    return "Address " + Of(place.Address, place.HighestAddress) + ", " + std::to_string(place.Baud) +
           " baud, " + FoundText(place);
}

std::string FastProgress(const SearchPlace& place) {
    return std::to_string(place.Baud) + " baud, address " + Of(place.Address, place.HighestAddress) + ", " +
           FoundText(place);
}

std::string RefreshProgress(const SearchPlace& place) {
    return "Module " + Of(place.Begun, place.Found);
}

std::string ExactStopped(const SearchPlace& place) {
    return "Stopped after address " + Of(place.Address, place.HighestAddress) + ".";
}

std::string FastStopped(const SearchPlace& place) {
    return "Stopped at " + std::to_string(place.Baud) + " baud " +
           (place.BegunAtRate == 0 ? "before its first address."
                                   : "after address " + Of(place.Address, place.HighestAddress) + ".");
}

std::string RefreshStopped(const SearchPlace& place) {
    return "Stopped after module " + Of(place.Read, place.Found) + "; the others are as they were.";
}

constexpr KindOfSearch Kinds[] = {
    // in the order of `SearchKind`
    {MakeExact, ExactProgress, ExactStopped},
    {MakeFast, FastProgress, FastStopped},
    {MakeRefresh, RefreshProgress, RefreshStopped},
};

} // namespace

const KindOfSearch& KindOf(SearchKind kind) {
    return Kinds[static_cast<std::size_t>(kind)];
}

} // namespace kavro
