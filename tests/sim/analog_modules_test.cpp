#include "sim/played.h"

#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/analog_output_module.h"
#include "sim/module_factory.h"
#include "sim/voltage_output_module.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kavro {
namespace {

TEST(AnalogModules, TakeTheRangesAndFormatsOfTheirModel) {
    const std::pair<const char*, const char*> cases[] = {
        {"8210", "%0505000600 !05,%0505060601 !05,%0505070600 ?05,%0505080602 !05,%0505160600 !05,"
                 "%0505170600 ?05,%0505160603 ?05,$052 !05160600"},
        {"8220", "%0505070600 ?05,%0505080601 !05,%05050D0602 !05,%05050E0600 ?05,%0505080603 ?05"},
        {"8230", "%0505200603 !05,$052 !05200603,%0505200601 ?05,%05052A0600 !05,%05052B0600 ?05"},
        {"8250", "%05050E0600 ?05,%05050D0602 !05,%0505080604 ?05,%0505080642 !05,$052 !05080602"},
        {"8260", "%0505160602 !05,%0505200600 ?05"},
        {"8310", "%05052F0600 ?05,%0505320602 !05,%0505330600 ?05,%0505300603 ?05"},
        {"8320", "%0505330600 !05,%0505300600 ?05,%0505330601 ?05"}};
    for (const auto& [model, script] : cases)
        EXPECT_EQ(Played(*MakeModule(model, 5), script), script) << model;
}

TEST(AlarmInputs, DriveTheirOutputsByTheReading) {
    AlarmInputModule module(FactorySettings("8210")); // +/- 2.5 V
    module.HeldInputs = 0;
    const std::pair<double, const char*> steps[] = {
        {0, "@01PL-1.0000 !01,@01PH+1.5000 !01,@01RL !01-1.0000,@01RH !01+1.5000,@01PH+2.5001 ?01,"
            "@01PL-2.5001 ?01,@01PH+01.500 ?01,@01PH01.5000 ?01,@01PH+1.50-0 ?01,@01PH+1.500 ?01,"
            "@01RH !01+1.5000,@01DO03 !01,@01DI !0100300,@01DO04 ?01,@01CA !01,@01DI !0100300"},
        {1.5, "@01DI !0100300,@01EA1 !01,@01DI !0110200,@01DO01 ?01"},
        {-1, "@01DI !0110100"},
        {0, "@01DI !0110000,@01EA2 !01,@01DI !0120000"},
        {2, "$01M !018210"}, // the alarm follows at any command
        {-2, "@01DI !0120300"},
        {-0.9999, "@01DI !0120300,@01CA !01,@01DI !0120000"},
        {-2, "@01DI !0120100,@01CA !01,@01DI !0120100,@01DA !01,@01DI !0100000,@01EA3 ?01"},
        {2, "@01PH+2.5000 !01,%0101040600 !01,@01RH !01+1.0000"}};
    for (const auto& [signal, script] : steps) {
        module.HeldSignal = signal;
        EXPECT_EQ(Played(module, script), script) << signal;
    }
    const std::string moving = "@01DI !0100001,wait 1000,@01DI !0100000";
    EXPECT_EQ(Played(*MakeModule("8220", 1), moving), moving);
}

TEST(AnalogInputs, EnableChannelsAndLoseTheirErrorsByCalibration) {
    const std::tuple<const char*, double, const char*> cases[] = {
        {"8210", 2, "#05 >+2.0450,$051 !05,#05 >+2.0200,$050 !05,#05 >+2.0000,$05BA ?05"},
        {"8230", 5, "$05502 !05,$056 !0502,#050 ?05,#051 >+006.05,$05508 ?05,$056 !0502,$053 ?05"},
        {"8240", 5, "$050 !05,#05 >+05.100,$051 !05,#05 >+05.000,$053 !05+0123,$059+0000 ?05"},
        // A reading ends at the end of the range.
        {"8250", 10, "$055FE !05,$056 !05FE,#050 ?05,#051 >+10.000,$05BA ?05,$053 ?05,$059+0000 ?05"},
        {"8260", 100,
         "$05BA !0584,#052 >+1370.0,#057 >+1370.0,#050 >+0112.7,$053 >+0023.3,$059+0083 !05,$053 >+0025.3,"
         "#050 >+0114.7,$059-0041 !05,$053 >+0022.3,$059+0000 !05,$053 >+0023.3,$0590041 ?05,$05900041 ?05,"
         "$059.0041 ?05,$051 !05,$050 !05,#050 >+0098.0,%0505040600 !05,#050 >+1.0000"}};
    for (const auto& [model, signal, script] : cases) {
        const auto module = MakeModule(model, 5);
        auto& input = dynamic_cast<CalibratedInput&>(*module);
        input.OffsetError = input.SpanError = 1;
        input.ColdJunctionError = -2;
        input.HeldSignal = signal;
        if (auto* channels = dynamic_cast<AnalogInputModule*>(&input))
            channels->OpenChannels = 0x84;
        EXPECT_EQ(Played(input, script), script) << model;
    }
}

TEST(AnalogOutputs, DriveInTheirRangeAndFormat) {
    const std::pair<int, const char*> cases[] = {
        {0x30, "$056 !0500.000,#0512.500 >,$056 !0512.500,#0520.001 ?05,#05+12.50 ?05,#051.5000 ?05,"
               "#05 ?05,#05800 ?05,#05+062.50 ?05,$056 !0512.500,%0505320600 !05,$058 !0510.000"},
        {0x31, "$056 !0504.000,#0503.999 ?05,%0505310601 !05,#05+062.50 >,$056 !05+062.50,$058 !0514.000,"
               "#05+100.01 ?05,#05-000.01 ?05,#05062.500 ?05,#05FFF ?05"},
        {0x32, "%0505320602 !05,#05FFF >,$056 !05FFF,$058 !0510.000,#05800 >,$056 !05800,$058 !0505.001,"
               "#0505.000 ?05,#05fff ?05,$05301 ?05,$050 ?05"}};
    for (const auto& [code, script] : cases) {
        const auto module = MakeModule("8310", 5);
        module->Settings.TypeCode = code;
        EXPECT_EQ(Played(*module, script), script) << code;
    }
}

TEST(AnalogOutputs, KeepATrimThatIsStored) {
    AnalogOutputModule module(FactorySettings("8310"));
    module.Error4mA = 0.012;
    module.Error20mA = -0.02;
    const std::string script =
        "%0101320600 !01,$018 !0100.000,%0101300600 !01,#0104.000 >,$018 !0104.012,$013FF !01,$018 "
        "!0104.008,$013FE !01,$018 !0104.000,$011 ?01,"
        // Not stored: gone with the next output, and with a configuration.
        "#0104.000 >,$018 !0104.012,$013FD !01,%0101300600 !01,$018 !0104.012,"
        "$013FD !01,$010 !01,$018 !0104.000,#0112.000 >,$018 !0111.990,$01301 ?01,$010 ?01,"
        "#0120.000 >,$018 !0119.980,$01305 !01,$018 !0120.000,$010 ?01,$011 !01,#0100.000 >,$018 !0100.000,"
        "#0120.000 >,$018 !0120.000,$013 ?01,$01305A ?01";
    EXPECT_EQ(Played(module, script), script);
}

TEST(VoltageOutputs, DriveFourPortsAndReadInputs) {
    VoltageOutputModule module(FactorySettings("8320"));
    module.HeldInputs = 0x45;
    const std::string script =
        "$016A !01+00.000,#01A+10.000 >,#01C-07.250 >,#01D-10.000 >,$016A !01+10.000,$016B !01+00.000,"
        "$016C !01-07.250,$016D !01-10.000,#01B+10.001 ?01,#01E+00.000 ?01,#011+00.000 ?01,#01A00.0000 ?01,"
        "#0104.000 ?01,$016E ?01,$016 ?01,$016A !01+10.000,$018 !450000,~01CP01 !01,~01CR !0101,"
        "$018 !3A0000,~01CP00 !01,$018 !450000,~01CP10 ?01,~01CP02 ?01";
    EXPECT_EQ(Played(module, script), script);
    const std::string moving = "$058 !4F0000,wait 2500,$058 !0A0000";
    EXPECT_EQ(Played(*MakeModule("8320", 5), moving), moving);

    module.ErrorOfPortA = 0.01;
    for (const auto& [heard, terminals] :
         {std::pair{"$013FF !01", 10.005}, std::pair{"#01B+01.000 >", 10.005},
          std::pair{"#01A+10.000 >", 10.01}, std::pair{"$013FE !01,$010 !01,#01A+10.000 >", 10.0},
          std::pair{"$01301 !01,$011 !01", 10.005}}) {
        EXPECT_EQ(Played(module, heard), heard);
        EXPECT_NEAR(module.TerminalsOfPortA(), terminals, 1e-9) << heard;
    }
}

} // namespace
} // namespace kavro
