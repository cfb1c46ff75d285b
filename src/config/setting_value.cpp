#include "config/setting_value.h"

#include "link/number_text.h"

namespace kavro {

namespace {

struct Texts {
    std::string operator()(bool value) const { return value ? "on" : "off"; }
    std::string operator()(double value) const { return ShortestText(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(const std::vector<int>& numbers) const {
        std::string text;
        for (const int number : numbers)
            text += (text.empty() ? "" : ",") + std::to_string(number);
        return text.empty() ? "none" : text;
    }
};

} // namespace

std::string ValueText(const SettingValue& value) {
    return std::visit(Texts(), value);
}

} // namespace kavro
