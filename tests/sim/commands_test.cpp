#include "sim/played.h"

#include "sim/digital_module.h"
#include "sim/module_factory.h"
#include "sim/port_module.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(Commands, ConfigureOrAreRefused) {
    const std::pair<const char*, const char*> cases[] = {
        // The checksum bit is ignored, another baud rate is refused.
        {"8410", "%0502400640 !02,$022 !02400600,$052 (silence),%0202400700 ?02,%0202410600 ?02,"
                 "%0202400601 ?02,%0202400680 ?02,%02024006 ?02,%02FF400600 !FF,$FF2 !FF400600"},
        {"8510", "%0505510604 !05,$052 !05510604,%0505520600 ?05,%0505500608 ?05,%0505500600 !05,"
                 "$052 !05500600"},
        {"8610", "%0507006600FF !07,$072 !07006600FF,%0707000600 ?07,%0707006700FF ?07,%0707016600FF ?07"},
        {"8999", "%0506000600 !06,%0606010600 ?06"}};
    for (const auto& [model, script] : cases)
        EXPECT_EQ(Played(*MakeModule(model, 5), script), script) << model;
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
    const std::string moving = "$056 !000000CF,wait 2500,$056 !0000008A";
    EXPECT_EQ(Played(*MakeModule("8440", 5), moving), moving);
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

} // namespace
} // namespace kavro
