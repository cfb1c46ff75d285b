#include "ports/monitor_preferences_file.h"

#include "link/number_text.h"
#include "link/text.h"

#include <QSettings>

#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

namespace kavro {

namespace {

constexpr const char* IntervalKey = "MonitorInterval";
constexpr const char* SpanKey = "MonitorSpan";
constexpr const char* LeftOutKey = "MonitorLeftOut";
constexpr const char* TickedKey = "MonitorTicked";
constexpr const char* ThresholdsKey = "MonitorThresholds";
constexpr const char* NewFileKey = "MonitorNewFile";
constexpr std::string_view NewFileNames[] = {"", "hour", "day"}; // as `NewLogFile`
constexpr std::string_view Between = "..";
constexpr int HighestAddress = 255;

// Written by hand, a list may have commas, which make it several values.
std::vector<std::string> Words(const QSettings& settings, const char* key) {
    std::istringstream text(settings.value(key).toStringList().join(' ').toStdString());
    return {std::istream_iterator<std::string>(text), {}};
}

int Number(const QSettings& settings, const char* key, int least, int most, int usual) {
    const auto number = CappedNumber(settings.value(key).toString().trimmed().toStdString());
    return number && *number >= least && *number <= most ? static_cast<int>(*number) : usual;
}

std::optional<std::int16_t> Address(std::string_view text) {
    const auto number = CappedNumber(text);
    if (!number || *number > HighestAddress)
        return std::nullopt;
    return static_cast<std::int16_t>(*number);
}

// "5/0"
std::optional<ValueKey> Key(std::string_view text) {
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos || slash + 1 == text.size())
        return std::nullopt;
    const auto address = Address(text.substr(0, slash));
    return address ? std::optional(ValueKey{*address, std::string(text.substr(slash + 1))}) : std::nullopt;
}

std::string Text(const ValueKey& key) {
    return std::to_string(key.Address) + "/" + key.Channel;
}

// "1.5..3", of which either may be missing.
std::optional<Thresholds> Limits(std::string_view text) {
    const std::size_t between = text.find(Between);
    if (between == std::string_view::npos)
        return std::nullopt;
    const std::string low(text.substr(0, between));
    const std::string high(text.substr(between + Between.size()));
    const Thresholds limits = {PlainNumber(low), PlainNumber(high)};
    const bool read = limits.Low.has_value() != low.empty() && limits.High.has_value() != high.empty();
    const bool inOrder = !limits.Low || !limits.High || *limits.Low <= *limits.High;
    return read && inOrder && limits != Thresholds{} ? std::optional(limits) : std::nullopt;
}

std::string Text(const Thresholds& limits) {
    const auto text = [](const std::optional<double>& limit) {
        return limit ? ShortestText(*limit) : std::string();
    };
    return text(limits.Low) + std::string(Between) + text(limits.High);
}

NewLogFile NewFile(const QSettings& settings) {
    const std::string name = settings.value(NewFileKey).toString().trimmed().toStdString();
    const auto* const found = std::ranges::find(NewFileNames, name);
    return found == std::end(NewFileNames) ? NewLogFile::Never
                                           : static_cast<NewLogFile>(found - std::begin(NewFileNames));
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string UnlessUsual(int number, int usual) {
    return number == usual ? "" : std::to_string(number);
}

} // namespace

MonitorPreferences ReadMonitorPreferences(const QSettings& settings) {
    MonitorPreferences read;
    read.IntervalMs = Number(settings, IntervalKey, 0, LongestMonitorTickMs, MonitorTickMs);
    read.SpanMinutes = Number(settings, SpanKey, 1, LongestTrendMinutes, UsualTrendMinutes);
    read.NewFile = NewFile(settings);
    for (const std::string& word : Words(settings, LeftOutKey))
        if (const auto address = Address(word))
            read.LeftOut.insert(*address);
    for (const std::string& word : Words(settings, TickedKey))
        if (const auto key = Key(word); key && std::ranges::find(read.Ticked, *key) == read.Ticked.end())
            read.Ticked.push_back(*key);
    for (const std::string& word : Words(settings, ThresholdsKey)) {
        const std::size_t colon = std::min(word.find(':'), word.size() - 1);
        const auto key = Key(std::string_view(word).substr(0, colon));
        const auto limits = Limits(std::string_view(word).substr(colon + 1));
        if (key && limits)
            read.Thresholds[*key] = *limits;
    }
    return read;
}

std::map<std::string, std::string> MonitorValues(const MonitorPreferences& preferences) {
    std::vector<std::string> leftOut;
    std::vector<std::string> ticked;
    std::vector<std::string> thresholds;
    for (const std::int16_t address : preferences.LeftOut)
        leftOut.push_back(std::to_string(address));
    for (const ValueKey& key : preferences.Ticked)
        ticked.push_back(Text(key));
    for (const auto& [key, limits] : preferences.Thresholds)
        thresholds.push_back(Text(key) + ":" + Text(limits));
    return {{IntervalKey, UnlessUsual(preferences.IntervalMs, MonitorTickMs)},
            {SpanKey, UnlessUsual(preferences.SpanMinutes, UsualTrendMinutes)},
            {LeftOutKey, Joined(leftOut)},
            {TickedKey, Joined(ticked)},
            {ThresholdsKey, Joined(thresholds)},
            {NewFileKey, std::string(NewFileNames[static_cast<std::size_t>(preferences.NewFile)])}};
}

} // namespace kavro
