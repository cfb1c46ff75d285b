#include "monitor/shown_unit.h"

#include <algorithm>
#include <iterator>

namespace kavro {

namespace {

struct WrittenUnit {
    const char* Unit;
    const char* Shown;
};

constexpr WrittenUnit Written[] = {{"C", "\u00b0C"}, {"ohms", "\u03a9"}};

} // namespace

std::string ShownUnit(const std::string& unit) {
    const auto* const found = std::ranges::find(Written, unit, &WrittenUnit::Unit);
    return found == std::end(Written) ? unit : found->Shown;
}

} // namespace kavro
