#include "config/alarm_input_config.h"

#include "config/number_text.h"
#include "link/codes.h"
#include "link/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace kavro {

namespace {

struct AlarmLimit {
    const char* Name;
    const char* Code;
    float ModuleRecord::*Kept;
    std::string AlarmInputConfig::*Entered;
    const char* Failure;
};

constexpr AlarmLimit Limits[] = {
    {"low alarm limit", "PL", &ModuleRecord::LowAlarm, &AlarmInputConfig::LowAlarm,
     "Low alarm limit configuration failed."},
    {"high alarm limit", "PH", &ModuleRecord::HighAlarm, &AlarmInputConfig::HighAlarm,
     "High alarm limit configuration failed."},
};

std::string AlarmModeCode(std::int16_t mode) {
    return mode == 0 ? "DA" : "EA" + std::to_string(mode);
}

// The whole text as a number in digits, with sign and point.
std::optional<double> NumberIn(std::string text) {
    text = Trim(text);
    const bool sign = text.starts_with('+') || text.starts_with('-');
    const std::string digits = text.substr(sign ? 1 : 0);
    if (digits.find_first_not_of("0123456789.") != std::string::npos)
        return std::nullopt;
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc{} || rest != end)
        return std::nullopt;
    return text.starts_with('-') ? -value : value;
}

// A limit as it stands in commands and replies: sign and fixed digits.
std::string LimitText(double value, std::int16_t range) {
    return FormatReading(ShortestText(value), range);
}

std::string LimitText(float value, std::int16_t range) {
    return FormatReading(ShortestText(value), range);
}

bool Fits(double value, std::int16_t range) {
    return std::fabs(value) <= RangeFullScale(range);
}

/// The limits in the order of `Limits`. Throws `RuntimeFailure` for one that is not possible.
std::array<double, std::size(Limits)> LimitsIn(const AlarmInputConfig& config, const std::string& separator) {
    const double fullScale = RangeFullScale(config.InputRange);
    if (fullScale == 0)
        throw RuntimeFailure("Select an input range.");
    std::array<double, std::size(Limits)> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::string text = config.*Limits[i].Entered;
        NormalizeDecimalPoint(text, separator);
        const auto value = NumberIn(text);
        if (!value || !Fits(*value, config.InputRange))
            throw RuntimeFailure("The " + std::string(Limits[i].Name) + " must be a number from -" +
                                 ShortestText(fullScale) + " to +" + ShortestText(fullScale) + " " +
                                 Trim(RangeUnit(config.InputRange, EngineeringUnits)) + ".");
        values[i] = *value;
    }
    return values;
}

// One module whose settings are being written; every function is true when the module accepted, or when there
// was nothing to change.
struct AlarmInputWriter {
    kavro::Session& Session;
    int Index = 0;
    const AlarmInputConfig& Config;
    kavro::Messages& Messages;
    ModuleRecord& Record = Session.ModuleTable[Index];

    bool Note(bool accepted, const char* failure) const {
        return NoteStep(Session, accepted, failure, Messages);
    }

    bool ModuleConfig() const {
        const AnalogModuleConfig module{Config.Link, Config.InputRange, Config.DataFormat};
        return ChangeAnalogModuleConfig(Session, Index, module, Messages) != StepResult::Failed;
    }

    bool AlarmMode() const {
        if (Config.AlarmMode == Record.AlarmMode)
            return true;
        const bool accepted = WriteAcknowledged(Session, Index, '@', AlarmModeCode(Config.AlarmMode));
        if (accepted)
            Record.AlarmMode = Config.AlarmMode;
        return Note(accepted, "Alarm mode configuration failed.");
    }

    bool Limit(const AlarmLimit& limit, double value, bool always) const {
        // The module may have kept another range than the one that the limit was entered for.
        if (!Fits(value, Record.InputRange))
            return Note(false, limit.Failure);
        const std::string text = LimitText(value, Record.InputRange);
        if (!always && text == LimitText(Record.*limit.Kept, Record.InputRange))
            return true;
        const bool accepted = WriteAcknowledged(Session, Index, '@', limit.Code + text);
        if (accepted)
            Record.*limit.Kept = static_cast<float>(NumericValue(text));
        return Note(accepted, limit.Failure);
    }
};

} // namespace

AlarmInputConfig AlarmInputConfigOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    AlarmInputConfig config{
        LinkSettingsOf(record), record.InputRange, record.DataFormat, record.AlarmMode, {}, {}};
    for (const AlarmLimit& limit : Limits) {
        std::string text = LimitText(record.*limit.Kept, record.InputRange);
        if (const auto point = text.find('.'); point != std::string::npos)
            text.replace(point, 1, session.DecimalSeparator);
        config.*limit.Entered = text;
    }
    return config;
}

ConfigOutcome ApplyAlarmInputConfig(Session& session, int index, const AlarmInputConfig& config,
                                    Messages& messages) {
    session.ConfigResult = 2;
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    std::array<double, std::size(Limits)> limits{};
    if (!Guard(messages, [&] { limits = LimitsIn(config, session.DecimalSeparator); }))
        return ConfigOutcome::Refused;

    const AlarmInputWriter module{session, index, config, messages};
    const std::int16_t rangeBefore = module.Record.InputRange;
    bool complete = module.ModuleConfig();
    complete &= module.AlarmMode();
    const bool rangeChanged = module.Record.InputRange != rangeBefore;
    for (std::size_t i = 0; i < limits.size(); ++i)
        complete &= module.Limit(Limits[i], limits[i], rangeChanged);
    return EndConfig(session, complete, messages);
}

} // namespace kavro
