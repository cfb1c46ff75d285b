#include "map/search.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "map/list_line.h"
#include "map/search_times.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::int16_t NoAddress = -1;

} // namespace

NetworkSearch::NetworkSearch(Session& session, SearchEvents events, Belief belief)
    : session_(session), events_(std::move(events)), belief_(belief), forecast_(session.Line.Time()) {}

void NetworkSearch::Run() {
    begun_ = false;
    pending_ = {};
    pending_.Address = NoAddress;
    stored_ = 0;
    answers_.clear();
    findings_ = {};
    try {
        SearchAddresses();
        if (belief_ != Belief::Exact && StopRequested == 0)
            AskAgain();
    } catch (...) {
        End();
        throw;
    }
    if (StopRequested == 0)
        Begin(); // where no baud rate is enabled
    End();
}

void NetworkSearch::Begin() {
    if (std::exchange(begun_, true))
        return;
    session_.Device.clear();
    session_.ScanIndex = -1;
    events_.Begun();
}

void NetworkSearch::End() {
    if (begun_)
        session_.ModuleCount = static_cast<std::int16_t>(stored_);
    if (pending_.Address >= 0 && session_.ScanIndex < 0)
        findings_.BeyondRange = pending_.Address;
}

void NetworkSearch::SearchAddresses() {
    const SearchScope scope = ScopeOf(session_.Line, session_.SearchHighAddress);
    const auto addressMs = static_cast<double>(ExactAddressMs(scope));
    forecast_.Begin(addressMs * scope.Addresses);
    for (std::int16_t address = 0; address <= session_.SearchHighAddress; ++address) {
        if (StopRequested != 0) {
            findings_.StoppedAfter = static_cast<std::int16_t>(address - 1);
            break;
        }
        events_.Address(address);
        const int before = stored_;
        if (address == pending_.Address) {
            // The module in its initialisation state takes this place; its address is not probed.
            session_.ScanIndex = static_cast<std::int16_t>(stored_);
            answers_.push_back(pendingAnswer_);
            Store(pending_);
        } else {
            SearchAddress(address);
        }
        forecast_.Step(addressMs, stored_ > before);
        events_.Yield();
    }
}

void NetworkSearch::SearchAddress(std::int16_t address) {
    bool understood = false;
    try {
        understood = Understand(address);
    } catch (const LineBabbles&) {
        // Passed over: the port works, and other addresses may be readable.
    }
    if (!understood)
        findings_.Unclear.push_back(address);
}

// Whether it is clear now what is at the address: a module, which has been added, or nothing at all.
bool NetworkSearch::Understand(std::int16_t address) {
    bool heard = false;
    const auto answer = FindAnswer(address, heard);
    if (!answer)
        return !heard;
    ModuleRecord pending = pending_;
    ModuleRecord& found = address == 0 ? pending : session_.ModuleTable[stored_];
    const Identified identified = IdentifyModule(session_.Line, *answer, found, belief_);
    if (identified == Identified::No)
        return false;
    found.Complete = identified == Identified::Fully;
    if (address == 0) {
        pending_ = pending;
        pendingAnswer_ = *answer;
        FinishAddressZero();
    } else {
        answers_.push_back(*answer);
        AppendEntry();
    }
    return true;
}

// What a damaged reply left open, at the end, when the rest of the line is known.
void NetworkSearch::AskAgain() {
    for (int index = 0; index < stored_; ++index) {
        if (session_.ModuleTable[index].Complete)
            continue;
        ModuleRecord record = session_.ModuleTable[index];
        const auto identified =
            AskModuleAgain(session_.Line, answers_[static_cast<std::size_t>(index)], record);
        if (!TellsMore(identified, record, Identified::Vaguely))
            continue;
        record.Complete = identified == Identified::Fully;
        session_.ModuleTable[index] = record;
        session_.Device[static_cast<std::size_t>(index)] = BuildListLine(session_, index);
    }
}

// `heard` tells whether anything came, were it no good answer.
std::optional<ConfigAnswer> NetworkSearch::FindAnswer(std::int16_t address, bool& heard) {
    Line& line = session_.Line;
    for (std::int16_t code = 0; code < BaudCodeCount; ++code) {
        if (line.SettingsOf(line.CurrentPort).BaudEnabled[static_cast<std::size_t>(code)] == 0)
            continue;
        events_.Baud(BaudFromCode(code));
        for (const std::int16_t checksum : {std::int16_t{0}, std::int16_t{1}}) {
            auto answer = AskForConfig(line, address, checksum, code);
            Begin();
            if (answer && belief_ != Belief::Exact && !IsCredible(*answer))
                answer.reset();
            heard = heard || line.ReplyStatus != 0 || !line.ReplyText.empty();
            if (checksum == 1)
                events_.Yield();
            if (answer)
                return answer;
        }
    }
    return std::nullopt;
}

void NetworkSearch::FinishAddressZero() {
    if (pending_.Address != 0)
        return; // listed when the loop reaches the address that it reports
    session_.ScanIndex = 0;
    answers_.push_back(pendingAnswer_);
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

} // namespace kavro
