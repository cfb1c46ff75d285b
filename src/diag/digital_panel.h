#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <string>

namespace kavro {

/// Logical states of the channels of a digital I/O module: bit n is channel n.
struct DigitalStates {
    unsigned Outputs = 0; ///< as commanded last
    unsigned Inputs = 0;

    bool operator==(const DigitalStates&) const = default;
};

/// Reads the states of entry `index` ("$AA6" -> "!OOOOIIII"), those of the channels that its model has. On
/// failure `states` stays as it is.
Answer ReadDigitalStates(Session& session, int index, DigitalStates& states);

/// Switches one output ("@AASOCCv"); also a line of an output port of the 8460, by its bit number.
Answer SwitchOutput(Session& session, int index, int channel, bool on);

/// Switches every output that the model has on or off ("@AADOOOOO").
Answer SwitchAllOutputs(Session& session, int index, bool on);

/// The polarity of the sides that the model has, in words: "Inputs inverted, outputs not inverted".
std::string PolarityText(const ModuleRecord& record);

} // namespace kavro
