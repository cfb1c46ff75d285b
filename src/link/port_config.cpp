#include "link/port_config.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace kavro {

namespace {

constexpr std::int16_t HighestFilePort = 4;
constexpr std::int16_t InvalidFilePortStandIn = 2;
constexpr std::int16_t Baud9600Code = 3;
constexpr std::int16_t DefaultTimeoutMs = 100;
constexpr std::int16_t StartUpTimeoutFactor = 4; // the dialog's factor is 5; the difference is meant
constexpr std::int16_t DialogTimeoutFactor = 5;
constexpr std::int16_t HighestTimeoutMs = INT16_MAX / DialogTimeoutFactor;
constexpr const char* ParityLetters[] = {"n", "o", "e"};

// Items of a text file, separated by commas or line ends, blanks around them dropped, quotes around a text
// taken off.
class ItemReader {
public:
    explicit ItemReader(std::string text) : text_(std::move(text)) {}

    bool AtEnd() {
        SkipWhile([](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
        return at_ >= text_.size();
    }

    std::string Next(const char* what) {
        SkipWhile([](char c) { return c == ' ' || c == '\t'; });
        if (at_ >= text_.size())
            throw RuntimeFailure("Input past the end of COM.CFG: there is no " + std::string(what) +
                                 ". Choose the settings anew.");
        const bool quoted = text_[at_] == '"';
        const auto start = at_ + (quoted ? 1 : 0);
        const auto end = std::min(text_.find_first_of(quoted ? "\"" : ",\r\n", start), text_.size());
        std::string item = text_.substr(start, end - start);
        at_ = quoted ? std::min(text_.find_first_of(",\r\n", end), text_.size()) : end;
        SkipSeparator();
        return item;
    }

private:
    template <class Test>
    void SkipWhile(Test test) {
        while (at_ < text_.size() && test(text_[at_]))
            ++at_;
    }

    void SkipSeparator() {
        if (text_.compare(at_, 2, "\r\n") == 0)
            at_ += 2;
        else if (at_ < text_.size())
            ++at_;
    }

    std::string text_;
    std::size_t at_ = 0;
};

std::string ReadWholeFile(const std::string& path) {
    const auto filePath = std::filesystem::u8path(path);
    std::ifstream file(filePath, std::ios::binary);
    if (!file || std::filesystem::is_directory(filePath))
        throw RuntimeFailure("The settings file " + path + " cannot be read. Check its access rights.");
    return {std::istreambuf_iterator<char>(file), {}};
}

void StartWithoutFile(Line& line, std::int16_t port) {
    line.CurrentPort = port;
    PortSettingsRecord& settings = line.SettingsOf(port);
    settings = DefaultPortSettings();
    line.CommPort(port).PortOpen(true);
    line.ReplyTimeout = DefaultTimeoutMs;
    line.LongReplyTimeout = DefaultTimeoutMs * StartUpTimeoutFactor;
}

PortConfigFile ReadItems(Line& line, ItemReader& items, std::optional<std::int16_t> startPort) {
    PortConfigFile result;
    result.Timeout = WholeNumber16(items.Next("reply time-out"), "reply time-out");
    line.CurrentPort = WholeNumber16(items.Next("port number"), "port number");
    if (startPort)
        line.CurrentPort = *startPort;
    const std::string parity = items.Next("parity");
    const auto dataBits = WholeNumber16(items.Next("number of data bits"), "data bits");
    const auto stopBits = WholeNumber16(items.Next("number of stop bits"), "stop bits");
    // The bound of the file's ports does not hold for a port that was given.
    if (!startPort && !IsValidPortSetting(line.CurrentPort, 9600, parity, dataBits, stopBits)) {
        line.CurrentPort = InvalidFilePortStandIn;
        result.Ok = false;
    }
    PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    settings.Parity = 0; // whatever the file says
    settings.DataBits = 8;
    settings.StopBits = 0;
    bool anyBaud = false;
    while (!items.AtEnd()) {
        const std::int32_t baud = WholeNumber32(items.Next("baud rate"), "baud rate");
        if (!IsStandardBaud(baud))
            continue;
        settings.BaudEnabled[static_cast<std::size_t>(CodeFromBaud(baud))] = 1;
        anyBaud = true;
    }
    if (!anyBaud) {
        settings.BaudEnabled[Baud9600Code] = 1;
        result.Ok = false;
    }
    return result;
}

// Not of wrong content, nor one whose long time-out overflows.
bool HasTimeout(const PortConfigFile& file) {
    const int longTimeout = StartUpTimeoutFactor * file.Timeout;
    return file.Ok && longTimeout >= INT16_MIN && longTimeout <= INT16_MAX;
}

void StartWithFile(Line& line, const std::string& path, std::optional<std::int16_t> startPort,
                   Messages& messages) {
    const PortConfigFile file = LoadPortConfig(line, path, startPort);
    if (HasTimeout(file))
        line.FileTimeout = file.Timeout;
    line.CommPort(line.CurrentPort).PortOpen(true); // also when the content is wrong
    line.FileTimeout.reset();
    if (ApplyFileTimeouts(line, file))
        return;
    // The message names COM2 and 9600 in every case, though only an invalid port number moves the port to 2
    // and the accepted baud rates stay enabled.
    messages.Show("COM config file content error. Use default setting: COM2, baud rate 9600");
}

bool IsPort(int port) {
    return port >= 1 && port <= PortTotal; // COM.CFG can leave 0 behind
}

std::int16_t LowestBaudCode(const std::array<std::int16_t, 8>& enabled) {
    const auto found = std::find(enabled.begin(), enabled.end(), 1);
    return static_cast<std::int16_t>(found - enabled.begin()); // 8 when there is none: applied as 9600
}

bool SearchesAtAll(const PortSettingsRecord& settings) {
    return std::ranges::find(settings.BaudEnabled, 1) != settings.BaudEnabled.end();
}

// The dialog has to offer something that works where a damaged file has set nothing.
void CompleteSettings(Line& line) {
    if (!IsPort(line.CurrentPort))
        return;
    PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    if (settings.DataBits == 0)
        settings.DataBits = DefaultPortSettings().DataBits;
    if (!SearchesAtAll(settings))
        settings.BaudEnabled = DefaultPortSettings().BaudEnabled;
}

std::int16_t NumberUpTo(std::int16_t highest, const std::string& text, const std::string& message) {
    const auto number = CappedNumber(Trim(text));
    if (!number || *number > highest)
        throw RuntimeFailure(message);
    return static_cast<std::int16_t>(*number);
}

// Puts the port back into use that was before a change failed half-way, and into the state it was in.
void RestorePort(Line& line, std::int16_t oldPort, bool wasOpen) {
    const std::int16_t failedPort = line.CurrentPort;
    line.CurrentPort = oldPort;
    try {
        if (failedPort != oldPort || !wasOpen)
            line.CommPort(failedPort).PortOpen(false);
        if (wasOpen)
            line.CommPort(oldPort).PortOpen(true);
    } catch (const RuntimeFailure&) {
        // The failure that led here is the one to tell.
    }
}

void ApplyChoice(Line& line, PortChoice& choice, Messages& messages) {
    // Numbers first: one that cannot be read leaves everything as it was.
    const std::int16_t dataBits = DataBitsIn(choice.DataBits);
    const std::int16_t timeout = TimeoutIn(choice.Timeout);
    const std::int16_t accepted = std::max(timeout, DefaultTimeoutMs);

    const std::int16_t oldPort = line.CurrentPort;
    SerialPort& port = line.CommPort(choice.Port);
    if (choice.Port != oldPort) {
        line.CurrentPort = choice.Port;
        port.PortOpen(true);
        if (IsPort(oldPort))
            line.CommPort(oldPort).PortOpen(false);
    } else {
        port.PortOpen(true); // a port that failed, or could not be opened at start, is tried again
    }
    PortSettingsRecord& settings = line.SettingsOf(choice.Port);
    settings.Parity = choice.Parity;
    std::copy(choice.BaudEnabled.begin(), choice.BaudEnabled.end(), settings.BaudEnabled.begin());
    settings.DataBits = dataBits;
    settings.StopBits = choice.StopBits;
    line.SetPortBaud(choice.Port, LowestBaudCode(choice.BaudEnabled), settings.Parity, settings.DataBits,
                     settings.StopBits);
    if (timeout < DefaultTimeoutMs) {
        messages.Show("TimeOut Value must greater than or equal to 100.");
        choice.Timeout = std::to_string(DefaultTimeoutMs);
    }
    line.FileTimeout.reset();
    line.ReplyTimeout = accepted;
    line.LongReplyTimeout = static_cast<std::int16_t>(DialogTimeoutFactor * accepted);
}

} // namespace

PortConfigFile LoadPortConfig(Line& line, const std::string& configFilePath,
                              std::optional<std::int16_t> startPort) {
    ItemReader items(ReadWholeFile(configFilePath));
    return ReadItems(line, items, startPort);
}

bool ApplyFileTimeouts(Line& line, const PortConfigFile& file) {
    const bool usable = HasTimeout(file);
    line.ReplyTimeout = usable ? file.Timeout : DefaultTimeoutMs;
    line.LongReplyTimeout = static_cast<std::int16_t>(StartUpTimeoutFactor * line.ReplyTimeout);
    return usable;
}

void ReadPortConfig(Line& line, const std::string& configFilePath, std::optional<std::int16_t> startPort,
                    Messages& messages, const std::function<void()>& showComPortForm) {
    constexpr const char* Title = "Open or configure COM port error";
    try {
        std::error_code ignored; // a folder that cannot be read is told when the file is read
        const auto status = std::filesystem::status(std::filesystem::u8path(configFilePath), ignored);
        if (status.type() == std::filesystem::file_type::not_found)
            StartWithoutFile(line, startPort.value_or(1));
        else
            StartWithFile(line, configFilePath, startPort, messages);
    } catch (const RuntimeFailure& failure) {
        messages.Show("COM" + std::to_string(line.CurrentPort) + ": " + failure.what(), Title);
        messages.Show("The COM Port Setting dialog box will appear for you to configure and open a COM port.",
                      Title);
        CompleteSettings(line);
        showComPortForm();
    }
}

std::string PortConfigText(const Line& line) {
    const PortSettingsRecord& settings = line.SettingsOf(line.CurrentPort);
    std::ostringstream text;
    text << line.ChosenTimeout() << '\n' << line.CurrentPort << '\n';
    text << ParityLetters[settings.Parity == 1 || settings.Parity == 2 ? settings.Parity : 0] << ",8,1\n";
    for (std::int16_t code = 0; code < BaudCodeCount; ++code) // code order: 115200 before 57600
        if (settings.BaudEnabled[static_cast<std::size_t>(code)] == 1)
            text << BaudFromCode(code) << '\n';
    return text.str();
}

bool IsValidPortSetting(std::int16_t port, std::int32_t baud, const std::string& /*parity*/,
                        std::int16_t /*dataBits*/, std::int16_t /*stopBits*/) {
    return port >= 0 && port <= HighestFilePort && IsStandardBaud(baud);
}

PortSettingsRecord DefaultPortSettings() {
    PortSettingsRecord settings;
    settings.DataBits = 8;
    settings.BaudEnabled[Baud9600Code] = 1;
    return settings;
}

std::int16_t DataBitsIn(const std::string& text) {
    return NumberUpTo(INT16_MAX, text, "Data bits must be a number from 4 to 8.");
}

std::int16_t TimeoutIn(const std::string& text) {
    return NumberUpTo(HighestTimeoutMs, text,
                      "TimeOut must be a number from " + std::to_string(DefaultTimeoutMs) + " to " +
                          std::to_string(HighestTimeoutMs) + ", in milliseconds.");
}

void ApplyPortChoice(Line& line, PortChoice& choice, Messages& messages) {
    const std::int16_t oldPort = line.CurrentPort;
    const bool wasOpen = IsPort(oldPort) && line.CommPort(oldPort).PortOpen();
    try {
        ApplyChoice(line, choice, messages);
    } catch (const RuntimeFailure&) {
        RestorePort(line, oldPort, wasOpen);
        throw;
    }
}

} // namespace kavro
