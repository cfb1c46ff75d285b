#include "traffic/traffic_text.h"

#include "link/line.h"
#include "link/local_time.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "traffic/recording.h"

#include <ctime>
#include <vector>

namespace kavro {

namespace {

constexpr std::int64_t UsPerSecond = 1'000'000;
constexpr int UsPerMs = 1000;
constexpr const char* Arrow = " \u2192 ";
constexpr const char* StrayWords = "characters that nobody had asked for";
constexpr const char* CsvColumns =
    "time,port,baud,address,sent,received,first_ms,ms,outcome,asked,answered\r\n";

// Least widths of the columns in a text file; what stands last needs none.
constexpr std::array<std::size_t, 9> TextWidths = {23, 10, 9, 6, 14, 20, 7, 10, 0};

std::string LocalText(std::int64_t utc, const char* format) {
    const std::tm local = LocalTime(static_cast<std::time_t>(utc / UsPerSecond));
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), format, &local);
    return text.data() + ("." + PadLeft(std::to_string(utc % UsPerSecond / UsPerMs), 3, '0'));
}

// "+0.016"; less than nothing where the clock was put back.
std::string SinceText(const TrafficView& view, std::int64_t number) {
    if (number == view.Log.First())
        return {};
    const std::int64_t us = view.Log.Row(number).Utc - view.Log.Row(number - 1).Utc;
    const std::string text = FormatNumber(static_cast<double>(us) / UsPerSecond, 1, 3);
    return us < 0 ? text : "+" + text;
}

// In characters, not bytes: words and the locale's separator are UTF-8.
std::size_t Width(std::string_view text) {
    std::size_t width = 0;
    for (const char byte : text)
        width += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80 ? 1 : 0;
    return width;
}

std::string TextLine(const std::array<std::string, TrafficHeadings.size()>& columns) {
    std::string line;
    std::size_t end = 0; // where the columns so far should end; a text that was too long is made up for
    for (std::size_t i = 0; i < columns.size(); ++i) {
        line += columns[i];
        end += TextWidths[i] + 2;
        const std::size_t width = Width(line);
        if (i + 1 < columns.size())
            line.append(width + 2 <= end ? end - width : 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

} // namespace

std::string BytesText(std::string_view bytes, bool hex) {
    if (!hex)
        return VisibleText(bytes);
    constexpr const char* Digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (!text.empty())
            text += ' ';
        text += Digits[code >> 4U];
        text += Digits[code & 0xFU];
    }
    return text;
}

std::string TimeOfDay(std::int64_t utc) {
    return LocalText(utc, "%H:%M:%S");
}

std::string MillisecondsText(std::int64_t us) {
    return us < 0 ? "" : FormatNumber(static_cast<double>(us) / UsPerMs, 1, 1);
}

std::string AddressText(int address) {
    return std::to_string(address) + " (" + ToHex(address, 2) + "H)";
}

std::string WordsText(const TrafficRow& row, const KnownModules& known) {
    if (row.Outcome == TrafficOutcome::Stray)
        return StrayWords;
    const ExchangeWords words = WordsOf(row.Sent, row.Received, known);
    return words.Asked + (words.Asked.empty() || words.Answered.empty() ? "" : Arrow) + words.Answered;
}

std::string ColumnText(const TrafficView& view, std::int64_t number, TrafficColumn column) {
    const TrafficRow row = view.Log.Row(number);
    const auto shown = [&](std::string text) {
        return ShownNumber(std::move(text), view.Style.DecimalSeparator);
    };
    switch (column) {
    case TrafficColumn::Time:
        return TimeOfDay(row.Utc);
    case TrafficColumn::Since:
        return shown(SinceText(view, number));
    case TrafficColumn::Address: {
        const auto address = AddressIn(row.Sent);
        return address ? AddressText(*address) : "";
    }
    case TrafficColumn::Baud:
        return std::to_string(row.Baud);
    case TrafficColumn::Command:
        return BytesText(row.Sent, view.Style.Hex);
    case TrafficColumn::Reply:
        return BytesText(row.Received, view.Style.Hex);
    case TrafficColumn::ReplyTime:
        return shown(MillisecondsText(row.LastUs));
    case TrafficColumn::Outcome:
        return std::string(OutcomeWord(row, view.Known));
    case TrafficColumn::Words:
        break;
    }
    return WordsText(row, view.Known);
}

std::string TrafficTextHead() {
    std::array<std::string, TrafficHeadings.size()> headings;
    for (std::size_t i = 0; i < headings.size(); ++i)
        headings[i] = TrafficHeadings[i];
    return TextLine(headings);
}

std::string TrafficTextLine(const TrafficView& view, std::int64_t number) {
    std::array<std::string, TrafficHeadings.size()> columns;
    columns[0] = LocalText(view.Log.Row(number).Utc, "%Y-%m-%d %H:%M:%S");
    for (std::size_t i = 1; i < columns.size(); ++i)
        columns[i] = ColumnText(view, number, static_cast<TrafficColumn>(i));
    return TextLine(columns);
}

std::string TrafficCsvHead() {
    return CsvColumns;
}

std::string TrafficCsvLine(const TrafficView& view, std::int64_t number) {
    const TrafficRow row = view.Log.Row(number);
    const auto address = AddressIn(row.Sent);
    const ExchangeWords words =
        row.Sent.empty() ? ExchangeWords{} : WordsOf(row.Sent, row.Received, view.Known);
    const std::string fields[] = {UtcText(row.Utc),
                                  std::to_string(row.Port),
                                  std::to_string(row.Baud),
                                  address ? std::to_string(*address) : "",
                                  BytesText(row.Sent, false),
                                  BytesText(row.Received, false),
                                  MillisecondsText(row.FirstUs),
                                  MillisecondsText(row.LastUs),
                                  std::string(OutcomeWord(row, view.Known)),
                                  words.Asked,
                                  words.Answered};
    std::string line;
    for (const std::string& field : fields)
        line += (line.empty() ? "" : ",") + CsvField(field);
    return line + "\r\n";
}

} // namespace kavro
