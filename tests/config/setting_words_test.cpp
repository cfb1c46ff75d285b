#include "config/setting_words.h"

#include "config/setting_changes.h"

#include <gtest/gtest.h>

#include <set>

namespace kavro {
namespace {

TEST(SettingWords, EverySettingHasWordsOfItsOwn) {
    std::set<std::string> words;
    for (const std::string& name : SettingNames())
        EXPECT_TRUE(words.insert(SettingInWords(name, "8210")).second) << name;
    EXPECT_FALSE(words.contains(""));
}

TEST(SettingWords, ValuesHaveTheirUnits) {
    NamedConfig config = BlankConfig("8210");
    FindSetting(config, "range")->Take("08");
    FindSetting(config, "low-alarm")->Take("-2.5");
    EXPECT_EQ(ValueInWords(config, *FindSetting(config, "range")), "+/- 10V (code 08)");
    EXPECT_EQ(ValueInWords(config, *FindSetting(config, "low-alarm")), "-2.5 V");
    FindSetting(config, "range")->Told = false;
    EXPECT_EQ(ValueInWords(config, *FindSetting(config, "low-alarm")), "-2.5");
}

} // namespace
} // namespace kavro
