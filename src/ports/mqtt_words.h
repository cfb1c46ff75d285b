#pragma once

#include <string>

namespace kavro {

/// Why a broker is not spoken to.
struct MqttFailure {
    bool Refused = false;      ///< until somebody changes something
    std::string Reason;        ///< in words
    bool OtherVersion = false; ///< an older version of MQTT may do
    bool NotReached = false;   ///< nobody was there
};

/// What a reason code of MQTT 5, or the return code of a connection of MQTT 3.1.1, means; `connected` when it
/// is told of what was sent, not of the connection.
MqttFailure FailureOfReason(int reason, bool connected);

/// What the library's messages on a TLS connection mean that did not come about.
MqttFailure FailureOfTls(const std::string& log);

} // namespace kavro
