#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// Analog input with several channels: 8230 (3 channels), 8250 and 8260 (8 channels).
class AnalogInputModule : public SimulatedModule {
public:
    explicit AnalogInputModule(ModuleSettings settings);

    int Channels;         ///< number of channels
    unsigned EnabledMask; ///< bit n set: channel n is enabled

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    int FormatByte() const override { return ChecksumBit() | Settings.DataFormat; }

private:
    std::string ReadChannel(const Request& request) const;
};

} // namespace kavro
