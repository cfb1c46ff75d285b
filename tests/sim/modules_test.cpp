#include "sim/played.h"

#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/analog_output_module.h"
#include "sim/digital_module.h"
#include "sim/port_module.h"
#include "sim/voltage_output_module.h"

#include <tuple>

namespace kavro {
namespace {

TEST(Commands, ConfigureOrAreRefused) {
    ExpectPlayed(
        {// The checksum bit is ignored, another baud rate is refused.
         {"8410", "%0502400640 !02,$022 !02400600,$052 (silence),%0202400700 ?02,%0202410600 ?02,"
                  "%0202400601 ?02,%0202400680 ?02,%02024006 ?02,%02FF400600 !FF,$FF2 !FF400600"},
         {"8510", "%0505510604 !05,$052 !05510604,%0505520600 ?05,%0505500608 ?05,%0505500600 !05,"
                  "$052 !05500600"},
         {"8610", "%0507006600FF !07,$072 !07006600FF,%0707000600 ?07,%0707006700FF ?07,%0707016600FF ?07"},
         {"8999", "%0506000600 !06,%0606010600 ?06"}});
}

TEST(Commands, SetBaudRateAndChecksumInTheInitialisationState) {
    const std::pair<const char*, const char*> cases[] = {
        {"8410", "$002 !16400700,%0001400640 !01,$002 !01400640,%00014009C0 ?01,%0001400200 ?01,"
                 "%0001400B00 ?01,%0002400A00 !02,$002 !02400A00"},
        {"8620", "%000100A9FFFF !01,$002 !0100A9FFFF,%000100A20000 ?01,%000100B90000 ?01,"
                 "%0001003ABFFC !01,$002 !01003ABFFC"}};
    for (const auto& [model, script] : cases) {
        const auto module = MakeModule(model, 0x16, 19200);
        module->Settings.Initialisation = true;
        EXPECT_EQ(Played(*module, script), script) << model;
    }
}

TEST(Commands, DriveTheChannelsOfDigitalModules) {
    const std::pair<const char*, const char*> cases[] = {
        {"8410", "@05DO00FF !05,$056 !00FF00FF,@05SO070 !05,$056 !007F00FF,@05DO0100 ?05,@05SO081 ?05,"
                 "@05SO002 ?05,$056 !007F00FF,@05SO071 !05,$056 !00FF00FF"},
        {"8420", "@05DO0000 ?05,@05SO000 ?05,$056 !0000FFFF"},
        {"8430", "@05DOFFFF !05,$056 !FFFF0000,@05SO0F0 !05,$056 !7FFF0000"},
        {"8440", "@05DO0000 ?05,$056 !000000FF"},
        {"8450", "@05DO00FF !05,$056 !00FF007F"},
        {"8470", "@05DO0010 ?05,@05DO000F !05,$056 !000F000F"},
        {"8480", "@05DO00FF !05,@05DO0100 ?05,$056 !00FF0000"},
        {"8490", "@05SO071 !05,~05CP11 !05,~05CR !0511,$056 !00800000,~05CP01 !05,~05CR !0501,"
                 "~05CP10 !05,$056 !0080000F,~05CP20 ?05,~05CP02 ?05,~05CR !0510"}};
    for (const auto& [model, script] : cases) {
        const auto module = MakeModule(model, 5);
        dynamic_cast<DigitalModule&>(*module).HeldInputs = 0xFFFFFF;
        EXPECT_EQ(Played(*module, script), script) << model;
    }
    ExpectPlayed({{"8440", "$056 !000000CF,wait 2500,$056 !0000008A"}});
}

TEST(Commands, DriveThePortsThatAreOutputs) {
    const std::string script =
        "$056 !0F00,$058 !A5C396,@05SO000 ?05,@05DOFFFFFF !05,$05S10 ?05,$05S0A !05,$056 !0A00,"
        "$058 !A50090,@05DO123456 !05,$058 !A53496,@05SO0F1 !05,@05SO0C0 !05,@05SO001 !05,$058 !A5A497,"
        "@05SO101 ?05,@05SO041 ?05,@05SO181 ?05,@05SO012 ?05,$05S05 !05,$058 !00C306,$05S00 !05,"
        "$058 !00A407,@05DO800010 !05,$058 !800010,$05S08 !05,@05DO000000 !05,$05S00 !05,$058 !800000,"
        "~05CR !0500,~05CP11 ?05";
    const auto module = MakeModule("8460", 5);
    dynamic_cast<PortModule&>(*module).HeldInputs = 0xA5C396;
    EXPECT_EQ(Played(*module, script), script);
}

TEST(Commands, SetAndReadCounters) {
    const char* const scripts[] = {
        "$05B1 !05,$05B !051,$05B2 ?05,$05A0 !05,$05A !050,$05A3 ?05,$0541 !05,$054 !051,$0542 ?05,"
        "$050H0005 !05,$050H !050005,$050L9999 !05,$050L !059999,$050H12345 ?05,$050L5 ?05,"
        "$051H31 !05,$051H !0531,$051L05 !05,$051L !0505",
        "$0530000186A0 !05,$053100000100 !05,$0532000186A0 ?05,$053 !05000186A0,@05G !0500000100,"
        "@05P0000000A0 !05,@05P1FFFFFFFF !05,@05P200000000 ?05,@05RP !05000000A0FFFFFFFF,"
        "@05EA1 !05,@05DI !050100,@05EA0 !05,@05DA1 !05,@05EA2 ?05,@05DI !051000,"
        "@05PA00000003 !05,@05SA00000004 !05,@05RA !050000000300000004",
        // Counter 0 counts 120 and counter 1 45 pulses a second.
        "wait 9000,#050 >00000000,$05501 !05,$05511 !05,#050 >00000000,$055 !0511,"
        "wait 1000,#050 >00000078,#051 >0000002D,#052 ?05,$05510 !05,$055 !0510,$05501 !05,$05512 ?05,"
        "wait 1000,#050 >000000F0,#051 >0000002D,$05511 !05,$05520 ?05,"
        "wait 1000,#051 >0000005A,$0561 !05,#051 >00000000,$0562 ?05,"
        "wait 1000,#050 >000001E0,#051 >0000002D",
        // The maximum count, the initial count behind it, and a wrap round after round.
        "$053000000081 !05,@05P00000007A !05,@05PA00000080 !05,@05EA0 !05,$05501 !05,"
        "wait 1000,#050 >00000078,$057 !0500,@05DI !051000,wait 75,#050 >00000081,$057 !0500,@05DI !051001,"
        "wait 9,#050 >0000007A,$057 !0510,@05DI !051000,wait 8916,@05DI !051001,"
        // A maximum that is set below the count, and below the initial count.
        "$05300000007C !05,#050 >00000080,wait 1000,#050 >0000007C,$053000000010 !05,"
        "wait 1000,#050 >0000007A,$0560 !05,$057 !0500,$05500 !05,wait 1000,#050 >0000007A,$057 !0500",
        "%0505510600 !05,#050 >00000C8A,#052 ?05,wait 1000,#050 >00000AE6,%0505510604 !05,#050 >00000AED"};
    for (const char* script : scripts)
        EXPECT_EQ(Played(*MakeModule("8510", 5), script), script);
}

TEST(AnalogModules, TakeTheRangesAndFormatsOfTheirModel) {
    ExpectPlayed({{"8210", "%0505000600 !05,%0505060601 !05,%0505070600 ?05,%0505080602 !05,%0505160600 !05,"
                           "%0505170600 ?05,%0505160603 ?05,$052 !05160600"},
                  {"8220", "%0505070600 ?05,%0505080601 !05,%05050D0602 !05,%05050E0600 ?05,%0505080603 ?05"},
                  {"8230", "%0505200603 !05,$052 !05200603,%0505200601 ?05,%05052A0600 !05,%05052B0600 ?05"},
                  {"8250", "%05050E0600 ?05,%05050D0602 !05,%0505080604 ?05,%0505080642 !05,$052 !05080602"},
                  {"8260", "%0505160602 !05,%0505200600 ?05"},
                  {"8310", "%05052F0600 ?05,%0505320602 !05,%0505330600 ?05,%0505300603 ?05"},
                  {"8320", "%0505330600 !05,%0505300600 ?05,%0505330601 ?05"}});
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
    ExpectPlayed({{"8320", "$058 !4F0000,wait 2500,$058 !0A0000"}});

    module.ErrorOfPortA = 0.01;
    for (const auto& [heard, terminals] :
         {std::pair{"$013FF !01", 10.005}, std::pair{"#01B+01.000 >", 10.005},
          std::pair{"#01A+10.000 >", 10.01}, std::pair{"$013FE !01,$010 !01,#01A+10.000 >", 10.0},
          std::pair{"$01301 !01,$011 !01", 10.005}}) {
        EXPECT_EQ(Played(module, heard), heard);
        EXPECT_NEAR(module.TerminalsOfPortA(), terminals, 1e-9) << heard;
    }
}

TEST(Power, KeepsSettingsAndLosesWhatGoesOnWithIt) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"8210",
         "@05PL-1.0000 !05,@05PH-1.0000 !05,@05EA2 !05,$05M !058210,@05PL-2.0000 !05,@05PH+2.0000 !05",
         "@05RH !05+2.0000,@05DI !0520001"},
        {"8310", "#0520.000 >,$05305 !05", "$056 !0500.000,$058 !0500.000"},
        {"8320", "~05CP01 !05,#05A+01.000 >", "~05CR !0501,$056A !05+00.000"},
        {"8430", "~05CP10 !05,@05DO00FF !05", "~05CR !0510,$056 !00000000"},
        {"8460", "$05S00 !05,@05DO123456 !05", "$056 !0000,$058 !000000"},
        {"8510", "$053000000040 !05,@05P000000010 !05,$0560 !05,$05501 !05,wait 1000,$057 !0510",
         "#050 >00000010,$055 !0510,$057 !0500,wait 100,#050 >0000001C"}};
    for (const auto& [model, before, after] : cases) {
        const auto module = MakeModule(model, 5);
        EXPECT_EQ(Played(*module, before), before) << model;
        module->PowerDown();
        EXPECT_EQ(Reply(*module, "$05M"), Silence);
        module->PowerUp();
        EXPECT_EQ(Played(*module, after), after) << model;
    }
}

TEST(Power, BringsWhatWasSetInTheInitialisationStateIntoForce) {
    const auto module = MakeModule("8410", 0x16);
    module->PowerUp(PowerOn::Initialising);
    const std::string setting = "$162 (silence),%0005400740 !05,$002 !05400740,$052 (silence)";
    EXPECT_EQ(Played(*module, setting), setting);
    module->PowerUp();
    EXPECT_EQ(Played(*module, "$002 (silence),$052BB (silence)"), "$002 (silence),$052BB (silence)");
    EXPECT_EQ(Reply(*module, "$052BB", 19200), "!05400740B5");
}

} // namespace
} // namespace kavro
