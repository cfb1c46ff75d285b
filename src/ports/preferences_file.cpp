#include "ports/preferences_file.h"

#include "link/number_text.h"
#include "link/text.h"
#include "map/search_times.h"
#include "ports/ini_text.h"
#include "ports/monitor_preferences_file.h"
#include "ports/replace_file.h"

#include <QSettings>

namespace kavro {

namespace {

constexpr const char* FastSearchKey = "FastSearch";
constexpr const char* AnswerWithinKey = "AnswerWithin";
constexpr const char* AskBeforeDrivingKey = "AskBeforeDriving";
constexpr const char* LineFileKey = "LineFile";
constexpr const char* ToleranceKey = "RecordTolerance";
constexpr const char* Yes = "true";
constexpr const char* No = "false";

// The texts of the last record.
struct TextKey {
    const char* Key;
    std::string RecordPreferences::*Text;
};

constexpr TextKey RecordTexts[] = {{"RecordOperator", &RecordPreferences::Operator},
                                   {"RecordInstrument", &RecordPreferences::Instrument},
                                   {"RecordInstrumentDue", &RecordPreferences::InstrumentDue},
                                   {"RecordFolder", &RecordPreferences::Folder}};

std::string ValueOf(const QSettings& settings, const char* key) {
    return settings.value(key).toString().trimmed().toStdString();
}

RecordPreferences ReadRecordPreferences(const QSettings& settings) {
    RecordPreferences record;
    for (const auto& [key, text] : RecordTexts)
        record.*text = settings.value(key).toString().toStdString();
    const auto tolerance = PlainNumber(ValueOf(settings, ToleranceKey));
    if (tolerance && *tolerance > 0 && *tolerance <= LargestTolerancePercent)
        record.TolerancePercent = *tolerance;
    return record;
}

} // namespace

Preferences ReadPreferences(const std::string& path) {
    const QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    Preferences preferences;
    preferences.FastSearch = ValueOf(settings, FastSearchKey) == Yes;
    const auto answer = CappedNumber(ValueOf(settings, AnswerWithinKey));
    if (answer && *answer >= ShortestAnswerWithinMs && *answer <= LongestAnswerWithinMs)
        preferences.AnswerWithin = static_cast<std::int16_t>(*answer);
    preferences.AskBeforeDriving = ValueOf(settings, AskBeforeDrivingKey) == Yes;
    preferences.LineFile = settings.value(LineFileKey).toString().toStdString();
    preferences.Record = ReadRecordPreferences(settings);
    preferences.Monitor = ReadMonitorPreferences(settings);
    return preferences;
}

void SavePreferences(const std::string& path, const Preferences& preferences) {
    const RecordPreferences& record = preferences.Record;
    std::map<std::string, std::string> values = {
        {FastSearchKey, preferences.FastSearch ? Yes : No},
        {AnswerWithinKey, std::to_string(preferences.AnswerWithin)},
        {AskBeforeDrivingKey, preferences.AskBeforeDriving ? Yes : No},
        {LineFileKey, preferences.LineFile}};
    for (const auto& [key, text] : RecordTexts)
        values[key] = record.*text;
    const bool own = record.TolerancePercent != RecordPreferences().TolerancePercent;
    values[ToleranceKey] = own ? ShortestText(record.TolerancePercent) : "";
    values.merge(MonitorValues(preferences.Monitor));
    ReplaceFile(path, WithIniValues(IniText(path, "What is remembered for the next start"), values));
}

} // namespace kavro
