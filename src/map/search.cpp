#include "map/search.h"

#include "link/baud.h"
#include "link/text.h"
#include "map/family_reads.h"
#include "map/list_line.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::int16_t NoAddress = -1;

} // namespace

NetworkSearch::NetworkSearch(Session& session, SearchEvents events)
    : session_(session), events_(std::move(events)) {}

void NetworkSearch::Run() {
    session_.Device.clear();
    session_.ScanIndex = -1;
    pending_ = {};
    pending_.Address = NoAddress;
    stored_ = 0;
    try {
        SearchAddresses();
    } catch (...) {
        session_.ModuleCount = static_cast<std::int16_t>(stored_);
        throw;
    }
    session_.ModuleCount = static_cast<std::int16_t>(stored_);
}

void NetworkSearch::SearchAddresses() {
    for (std::int16_t address = 0; address <= session_.SearchHighAddress; ++address) {
        if (StopRequested != 0)
            break;
        events_.Address(address);
        if (address == pending_.Address) {
            // The module in its initialisation state takes this place; its address is not probed.
            session_.ScanIndex = static_cast<std::int16_t>(stored_);
            Store(pending_);
        } else {
            SearchAddress(address);
        }
        events_.Yield();
    }
}

void NetworkSearch::SearchAddress(std::int16_t address) {
    Probe probe;
    probe.Address = address;
    probe.AddressHex = ToHex(address, 2);
    if (!FindAnswer(probe))
        return;
    if (address == 0) {
        ModuleRecord found = pending_;
        if (!Identify(probe, found))
            return;
        pending_ = found;
        FinishAddressZero();
    } else if (Identify(probe, session_.ModuleTable[stored_])) {
        AppendEntry();
    }
}

bool NetworkSearch::FindAnswer(Probe& probe) {
    Line& line = session_.Line;
    const std::string command = "$" + probe.AddressHex + "2";
    for (std::int16_t code = 0; code < BaudCodeCount; ++code) {
        if (line.SettingsOf(line.CurrentPort).BaudEnabled[static_cast<std::size_t>(code)] == 0)
            continue;
        events_.Baud(BaudFromCode(code));
        for (const std::int16_t checksum : {std::int16_t{0}, std::int16_t{1}}) {
            line.Exchange(command, checksum, code, line.ReplyTimeout);
            if (checksum == 1)
                events_.Yield();
            if (!ConfigReplyIsGood())
                continue;
            probe.Checksum = checksum;
            probe.BaudCode = code;
            probe.ConfigReply = line.ReplyText;
            return true;
        }
    }
    return false;
}

bool NetworkSearch::ConfigReplyIsGood() const {
    const std::size_t length = session_.Line.ReplyText.size();
    return session_.Line.ReplyIs('!') && (length == 9 || length == 11);
}

// Fills `record` from the configuration reply and the reads that follow. False, with nothing stored, when the
// reply is noise that merely looks like one.
bool NetworkSearch::Identify(const Probe& probe, ModuleRecord& record) {
    const auto reportedAddress = HexNumber(Middle(probe.ConfigReply, 2, 2));
    const auto typeCode = HexNumber(Middle(probe.ConfigReply, 4, 2));
    const auto format = HexNumber(Middle(probe.ConfigReply, 8, 2));
    if (!typeCode || !format || (probe.Address == 0 && !reportedAddress))
        return false;
    record.Address = probe.Address == 0 ? static_cast<std::int16_t>(*reportedAddress) : probe.Address;
    record.InputRange = static_cast<std::int16_t>(*typeCode);

    Line& line = session_.Line;
    line.Exchange("$" + probe.AddressHex + "M", probe.Checksum, probe.BaudCode, line.ReplyTimeout);
    const std::string moduleName = Middle(line.ReplyText, 4); // used as it comes, valid or not
    record.Model = FixedText(moduleName, 6);

    if (!DecodeConfigReply(probe.ConfigReply, moduleName, record))
        return false;
    const std::int16_t checksum = probe.Address == 0 ? std::int16_t{0} : record.Checksum;
    ReadFamilySettings(line, moduleName, {probe.AddressHex, checksum, probe.BaudCode}, record);
    return true;
}

void NetworkSearch::FinishAddressZero() {
    if (pending_.Address != 0)
        return; // listed when the loop reaches the address that it reports
    session_.ScanIndex = 0;
    Store(pending_);
}

void NetworkSearch::Store(const ModuleRecord& record) {
    session_.ModuleTable[stored_] = record;
    AppendEntry();
}

void NetworkSearch::AppendEntry() {
    session_.Device.push_back(BuildListLine(session_, stored_));
    events_.Found(stored_++);
}

std::int64_t SearchTimeLeft(const Line& line, int done, int total, std::int64_t elapsedMs) {
    constexpr int BaudChangeMs = 1000;
    constexpr int TrustInAlgorithm =
        4; // addresses that the computed cost counts for beside the measured ones
    const auto& enabled = line.SettingsOf(line.CurrentPort).BaudEnabled;
    const auto rates = std::count(enabled.begin(), enabled.end(), 1);
    const std::int64_t silentMs = rates * (2 * line.ReplyTimeout + (rates > 1 ? BaudChangeMs : 0));
    return (total - done) * (TrustInAlgorithm * silentMs + elapsedMs) / (TrustInAlgorithm + done);
}

} // namespace kavro
