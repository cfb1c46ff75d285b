#include "project/restore_text.h"

#include "link/text.h"
#include "project/comparison_text.h"

#include <algorithm>

namespace kavro {

namespace {

std::string NotTakenText(const LineDifference& difference) {
    return difference.Setting + " (wanted " + difference.File.Text + ", has " + difference.Line.Text + ")";
}

// What was to be written of it.
std::vector<std::string> ChosenOf(const WrittenModule& module, const LineComparison& comparison) {
    std::vector<std::string> names;
    for (const ModuleComparison& each : comparison.Modules)
        for (const LineDifference& difference : each.Differences) {
            const SettingValue* const wanted = SettingIn(module.Wanted, difference.Setting);
            if (each.File.Address == module.Wanted.Address && wanted && *wanted == difference.File.Value)
                names.push_back(difference.Setting);
        }
    return names;
}

} // namespace

std::string WrittenText(const WrittenModule& module, const LineComparison& comparison) {
    const std::string the = "The " + ShownModule(module.Wanted);
    if (module.AsWanted())
        return the + (module.Sent ? " took its " : " already has its ") +
               Listed(ChosenOf(module, comparison)) + ".";
    std::string text = the + (module.Readable ? " did not take: " : " could not be read back.");
    if (module.Readable)
        for (const LineDifference& each : module.NotTaken)
            text += (&each == &module.NotTaken.front() ? "" : ", ") + NotTakenText(each);
    text += module.Readable ? "."
            : module.Sent   ? " What it has now is not known."
                            : " Nothing was sent to it.";
    for (const std::string& told : module.Told)
        text += " " + told;
    return text;
}

std::vector<std::string> WrittenTexts(const WrittenLine& written, const LineComparison& comparison) {
    const auto taken = static_cast<std::size_t>(std::ranges::count_if(written, &WrittenModule::AsWanted));
    std::vector<std::string> texts = {std::to_string(taken) + " of " + Counted(written.size(), "module") +
                                      " took everything that was to be written."};
    for (const WrittenModule& module : written)
        texts.push_back(WrittenText(module, comparison));
    for (const ModuleComparison& module : comparison.Modules)
        if (const std::string text = LeftAloneText(module); !text.empty())
            texts.push_back(text);
    return texts;
}

std::vector<std::string> UnfinishedTexts(const std::vector<WriteTarget>& targets, std::size_t written) {
    std::vector<std::string> texts;
    for (std::size_t i = written; i < targets.size(); ++i)
        texts.push_back("The " + ShownModule(targets[i].Wanted) + " was not finished.");
    return texts;
}

std::string AwaitingText(const LineComparison& comparison) {
    std::vector<std::string> settings;
    for (const ModuleComparison& module : comparison.Modules)
        for (const LineDifference& difference : module.Differences)
            if (LeftAloneText(module).empty() && !CanBeWritten(module, difference))
                settings.push_back(difference.Setting + " of " + ShownModule(module.File));
    return settings.empty() ? "" : "Left as it is: " + Listed(settings) + ". " + InitialisationAdvice;
}

} // namespace kavro
