#include "ports/preferences_file.h"

#include "link/text.h"
#include "map/search_times.h"
#include "ports/ini_text.h"
#include "ports/replace_file.h"

#include <QSettings>

namespace kavro {

namespace {

constexpr const char* FastSearchKey = "FastSearch";
constexpr const char* AnswerWithinKey = "AnswerWithin";
constexpr const char* LineFileKey = "LineFile";
constexpr const char* Yes = "true";
constexpr const char* No = "false";

std::string ValueOf(const QSettings& settings, const char* key) {
    return settings.value(key).toString().trimmed().toStdString();
}

} // namespace

Preferences ReadPreferences(const std::string& path) {
    const QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    Preferences preferences;
    preferences.FastSearch = ValueOf(settings, FastSearchKey) == Yes;
    const auto answer = CappedNumber(ValueOf(settings, AnswerWithinKey));
    if (answer && *answer >= ShortestAnswerWithinMs && *answer <= LongestAnswerWithinMs)
        preferences.AnswerWithin = static_cast<std::int16_t>(*answer);
    preferences.LineFile = settings.value(LineFileKey).toString().toStdString();
    return preferences;
}

void SavePreferences(const std::string& path, const Preferences& preferences) {
    ReplaceFile(path, WithIniValues(IniText(path, "What is remembered for the next start"),
                                    {{FastSearchKey, preferences.FastSearch ? Yes : No},
                                     {AnswerWithinKey, std::to_string(preferences.AnswerWithin)},
                                     {LineFileKey, preferences.LineFile}}));
}

} // namespace kavro
