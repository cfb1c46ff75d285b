#include "config/alarm_input_config.h"

#include "link/codes.h"
#include "link/number_text.h"
#include "link/text.h"

#include <cmath>
#include <optional>

namespace kavro {

namespace {

struct AlarmLimit {
    const char* Control;
    const char* Name;
    const char* Code;
    float ModuleRecord::*Kept;
    std::string AlarmInputConfig::*Entered;
    const char* Failure;
};

constexpr AlarmLimit Limits[] = {
    {"LowAlarm", "low alarm limit", "PL", &ModuleRecord::LowAlarm, &AlarmInputConfig::LowAlarm,
     "Low alarm limit configuration failed."},
    {"HighAlarm", "high alarm limit", "PH", &ModuleRecord::HighAlarm, &AlarmInputConfig::HighAlarm,
     "High alarm limit configuration failed."},
};

std::string AlarmModeCode(std::int16_t mode) {
    return mode == 0 ? "DA" : "EA" + std::to_string(mode);
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

// Nothing when it is no number within the full scale of the range.
std::optional<double> LimitIn(std::string entered, std::int16_t range, const std::string& separator) {
    NormalizeDecimalPoint(entered, separator);
    const auto value = PlainNumber(entered);
    return value && Fits(*value, range) ? value : std::nullopt;
}

std::string RefusalText(const AlarmLimit& limit, std::int16_t range, const std::string& separator) {
    const std::string bound = ShownNumber(ShortestText(RangeFullScale(range)), separator);
    return "The " + std::string(limit.Name) + " must be a number from -" + bound + " to +" + bound + " " +
           Trim(RangeUnit(range, EngineeringUnits)) + ".";
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

    bool Limit(const AlarmLimit& limit, bool always) const {
        const double value =
            LimitIn(Config.*limit.Entered, Config.InputRange, Session.DecimalSeparator).value_or(0);
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
        config.*limit.Entered =
            ShownNumber(LimitText(record.*limit.Kept, record.InputRange), session.DecimalSeparator);
    }
    return config;
}

std::optional<RefusedEntry> RefusedAlarmSetting(const AlarmInputConfig& config,
                                                const std::string& separator) {
    if (auto refused = RefusedAddress(config.Link))
        return refused;
    if (RangeFullScale(config.InputRange) == 0)
        return RefusedEntry{"InputRange", "Select an input range."};
    for (const AlarmLimit& limit : Limits)
        if (!LimitIn(config.*limit.Entered, config.InputRange, separator))
            return RefusedEntry{limit.Control, RefusalText(limit, config.InputRange, separator)};
    return std::nullopt;
}

std::string AlarmOrderNote(const AlarmInputConfig& config, const std::string& separator) {
    const auto low = LimitIn(config.LowAlarm, config.InputRange, separator);
    const auto high = LimitIn(config.HighAlarm, config.InputRange, separator);
    return low && high && *low > *high ? "The low alarm limit is above the high one." : "";
}

ConfigOutcome ApplyAlarmInputConfig(Session& session, int index, const AlarmInputConfig& config,
                                    Messages& messages) {
    session.ConfigResult = 2;
    if (TellRefused(RefusedAlarmSetting(config, session.DecimalSeparator), messages))
        return ConfigOutcome::Refused;

    const AlarmInputWriter module{session, index, config, messages};
    const std::int16_t rangeBefore = module.Record.InputRange;
    bool complete = module.ModuleConfig();
    complete &= module.AlarmMode();
    const bool rangeChanged = module.Record.InputRange != rangeBefore;
    for (const AlarmLimit& limit : Limits)
        complete &= module.Limit(limit, rangeChanged);
    return EndConfig(session, complete, messages);
}

} // namespace kavro
