#pragma once

#include "link/digital_channels.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace kavro {

/// Models of a kind have the same commands and dialogs; only their row of numbers differs.
enum class ModelKind : std::uint8_t {
    DigitalLines, ///< digital inputs and outputs
    PortLines,    ///< digital lines that change direction by ports
    AlarmInput,   ///< one analog input, alarm outputs
    MultiInput,   ///< several analog inputs
    SingleOutput, ///< one analog output
    PortOutputs,  ///< analog outputs A to D and digital inputs
    Counting,     ///< counter or frequency inputs
    Converting,   ///< communication converter
    Unknown,
};

/// The analog side of a model.
struct AnalogSide {
    std::int16_t Channels = 0;                   ///< of its inputs; 0 for outputs
    std::int16_t FirstRange = 0, LastRange = -1; ///< range codes; those without a name are not its own
    unsigned Formats = 0;                        ///< bit n: it has data format n
    bool ColdJunction = false;                   ///< measures the temperature at its terminals
    bool OpenStatus = false;                     ///< tells which inputs nothing is connected to
};

/// All that is known of a model beside its kind.
struct ModelRow {
    std::string_view Name; ///< "8250"
    ModelKind Kind;
    AnalogSide Analog = {};
    DigitalChannels Digital = {};
};

/// The known models, in the order of their names.
std::span<const ModelRow> KnownModelRows();

/// The row of a model text, found by its suffix (`ModelSuffix`): "8250  " and "8250A" are one model. That of
/// an unknown one is of the kind `Unknown` and has nothing.
const ModelRow& RowOfModel(std::string_view model);

} // namespace kavro
