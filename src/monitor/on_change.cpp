#include "monitor/on_change.h"

#include "link/entered_values.h"
#include "link/number_text.h"
#include "link/runtime_failure.h"
#include "monitor/module_values.h"

#include <cmath>

namespace kavro {

namespace {

constexpr int LongestRestS = 86'400;
constexpr double Rounding = 1e-12; // of decimal fractions, relative to the values

bool DiffersByMore(const PublishedValue& value, const PublishedValue& last, double band) {
    if (value.Unit == WordUnit || !value.Number || !last.Number)
        return value.Text != last.Text;
    const double rounding = Rounding * (std::abs(*value.Number) + std::abs(*last.Number));
    return std::abs(*value.Number - *last.Number) > band + rounding;
}

} // namespace

OnChangeRule ParseOnChange(const std::string& text) {
    const auto comma = text.find(',');
    const std::optional<double> band = PlainNumber(text.substr(0, comma));
    if (!band || !(*band >= 0))
        throw RuntimeFailure(
            "'" + text +
            "' is no band. Write the change that counts in the unit of the channels, and after "
            "a comma the seconds after which any value does, for example 0.05 or 0.05,60.");
    OnChangeRule rule{*band};
    if (comma != std::string::npos)
        rule.RestMs = std::int64_t{1000} *
                      ParseWholeNumber(text.substr(comma + 1), "a number of seconds", 1, LongestRestS);
    return rule;
}

bool OnChange::Passes(std::int16_t address, const std::string& channel, const PublishedValue& value) {
    const auto [place, first] = last_.try_emplace({address, channel});
    PublishedValue& last = place->second;
    const bool passes = first || value.State != last.State || value.Unit != last.Unit ||
                        DiffersByMore(value, last, rule_.Band) || value.UnixMs < last.UnixMs ||
                        (rule_.RestMs && value.UnixMs - last.UnixMs >= *rule_.RestMs);
    if (passes)
        last = value;
    return passes;
}

} // namespace kavro
