#pragma once

#include "map/identify.h"
#include "map/session.h"

#include <vector>

namespace kavro {

/// The modules that a search rate by rate has found, kept in the session's list in the order in which an
/// exact search, address by address, would have found them.
class FoundModules {
public:
    explicit FoundModules(Session& session) : session_(session) {}

    /// Forgets the modules of before.
    void Clear();

    /// Puts a module into the list: its index, or -1 where the list is full. Sets `ScanIndex` and
    /// `ModuleCount`.
    int Insert(const ConfigAnswer& answer, const ModuleRecord& record);

    /// Whether a module answers at an address, rate and checksum setting, or without checksum.
    bool Has(std::int16_t address, std::int16_t baudCode, std::int16_t checksum) const;

    /// Whether any module was asked at this address.
    bool HasAny(std::int16_t address) const;

    /// Addresses that more than one module has, rising.
    std::vector<std::int16_t> Doubles() const;

private:
    std::size_t Place(const ConfigAnswer& answer, const ModuleRecord& record) const;
    int AtAddressZero() const;

    Session& session_;
    std::vector<ConfigAnswer> answers_; // of the entries
};

} // namespace kavro
