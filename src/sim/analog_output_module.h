#pragma once

#include "sim/analog_module.h"

#include <optional>

namespace kavro {

/// Analog output with one output: 8310. Type code 30 (hexadecimal) is 0 to 20 mA, 31 is 4 to 20 mA, 32 is
/// 0 to 10 V.
///
/// The current at the terminals is off by the errors of two points and by what lies on the line through them;
/// a voltage is exact. A trim moves the terminals at once, but only while the module stands at one of the
/// points, and only storing it there changes the point's error: the next output and the next configuration
/// drop a trim that was not stored, so that a step forgotten in a calibration shows.
class AnalogOutputModule : public AnalogModule {
public:
    using AnalogModule::AnalogModule;

    double Error4mA = 0, Error20mA = 0; ///< errors at 4 mA and at 20 mA, mA

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    void Forget() override { output_ = trim_ = 0; }
    void KeepFormat(int bits) override;

private:
    std::optional<double> FromData(std::string_view data) const;
    std::string DataText(double value) const;
    double LastOutput() const;
    double AtTerminals() const;
    bool StandsAt(double current) const;
    std::string Drive(const Request& request);
    std::string Trim(const Request& request);
    std::string Store(double current, double& error);

    double output_ = 0; // as commanded, mA or V
    double trim_ = 0;   // not stored, mA
};

} // namespace kavro
