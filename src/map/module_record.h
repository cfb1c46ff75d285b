#pragma once

#include "link/runtime_failure.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// Digital inputs and outputs, of digital I/O modules and of the 8320.
struct DigitalSettings {
    std::int16_t Polarity = 0; ///< bit 0: input inverted, bit 1: output inverted

    bool operator==(const DigitalSettings&) const = default;
};

/// Further settings of single-channel analog input modules.
struct AlarmInputSettings {
    std::int32_t AlarmState =
        0; ///< alarm mode, outputs and inputs as the module reports them, read as one number
    float SignedSetting = 0;      ///< 8240: number with sign of the "$..3" read
    std::int16_t CodeSetting = 0; ///< 8240: hexadecimal number of the "$..5" read

    bool operator==(const AlarmInputSettings&) const = default;
};

/// Settings of the counter / frequency module; arrays hold counter 0 and counter 1.
struct CounterSettings {
    std::int16_t GateTime = 0;                   ///< frequency gate time: 0 = 0.1 second, 1 = 1 second
    std::int16_t InputMode = 0;                  ///< 0 TTL, 1 photo isolated
    std::int16_t GateMode = 0;                   ///< 0 low, 1 high, 2 disabled
    std::array<std::int16_t, 2> CounterStatus{}; ///< 0 stop, 1 start
    std::array<double, 2> MaxValue{};            ///< maximum count
    std::array<double, 2> InitialValue{};        ///< initial count
    std::int16_t DigitalFilter = 0;              ///< 0 disabled, 1 enabled
    std::int16_t MinAtHigh = 0;                  ///< minimum input signal width at high level, microseconds
    std::int16_t MinAtLow = 0;                   ///< the same at low level
    std::int16_t TtlAtHigh = 0;                  ///< TTL high trigger level, tenths of a volt
    std::int16_t TtlAtLow = 0;                   ///< TTL low trigger level, tenths of a volt
    std::array<std::int16_t, 2> AlarmSetting{};  ///< 0 disabled, 1 enabled
    std::array<double, 2> AlarmValue{};          ///< alarm limit

    bool operator==(const CounterSettings&) const = default;
};

/// Further settings of communication converters.
struct ConverterSettings {
    std::int16_t SecondBaudCode = 0; ///< baud code of the converter's other side
    std::int32_t FormatWord = 0;     ///< the format word as the module reports it, 16 bits
    std::int16_t FormatBit13 = 0;    ///< bit 13 of the format word
    std::int16_t FormatBit8 = 0;     ///< bit 8 of the format word

    bool operator==(const ConverterSettings&) const = default;
};

/// What is known of one module.
struct ModuleRecord {
    std::int16_t Address = 0;     ///< 0 to 255
    std::string Model = "      "; ///< 6 characters as reported, padded with blanks: "8210  "
    float HighAlarm = 0;          ///< high alarm limit (single-channel analog input)
    float LowAlarm = 0;           ///< low alarm limit
    std::int16_t DataFormat = 0;  ///< 0 to 3; of a converter the data-bits code (data bits = code + 5)
    std::int16_t AlarmMode = 0;   ///< 0 disabled, 1 momentary, 2 latch
    std::int16_t BaudCode = 0;    ///< 0 to 7
    std::int16_t InputRange = 0;  ///< input-range code; of a counter module 80 = counter, 81 = frequency
    std::int16_t Checksum = 0;    ///< 1 = the module expects and sends checksums
    std::int16_t ConverterInterface = 0; ///< converter: non-zero = RS-485, zero = RS-422
    std::int16_t ConverterParity = 0;    ///< converter: 1 = odd, 0 or 2 = none, any other = even
    std::int16_t ConverterStopBits = 0;  ///< converter: stop bits = value + 1
    bool Complete = true;                ///< the search has read all that it asks such a module
    bool Answers = true;                 ///< it did when it was asked last
    std::vector<std::string> Unread{};   ///< commands, without address, that were not answered well: "@RL"

    DigitalSettings Digital{};
    AlarmInputSettings AlarmInput{};
    CounterSettings Counter{};
    ConverterSettings Converter{};

    bool operator==(const ModuleRecord&) const = default;
};

/// Whether two readings of a module tell the same set-up; alarms and inputs may have changed between them.
inline bool SameSetup(ModuleRecord left, const ModuleRecord& right) {
    left.AlarmInput.AlarmState = right.AlarmInput.AlarmState;
    left.Answers = right.Answers;
    return left == right;
}

/// The known modules: 256 entries; an entry's index is also its line in the main window's list.
class ModuleTable {
public:
    static constexpr int Size = 256;

    /// Entry 0 to 255. Throws `RuntimeFailure` for any other index.
    ModuleRecord& operator[](int index) { return entries_[Checked(index)]; }
    const ModuleRecord& operator[](int index) const { return entries_[Checked(index)]; }

private:
    static std::size_t Checked(int index) {
        if (index < 0 || index >= Size)
            throw RuntimeFailure("Index out of bounds: there is no module " + std::to_string(index) +
                                 " in the list.");
        return static_cast<std::size_t>(index);
    }

    std::array<ModuleRecord, Size> entries_{};
};

} // namespace kavro
