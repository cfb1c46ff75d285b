#pragma once

#include "cli/search_options.h"
#include "map/line_search.h"
#include "map/session.h"

#include <cstdint>
#include <memory>
#include <string>

namespace kavro {

/// Where a search is.
struct SearchPlace {
    int Address = 0; ///< begun last
    int HighestAddress = 0;
    std::int32_t Baud = 0; ///< tried last
    int Found = 0;         ///< modules in the list
    int BegunAtRate = 0;   ///< addresses begun since `Baud` was tried first
    int Begun = 0;         ///< addresses begun, of a refresh the modules
    int Read = 0;          ///< modules that a refresh is done with
};

/// What differs between the kinds of search.
struct KindOfSearch {
    std::unique_ptr<LineSearch> (*Make)(Session& session, const SearchOptions& options, SearchEvents events);
    std::string (*Progress)(const SearchPlace& place); ///< "Address 3 of 31, 9600 baud, 2 modules"
    std::string (*Stopped)(const SearchPlace& place);  ///< where it was stopped, a sentence
};

/// What a kind of search is.
const KindOfSearch& KindOf(SearchKind kind);

} // namespace kavro
