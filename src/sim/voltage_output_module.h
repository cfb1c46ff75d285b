#pragma once

#include "sim/analog_module.h"

#include <array>
#include <optional>

namespace kavro {

/// Analog output with four outputs of -10 to +10 V, ports A to D, and seven digital inputs: 8320.
///
/// A trim moves the terminals of port A at once; the next output at port A and the next configuration drop it
/// unless it was stored.
class VoltageOutputModule : public AnalogModule {
public:
    using AnalogModule::AnalogModule;

    bool InputInverted = false;         ///< polarity of the digital inputs
    std::optional<unsigned> HeldInputs; ///< levels at the input terminals; nothing: they change over time
    double ErrorOfPortA = 0;            ///< at its terminals, V

    /// What really stands at the terminals of port A, V. On the wire nothing shows it.
    double TerminalsOfPortA() const { return outputs_[0] + ErrorOfPortA + trim_; }

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    void Forget() override;
    void KeepFormat(int bits) override;

private:
    std::string Drive(const Request& request);
    std::string ReadOutput(const Request& request) const;
    std::string ReadInputs(const Request& request) const;
    std::string SetPolarity(const Request& request);
    std::string Trim(const Request& request);
    std::string StoreTrim();

    std::array<double, 4> outputs_{}; // as commanded, V
    double trim_ = 0;                 // not stored, V
};

} // namespace kavro
