#include "sim/played.h"

namespace kavro {
namespace {

TEST(Power, KeepsSettingsAndLosesWhatGoesOnWithIt) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"8210",
         "@05PL-1.0000 !05,@05PH-1.0000 !05,@05EA2 !05,$05M !058210,@05PL-2.0000 !05,@05PH+2.0000 !05",
         "@05RH !05+2.0000,@05DI !0520001"},
        {"8220", "@05DO03 !05", "@05DI !0500001"},
        {"8250", "$055FE !05,%0505090602 !05", "$056 !05FE,$052 !05090602"},
        {"8310", "#0510.000 >,$05305 ?05,#0520.000 >,$05305 !05", "$056 !0500.000,$058 !0500.000"},
        {"8320", "~05CP01 !05,#05A+01.000 >", "~05CR !0501,$056A !05+00.000"},
        {"8430", "~05CP10 !05,@05DO00FF !05", "~05CR !0510,$056 !00000000"},
        {"8460", "$05S00 !05,@05DO123456 !05", "$056 !0000,$058 !000000"},
        {"8510", "$053000000040 !05,@05P000000010 !05,$0560 !05,$05501 !05,wait 1000,$057 !0510",
         "#050 >00000010,$055 !0510,$057 !0500,wait 100,#050 >0000001C"},
        {"8610", "%05070066801F !07", "$072 !070066801F"}};
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
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"8410", "$002 !16400600,%0005400740 !05,$002 !05400740,$052 (silence)", "!05400740B5"},
        {"8620", "$002 !1600668003,%000500674003 !05,$002 !0500674003", "!05006740031A"}};
    for (const auto& [model, script, configuration] : cases) {
        const auto module = MakeModule(model, 0x16);
        module->PowerUp(PowerOn::Initialising);
        EXPECT_EQ(Reply(*module, "$162"), Silence);
        EXPECT_EQ(Played(*module, script), script) << model;
        module->PowerUp();
        EXPECT_EQ(Reply(*module, "$002"), Silence);
        EXPECT_EQ(Reply(*module, "$052BB", 9600), Silence);
        EXPECT_EQ(Reply(*module, "$052BB", 19200), configuration) << model;
    }
}

} // namespace
} // namespace kavro
