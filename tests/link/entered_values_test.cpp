#include "link/entered_values.h"
#include "link/runtime_failure.h"

#include <gtest/gtest.h>

#include <utility>

namespace kavro {
namespace {

TEST(EnteredValues, AddressesAndRates) {
    for (const auto& [text, address] :
         {std::pair{"0", 0}, {"255", 255}, {"0x10", 16}, {"0XfF", 255}, {"10h", 16}})
        EXPECT_EQ(ParseAddress(text), address) << text;
    for (const char* text : {"", "-1", "FF", "0x", "H", "0x100", "100H", "1 ", "99999999999", "0x1H"})
        EXPECT_THROW(ParseAddress(text), RuntimeFailure) << text;
    EXPECT_EQ(ParseBaudList("57600, 1200,115200"), std::vector<std::int16_t>({7, 0, 6}));
    for (const char* text : {"", "9600,", ",9600", "9600;19200", "-9600"})
        EXPECT_THROW(ParseBaudList(text), RuntimeFailure) << text;
}

} // namespace
} // namespace kavro
