#include "traffic/line_findings.h"

#include "traffic/double_address.h"
#include "traffic/finding_texts.h"

#include <algorithm>
#include <set>

namespace kavro {

namespace {

/// What the rules look at.
struct View {
    const LineCheckResult& Result;
    ModuleChecks Asked; // modules that were
    std::set<const ModuleCheck*> Twofold{};
    bool ForeignDisturbs = false; // there is no more trouble than foreign talk brings about

    explicit View(const LineCheckResult& result);
};

View::View(const LineCheckResult& result) : Result(result) {
    constexpr int TroublePerBurst = 4; // for one that was heard, so many ran into a reply
    int trouble = 0;
    for (const ModuleCheck& module : result.Modules) {
        if (module.Sent == 0)
            continue;
        Asked.push_back(&module);
        if (module.Silent - module.Late < module.Sent && !module.IsAnother())
            trouble += module.Damaged + module.Silent - module.Late;
        if (LooksLikeTwo(module))
            Twofold.insert(&module);
    }
    // Where most modules look like that, it is the line that does it.
    if (Twofold.size() > 1 && 2 * Twofold.size() > Asked.size())
        Twofold.clear();
    ForeignDisturbs = result.Foreign > 0 && trouble <= TroublePerBurst * (result.ForeignBursts + 1);
}

bool IsDead(const View&, const ModuleCheck& module) {
    return module.Silent == module.Sent && module.Late == 0;
}

bool IsTwofold(const View& view, const ModuleCheck& module) {
    return view.Twofold.contains(&module);
}

// Such a module may refuse as well; that is then the finding.
bool IsAnother(const View&, const ModuleCheck& module) {
    return module.IsAnother() && module.Refused == 0;
}

bool IsDamaged(const View& view, const ModuleCheck& module) {
    return module.Damaged > 0 && !view.ForeignDisturbs && !module.IsAnother();
}

// What came late was slow, not silent.
bool IsSilent(const View& view, const ModuleCheck& module) {
    return module.Silent > module.Late && (IsDead(view, module) || !view.ForeignDisturbs);
}

bool Refuses(const View&, const ModuleCheck& module) {
    return module.Refused > 0;
}

bool IsSlow(const View&, const ModuleCheck& module) {
    constexpr int OneIn = 20;
    const int slow = module.Slow + module.Late;
    return slow > 0 && slow * OneIn >= module.Complete + module.Late;
}

bool HeardForeign(const View& view) {
    return view.Result.Foreign > 0;
}

bool HasEcho(const View& view) {
    return view.Result.Echo;
}

/// From how many modules on a finding is the line's.
enum class Whose : std::uint8_t { EachModules, LinesIfTwo, LinesIfAll, LinesOnly };

/// A finding of a module (`Holds`) or of the line alone (`LineHolds`).
struct Rule {
    const char* Finding = "";
    bool (*Holds)(const View& view, const ModuleCheck& module) = nullptr;
    Whose Belongs = Whose::EachModules;
    std::string (*ModuleText)(const LineCheckResult& result, const ModuleCheck& module) = nullptr;
    std::string (*LineText)(const LineCheckResult& result, const ModuleChecks& modules) = nullptr;
    bool IsLoss =
        false; // about missing or damaged replies: the first one that holds for a module explains them
    bool (*LineHolds)(const View& view) = nullptr;
};

constexpr Rule Rules[] = {
    {"line-silent", IsDead, Whose::LinesOnly, nullptr, LineSilentText, true},
    {"double-address", IsTwofold, Whose::EachModules, DoubleAddressText, nullptr, true},
    {"damaged", IsAnother, Whose::LinesIfAll, ModuleAnotherText, LineAnotherText, true},
    {"damaged", IsDamaged, Whose::LinesIfTwo, ModuleDamagedText, LineDamagedText, true},
    {"line-silent", IsSilent, Whose::LinesOnly, nullptr, LineSilentText, true},
    {"module-silent", IsSilent, Whose::EachModules, ModuleSilentText, nullptr, true},
    {"refused", Refuses, Whose::LinesIfAll, ModuleRefusedText, LineRefusedText},
    {"slow", IsSlow, Whose::LinesIfAll, ModuleSlowText, LineSlowText},
    {"foreign", nullptr, Whose::LinesOnly, nullptr, ForeignText, false, HeardForeign},
    {"echo", nullptr, Whose::LinesOnly, nullptr, EchoText, false, HasEcho},
};

bool IsTheLines(const Rule& rule, const View& view, const ModuleChecks& found) {
    const bool all = found.size() == view.Asked.size();
    switch (rule.Belongs) {
    case Whose::EachModules:
        return false;
    case Whose::LinesIfTwo:
        return found.size() >= 2;
    case Whose::LinesIfAll:
        return all && found.size() >= 2;
    case Whose::LinesOnly:
        // A single module may as well be silent for a reason of its own now and then.
        return all && (found.size() >= 2 || found.front()->Silent == found.front()->Sent);
    }
    return false;
}

} // namespace

std::vector<LineFinding> FindingsOf(const LineCheckResult& result) {
    const View view(result);
    std::vector<LineFinding> findings;
    std::set<const ModuleCheck*> explained;
    for (const Rule& rule : Rules) {
        if (rule.LineHolds) {
            if (rule.LineHolds(view))
                findings.push_back({rule.Finding, std::nullopt, rule.LineText(result, {})});
            continue;
        }
        ModuleChecks found;
        for (const ModuleCheck* module : view.Asked)
            if (rule.Holds(view, *module) && !(rule.IsLoss && explained.contains(module)))
                found.push_back(module);
        const bool line = !found.empty() && IsTheLines(rule, view, found);
        if (line)
            findings.push_back({rule.Finding, std::nullopt, rule.LineText(result, found)});
        else if (!rule.ModuleText)
            continue;
        else
            for (const ModuleCheck* module : found)
                findings.push_back({rule.Finding, module->Address, rule.ModuleText(result, *module)});
        if (rule.IsLoss)
            explained.insert(found.begin(), found.end());
    }
    return findings;
}

} // namespace kavro
