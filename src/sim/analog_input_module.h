#pragma once

#include "sim/calibrated_input.h"

namespace kavro {

/// Analog input with several channels.
class AnalogInputModule : public CalibratedInput {
public:
    explicit AnalogInputModule(ModuleSettings settings);

    int Channels;         ///< number of channels
    unsigned EnabledMask; ///< bit n set: channel n is enabled
    unsigned OpenChannels =
        0; ///< 8260 only: bit n set: nothing is connected to channel n, it reads full scale

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;

private:
    std::string ReadChannel(const Request& request) const;
    std::string EnableChannels(const Request& request);
};

} // namespace kavro
