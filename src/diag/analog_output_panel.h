#pragma once

#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// Counts of a 12-bit output beyond the first.
inline constexpr int OutputCounts = 4095;

/// Where a bar stands: `Position` of `Total` steps from end to end. A bar of a voltage on both sides of 0
/// counts from its middle.
struct BarPosition {
    int Position = 0;
    int Total = 1;
};

/// The values that an analog output can have.
struct OutputBounds {
    double Low = 0, High = 0;
    std::string Unit{}; ///< "mA" or "V"
};

/// Those of the single output of this record, in the unit of its range whatever its data format is. `High` is
/// not above `Low` for a range that no such module has.
OutputBounds SingleOutputBounds(const ModuleRecord& record);

/// A value that was typed, with a decimal point. Nothing when it is no number within the bounds.
std::optional<double> ParseOutput(const std::string& text, const OutputBounds& bounds);

/// A value to its thousandth as a bar position, from `Low` or, of a range with both signs, from 0.
BarPosition BarOf(double value, const OutputBounds& bounds);

/// The value of a position.
double ValueAt(BarPosition bar, const OutputBounds& bounds);

/// The step in which the single output of this record is told and set, in the unit of its range.
double OutputResolution(const ModuleRecord& record);

/// An output as it is shown: "12.500", "-7.250", with the user's decimal separator.
std::string ShownOutput(float value, const std::string& separator);

/// Value of the single output with this range code when its bar stands there; in single precision.
float OutputValue(std::int16_t rangeCode, BarPosition bar);

/// Lower and upper end of the range, as they stand at the ends of the bar.
std::string LowRangeText(std::int16_t rangeCode);
std::string HighRangeText(std::int16_t rangeCode);

/// Command that sets the single output of the module at `address` (two hexadecimal digits): "#AA" and, by the
/// record's data format, "12.500", "+062.50" or "A00".
std::string OutputCommand(const std::string& address, const ModuleRecord& record, BarPosition bar);

/// What a module tells that an output stands at.
struct ToldOutput {
    std::string Value;    ///< "12.500"
    bool Outside = false; ///< of the output's range, as when the module was set to another than the list has
};

/// What is said behind such a value.
inline constexpr const char* OutsideText = ", outside the range of the list";

/// What the single output stands at, as entry `index` tells ("$AA6"), in the unit of its range whatever the
/// data format: "12.500". Nothing when it does not tell.
std::optional<ToldOutput> ReadSingleOutput(Session& session, int index);

/// What stands at the terminals of the single output as entry `index` tells ("$AA8"): "12.512". Nothing when
/// it does not tell.
std::optional<std::string> ReadTerminals(Session& session, int index);

/// Ports A to D of a module with four voltage outputs.
inline constexpr int OutputPorts = 4;

inline const OutputBounds PortBounds = {-10, 10, "V"};

/// Voltage of such a port, -10 to 10, when its bar stands there; in single precision.
float PortValue(BarPosition bar);

/// Command that sets port 0 to 3 to a voltage: "#02C-07.250".
std::string PortCommand(const std::string& address, int port, float value);

/// The voltage that port 0 to 3 was set to, as entry `index` tells ("$AA6p"): "+7.250". Nothing when it does
/// not tell.
std::optional<ToldOutput> ReadPort(Session& session, int index, int port);

/// Digital inputs of a module with four voltage outputs.
inline constexpr int OutputModuleInputs = 7;
inline constexpr unsigned AllModuleInputs = (1U << OutputModuleInputs) - 1;

/// Reads these inputs of entry `index` ("$AA8"): bit n for input n. Nothing unless a complete reply "!" of 7
/// characters comes.
std::optional<unsigned> ReadOutputModuleInputs(Session& session, int index);

} // namespace kavro
