#pragma once

#include "traffic/line_check.h"

#include <string>
#include <vector>

namespace kavro {

// What the findings of a line check say: what was seen, then what to do.

using ModuleChecks = std::vector<const ModuleCheck*>;

std::string LineSilentText(const LineCheckResult& result, const ModuleChecks& modules);
std::string ModuleSilentText(const LineCheckResult& result, const ModuleCheck& module);
std::string DoubleAddressText(const LineCheckResult& result, const ModuleCheck& module);
std::string ModuleDamagedText(const LineCheckResult& result, const ModuleCheck& module);
/// Of modules whose clean replies do not suit the list.
std::string ModuleAnotherText(const LineCheckResult& result, const ModuleCheck& module);
std::string LineAnotherText(const LineCheckResult& result, const ModuleChecks& modules);
/// Says whether the damage grows with the rate, or along the list.
std::string LineDamagedText(const LineCheckResult& result, const ModuleChecks& modules);
std::string ModuleRefusedText(const LineCheckResult& result, const ModuleCheck& module);
std::string LineRefusedText(const LineCheckResult& result, const ModuleChecks& modules);
std::string ModuleSlowText(const LineCheckResult& result, const ModuleCheck& module);
std::string LineSlowText(const LineCheckResult& result, const ModuleChecks& modules);
std::string ForeignText(const LineCheckResult& result, const ModuleChecks& modules);
std::string EchoText(const LineCheckResult& result, const ModuleChecks& modules);

} // namespace kavro
