#include "map/list_line.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(ListLine, EveryFamilyAndFormat) {
    const struct {
        std::int16_t Address;
        const char* Model;
        std::int16_t DataFormat, BaudCode, InputRange;
        const char* Line;
        std::int16_t Parity = 0, StopBits = 0, Interface = 0;
    } cases[] = {{5, "8410  ", 0, 3, 0, "   5(05H)   8410      9600                 Digital I/O"},
                 {10, "8210  ", 0, 3, 5, "  10(0AH)   8210      9600        V        +/- 2.5V        "},
                 {100, "8220  ", 1, 0, 6, " 100(64H)   8220      1200        %        +/- 20mA        "},
                 {255, "8240  ", 2, 6, 0, " 255(FFH)   8240      115200      2's      +/- 15mV        "},
                 {0, "8230  ", 3, 7, 0x24, "   0(00H)   8230      57600       Ohms     Pt, +/- 100C    "},
                 {1, "8250  ", 0, 3, 14, "   1(01H)   8250      9600        C        T/C Type J      "},
                 {1, "8260  ", 0, 3, 42, "   1(01H)   8260      9600        ohms     Cu, 0~60 ohms   "},
                 {1, "8260  ", 0, 3, 7, "   1(01H)   8260      9600                             "},
                 {8, "8310  ", 0, 5, 0x30, "   8(08H)   8310      38400       mA       0 to 20mA       "},
                 {8, "8310  ", 1, 4, 0x31, "   8(08H)   8310      19200       %        4 to 20mA       "},
                 {8, "8320  ", 2, 4, 0x32, "   8(08H)   8320      19200       HEX      0 to 10V        "},
                 {8, "8320  ", 3, 4, 0x33, "   8(08H)   8320      19200       +/- 10V         "},
                 {9, "8510  ", 0, 3, 80, "   9(09H)   8510      9600                 Counter         "},
                 {9, "8510  ", 0, 3, 81, "   9(09H)   8510      9600                 Frequency       "},
                 {20, "8610  ", 3, 3, 0, "  20(14H)   8610      9600       n,8,1     RS-485", 0, 0, 1},
                 {20, "8620  ", 2, 3, 0, "  20(14H)   8620      9600       o,7,2     RS-422", 1, 1},
                 {20, "8620  ", 0, 3, 0, "  20(14H)   8620      9600       n,5,1     RS-422", 2},
                 {20, "8620  ", 1, 3, 0, "  20(14H)   8620      9600       e,6,1     RS-422", 3},
                 {24, "8999  ", 0, 3, 0, "  24(18H)   8999      9600                 Unknown Module"},
                 {24, "      ", 0, -3, 0, "  24(18H)             150                  Unknown Module"}};
    ScriptedSession test;
    for (const auto& row : cases) {
        test.Session.ModuleTable[1] = {.Address = row.Address,
                                       .Model = row.Model,
                                       .DataFormat = row.DataFormat,
                                       .BaudCode = row.BaudCode,
                                       .InputRange = row.InputRange,
                                       .ConverterInterface = row.Interface,
                                       .ConverterParity = row.Parity,
                                       .ConverterStopBits = row.StopBits};
        EXPECT_EQ(BuildListLine(test.Session, 1), row.Line);
    }
}

TEST(ListLine, MarksTheModuleInItsInitialisationState) {
    ScriptedSession test;
    test.Session.ModuleTable[2] = {.Address = 22, .Model = "8410  ", .BaudCode = 4};
    test.Session.ScanIndex = 2;
    EXPECT_EQ(BuildListLine(test.Session, 2), "* 22(16H)   8410      19200                Digital I/O");
    EXPECT_THROW(BuildListLine(test.Session, -1), RuntimeFailure);
    EXPECT_THROW(BuildListLine(test.Session, 256), RuntimeFailure);
}

} // namespace
} // namespace kavro
