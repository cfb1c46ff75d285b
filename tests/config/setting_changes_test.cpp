#include "config/config_exchange.h"
#include "support/test_session.h"

namespace kavro {
namespace {

struct DemoModules : SimulatedSession {
    DemoModules() : SimulatedSession(DemoLine()) {}

    NamedConfig Read(std::int16_t address, std::int16_t baudCode = 3) {
        return ReadConfigTwice(Session, ContactOf(Session, address, {.BaudCode = baudCode}), Tell).value();
    }

    Teller Tell = {Messages, {"the program", "the terminal", "a search"}};
};

TEST(SettingChanges, TellWhenASettingCanBeWritten) {
    const std::pair<std::int16_t, Lines> cases[] = {
        {5, {"model", "address", "range", "format", "channels"}},
        {20, {"model", "address", "data-bits", "parity", "stop-bits", "interface"}}};
    for (const auto& [address, expected] : cases) {
        Lines always;
        for (const NamedSetting& setting : DemoModules().Read(address).Settings)
            if (setting.When != Writable::Initialising)
                always.push_back(setting.Name);
        EXPECT_EQ(always, expected);
    }
    const NamedConfig initialising = DemoModules().Read(0);
    EXPECT_EQ(FindSetting(initialising, "Baud")->When, Writable::Initialising);
    EXPECT_EQ(FindSetting(initialising, "baud")->Locked(), "");
    EXPECT_EQ(FindSetting(initialising, "model")->When, Writable::Never);
    EXPECT_EQ(FindSetting(initialising, "parity"), nullptr);
}

// Pairs of modules of one model: the second is made as the first.
TEST(SettingChanges, OneModuleTakesTheValuesOfAnother) {
    struct {
        std::int16_t From, BaudCode, To;
        Lines Different;
    } const cases[] = {{7, 3, 5, {"range", "format", "channels"}},
                       {34, 4, 3, {"range", "format"}},
                       {49, 5, 6, {"range", "format"}},
                       {33, 4, 18, {"type", "gate-time"}},
                       {64, 6, 20, {"data-bits", "parity", "stop-bits", "interface"}}};
    for (const auto& [from, baudCode, to, different] : cases) {
        DemoModules demo;
        std::vector<std::pair<std::string, SettingValue>> values;
        for (const NamedSetting& setting : demo.Read(from, baudCode).Settings)
            values.emplace_back(setting.Name, setting.Value());
        NamedConfig config = demo.Read(to);
        for (const auto& [name, value] : values)
            if (NamedSetting& setting = SettingNamed(config, name);
                setting.When == Writable::Always && name != "address" && setting.Locked().empty())
                TakeValue(setting, value);
        Lines found;
        for (const SettingDifference& each : Differences(config, demo.Read(to)))
            found.push_back(each.Name);
        EXPECT_EQ(found, different) << to;
        WriteConfig(demo.Session, config, demo.Messages);
        EXPECT_TRUE(HasTaken(demo.Session, config, demo.Tell)) << to;
    }
}

TEST(SettingChanges, AValueOfAnotherKindIsRefused) {
    DemoModules demo;
    NamedConfig config = demo.Read(0);
    const std::pair<const char*, SettingValue> cases[] = {
        {"range", 10.0},  {"range", "3"},  {"checksum", "on"},           {"baud", 9601.0},
        {"baud", "9600"}, {"format", 1.0}, {"channels", std::vector{8}}, {"address", 256.0},
        {"model", "8260"}};
    for (const auto& [name, value] : cases)
        EXPECT_THROW(TakeValue(SettingNamed(config, name), value), RuntimeFailure) << name;
}

} // namespace
} // namespace kavro
