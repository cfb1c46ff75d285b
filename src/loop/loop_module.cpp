#include "loop/loop_module.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "project/find_modules.h"

#include <algorithm>

namespace kavro {

namespace {

std::size_t SpokenTo(const Session& session) {
    return static_cast<std::size_t>(ModuleAddress(session, 0));
}

} // namespace

LoopModule::LoopModule(const Session& session, const LineFile& file) {
    for (const SavedModule& module : file.Modules)
        contacts_[module.Address] = KnownContact(module, ContactOf(session, module.Address));
}

std::string LoopModule::Enter(Session& session, const LoopPoint& point) {
    if (record_ && record_->Address == point.Address) {
        Install(session);
        return {};
    }
    Forget();
    outputs_.clear();
    const std::string place = " at address " + ShownAddress(point.Address);
    const auto contact = contacts_.find(point.Address);
    if (contact == contacts_.end())
        return "The line file no longer has a module" + place + ".";
    const FoundModule found = TryContact(session, contact->second);
    if (found.Identified != Identified::Partly && found.Identified != Identified::Fully)
        return found.Heard ? "What answers" + place + " cannot be understood."
                           : "No module answers" + place + ". Check its power and the line.";
    const ModuleRecord& record = session.ModuleTable[0];
    if (record.Address != point.Address || Trim(ShownModel(record.Model)) != point.Model)
        return "A " + Trim(ShownModel(record.Model)) + " answers" + place + ", the line file has a " +
               point.Model + " there.";
    record_ = record;
    scanIndex_ = session.ScanIndex;
    Leave(session);
    return {};
}

void LoopModule::Install(Session& session) const {
    session.ModuleTable[0] = *record_;
    session.ModuleCount = 1;
    session.SelectedModule = 0;
    session.ScanIndex = scanIndex_;
    session.BelievedSince[SpokenTo(session)] = believedSince_;
}

void LoopModule::Leave(const Session& session) {
    if (record_)
        believedSince_ = session.BelievedSince[SpokenTo(session)];
}

const NamedOutput* LoopModule::OutputOf(Session& session, const LoopPoint& point) {
    if (outputs_.empty())
        outputs_ = OutputsOf(session).value_or(std::vector<NamedOutput>());
    const auto found = std::ranges::find(outputs_, point.Channel, &NamedOutput::Channel);
    return found == outputs_.end() ? nullptr : &*found;
}

} // namespace kavro
