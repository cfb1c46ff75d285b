#include "diag/module_outputs.h"
#include "link/codes.h"
#include "map/module_contact.h"
#include "support/test_session.h"

namespace kavro {
namespace {

// An output of the demo line is driven, and read back.
TEST(ModuleOutputs, WhatAModuleTellsIsWhatItWasGiven) {
    struct Case {
        std::int16_t Address;
        const char *Name, *Given, *Told;
        int Channel;
        std::optional<std::int16_t> Format = {};
    };
    const Case cases[] = {{8, "", "12.5", "12.501", 0}, // of a hundredth of a percent
                          {8, "", "12.5", "12.500", 0, EngineeringUnits},
                          {8, "", "12.5", "12.498", 0, TwosComplement},
                          {9, "C", "-7.25", "-7.250", 2},
                          {9, "D", "0", "+0.000", 3},
                          {10, "7", "on", "on", 15},
                          {10, "all", "00a5", "00A5", -1},
                          {15, "CL1", "on", "on", 1},
                          {2, "1", "on", "on", 2},
                          {2, "all", "02", "02", -1}};
    for (const auto& [address, name, given, told, channel, format] : cases) {
        SCOPED_TRACE(name + std::string(" ") + told);
        SimulatedSession demo(DemoLine());
        SimulatedModule& module = demo.Line.ModuleAt(address);
        module.Settings.DataFormat = format.value_or(module.Settings.DataFormat);
        TryContact(demo.Session, ContactOf(demo.Session, address));
        const auto outputs = OutputsOf(demo.Session);
        const auto output = std::ranges::find(*outputs, std::string(name), &NamedOutput::Name);
        ASSERT_NE(output, outputs->end());
        EXPECT_TRUE(output->Plan(given)());
        EXPECT_EQ(std::tuple(output->Read(), output->Channel),
                  std::tuple(std::optional<std::string>(told), channel));
        module.OwnFaults.Silent = true;
        EXPECT_EQ(output->Read(), std::nullopt);
    }
}

} // namespace
} // namespace kavro
