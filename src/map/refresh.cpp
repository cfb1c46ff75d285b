#include "map/refresh.h"

#include "link/baud.h"
#include "map/identify.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace kavro {

namespace {

constexpr double ModuleMs = 150; // about what most take; the forecast follows what they really do

} // namespace

ListRefresh::ListRefresh(Session& session, SearchEvents events, bool checksumsKnown)
    : session_(session), events_(std::move(events)), checksumsKnown_(checksumsKnown),
      forecast_(session.Line.Time()) {}

// Rate by rate, so that each is set once.
std::vector<int> ListRefresh::Order() const {
    std::vector<int> order(static_cast<std::size_t>(session_.ModuleCount));
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, [this](int index) { return ModuleBaudCode(session_, index); });
    return order;
}

void ListRefresh::Run() {
    const CarefulTransactions careful(session_.Line);
    findings_ = {};
    forecast_.Begin(ModuleMs * session_.ModuleCount);
    for (const int index : Order()) {
        if (stopRequested_) {
            findings_.RefreshStopped = true;
            break;
        }
        events_.Address(session_.ModuleTable[index].Address);
        events_.Baud(BaudFromCode(ModuleBaudCode(session_, index)));
        Read(index);
        events_.Changed(index);
        forecast_.Step(ModuleMs, false);
        events_.Yield();
    }
}

void ListRefresh::Read(int index) {
    ModuleRecord& entry = session_.ModuleTable[index];
    ConfigAnswer answer{.Address = ModuleAddress(session_, index),
                        .Checksum = checksumsKnown_ ? ModuleChecksum(session_, index) : std::int16_t{0},
                        .BaudCode = ModuleBaudCode(session_, index),
                        .Reply = {}};
    ModuleRecord found;
    Identified identified = AskModuleAgain(session_.Line, answer, found);
    const bool eitherWay = (!checksumsKnown_ || !entry.Answers) && answer.Address != 0;
    if (identified == Identified::No && eitherWay) {
        answer.Checksum = answer.Checksum == 1 ? 0 : 1;
        identified = AskModuleAgain(session_.Line, answer, found);
    }
    if (answer.Address == 0 && identified == Identified::Fully && found.Address != entry.Address)
        identified = Identified::No; // another module answers at address 00 now
    if (identified == Identified::Fully)
        entry = found;
    entry.Answers = identified != Identified::No;
    entry.Complete = identified == Identified::Fully || (!entry.Answers && entry.Complete);
    if (!entry.Answers)
        findings_.NoAnswer.insert(std::ranges::upper_bound(findings_.NoAnswer, entry.Address), entry.Address);
    session_.Device[static_cast<std::size_t>(index)] = BuildListLine(session_, index);
}

} // namespace kavro
