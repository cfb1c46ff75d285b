#include "ports/preferences_file.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/search_times.h"
#include "ports/ini_text.h"
#include "ports/replace_file.h"

#include <QFile>
#include <QSettings>

namespace kavro {

namespace {

constexpr const char* FastSearchKey = "FastSearch";
constexpr const char* AnswerWithinKey = "AnswerWithin";
constexpr const char* Yes = "true";
constexpr const char* No = "false";

std::string ValueOf(const QSettings& settings, const char* key) {
    return settings.value(key).toString().trimmed().toStdString();
}

// Empty when there is no such file.
std::string TextOf(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw RuntimeFailure("The settings of the search cannot be saved: " + path + " cannot be read: " +
                             file.errorString().toStdString() + ". Check its access rights.");
    return file.readAll().toStdString();
}

} // namespace

Preferences ReadPreferences(const std::string& path) {
    const QSettings settings(QString::fromStdString(path), QSettings::IniFormat);
    Preferences preferences;
    preferences.FastSearch = ValueOf(settings, FastSearchKey) == Yes;
    const auto answer = CappedNumber(ValueOf(settings, AnswerWithinKey));
    if (answer && *answer >= ShortestAnswerWithinMs && *answer <= LongestAnswerWithinMs)
        preferences.AnswerWithin = static_cast<std::int16_t>(*answer);
    return preferences;
}

void SavePreferences(const std::string& path, const Preferences& preferences) {
    ReplaceFile(path,
                WithIniValues(TextOf(path), {{FastSearchKey, preferences.FastSearch ? Yes : No},
                                             {AnswerWithinKey, std::to_string(preferences.AnswerWithin)}}));
}

} // namespace kavro
