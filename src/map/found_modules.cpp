#include "map/found_modules.h"

#include "map/list_line.h"

#include <algorithm>
#include <tuple>

namespace kavro {

namespace {

// By address; of several the one that an exact search meets first.
auto Order(const ConfigAnswer& answer, const ModuleRecord& record) {
    return std::tuple(record.Address, answer.Address, answer.BaudCode, answer.Checksum);
}

} // namespace

void FoundModules::Clear() {
    answers_.clear();
    session_.Device.clear();
    session_.ModuleCount = 0;
    session_.ScanIndex = -1;
}

std::size_t FoundModules::Place(const ConfigAnswer& answer, const ModuleRecord& record) const {
    std::size_t place = 0;
    while (place < answers_.size() &&
           Order(answers_[place], session_.ModuleTable[static_cast<int>(place)]) < Order(answer, record))
        ++place;
    return place;
}

int FoundModules::Insert(const ConfigAnswer& answer, const ModuleRecord& record) {
    if (answers_.size() == ModuleTable::Size)
        return -1;
    const std::size_t place = Place(answer, record);
    const auto offset = static_cast<std::ptrdiff_t>(place);
    const int index = static_cast<int>(place);
    answers_.insert(answers_.begin() + offset, answer);
    for (int entry = session_.ModuleCount++; entry > index; --entry)
        session_.ModuleTable[entry] = session_.ModuleTable[entry - 1];
    session_.ModuleTable[index] = record;
    session_.Device.insert(session_.Device.begin() + offset, std::string());
    session_.ScanIndex = static_cast<std::int16_t>(AtAddressZero());
    for (int entry = 0; entry < session_.ModuleCount; ++entry) // "*" stands before another one now
        session_.Device[static_cast<std::size_t>(entry)] = BuildListLine(session_, entry);
    return index;
}

// The entry that is spoken to at address 00: one that reports another address, as it answers nowhere else;
// failing that the first one.
int FoundModules::AtAddressZero() const {
    int first = -1;
    for (int index = 0; index < session_.ModuleCount; ++index) {
        if (answers_[static_cast<std::size_t>(index)].Address != 0)
            continue;
        if (session_.ModuleTable[index].Address != 0)
            return index;
        first = first < 0 ? index : first;
    }
    return first;
}

bool FoundModules::Has(std::int16_t address, std::int16_t baudCode, std::int16_t checksum) const {
    return std::ranges::any_of(answers_, [&](const ConfigAnswer& answer) {
        return answer.Address == address && answer.BaudCode == baudCode && answer.Checksum <= checksum;
    });
}

bool FoundModules::HasAny(std::int16_t address) const {
    return std::ranges::find(answers_, address, &ConfigAnswer::Address) != answers_.end();
}

std::vector<std::int16_t> FoundModules::Doubles() const {
    std::vector<std::int16_t> doubles;
    for (int index = 1; index < session_.ModuleCount; ++index) {
        const std::int16_t address = session_.ModuleTable[index].Address;
        const bool twice = session_.ModuleTable[index - 1].Address == address;
        if (twice && (doubles.empty() || doubles.back() != address))
            doubles.push_back(address);
    }
    return doubles;
}

} // namespace kavro
