#include "ports/recording_reader.h"

#include "link/runtime_failure.h"
#include "link/serial_port.h"
#include "ports/json_file.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace kavro {

namespace {

constexpr long long LargestFile = 1'000'000'000;
constexpr qint64 LongestLine = 1'000'000;
constexpr int HighestBaud = 4'000'000;
constexpr double LongestMs = 3'600'000;
constexpr char16_t HighestByte = 0xFF;
constexpr qsizetype SecondsLength = 19; // of "2026-03-02T14:05:09"
constexpr qsizetype MostDecimals = 6;

[[noreturn]] void Fail(const QString& description) {
    throw RuntimeFailure(description.toStdString());
}

// Reads one object; its failures name the key.
class ObjectReader {
public:
    explicit ObjectReader(const QJsonObject& object) : object_(object) {}

    bool Has(const char* key) const { return !Value(key).isUndefined(); }
    int Number(const char* key, int low, int high) const;
    std::int64_t Microseconds(const char* key) const;
    std::int64_t Time() const;
    QString Text(const char* key) const;
    std::string Bytes(const char* key) const;
    bool Flag(const char* key) const;

private:
    QJsonValue Value(const char* key) const { return object_[QLatin1String(key)]; }
    [[noreturn]] static void MustBe(const char* key, const QString& what) {
        Fail(QString("\"%1\" must be %2.").arg(key, what));
    }

    const QJsonObject& object_;
};

int ObjectReader::Number(const char* key, int low, int high) const {
    const int number = Value(key).toInt(low - 1); // also of a number that is not whole
    if (number < low || number > high)
        MustBe(key, QString("a whole number from %1 to %2").arg(low).arg(high));
    return number;
}

std::int64_t ObjectReader::Microseconds(const char* key) const {
    const double ms = Value(key).toDouble(-1);
    if (!(ms >= 0 && ms <= LongestMs))
        MustBe(key, QString("a number of milliseconds from 0 to %1").arg(LongestMs, 0, 'f', 0));
    return std::llround(ms * 1000);
}

// Up to six decimals, which QDateTime does not keep.
std::int64_t ObjectReader::Time() const {
    const QString text = Value("time").toString();
    const QString rest = text.mid(SecondsLength);
    const QString decimals = rest.mid(1).chopped(rest.size() > 1 ? 1 : 0);
    const bool digits = std::ranges::all_of(decimals, [](QChar c) { return c >= u'0' && c <= u'9'; });
    const bool fraction = rest.startsWith('.') && rest.endsWith('Z') && !decimals.isEmpty() && digits &&
                          decimals.size() <= MostDecimals;
    QDateTime seconds = QDateTime::fromString(text.left(SecondsLength), Qt::ISODate);
    seconds.setTimeSpec(Qt::UTC);
    if (!seconds.isValid() || (rest != "Z" && !fraction))
        MustBe("time", "a time in UTC such as 2026-03-02T14:05:09.120345Z");
    const int microseconds = fraction ? decimals.leftJustified(MostDecimals, '0').toInt() : 0;
    return seconds.toMSecsSinceEpoch() * 1000 + microseconds;
}

QString ObjectReader::Text(const char* key) const {
    if (!Value(key).isString())
        MustBe(key, "a text");
    return Value(key).toString();
}

std::string ObjectReader::Bytes(const char* key) const {
    const QString text = Text(key);
    if (std::ranges::any_of(text, [](QChar c) { return c.unicode() > HighestByte; }))
        MustBe(key, "a text of bytes: characters up to \\u00FF");
    return text.toLatin1().toStdString();
}

bool ObjectReader::Flag(const char* key) const {
    const QJsonValue value = Value(key);
    if (!value.isUndefined() && !value.isBool())
        MustBe(key, "true or false");
    return value.toBool();
}

// What is not even an object is no recording either.
RecordingHead ReadHead(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const ObjectReader reader(object);
    if (object[QLatin1String("format")].toString() != "kavro-recording")
        Fail("it is no recording: the first line must begin with " +
             QString::fromUtf8(RecordingStart.data(), RecordingStart.size()) + ".");
    if (reader.Number("version", 1, INT_MAX) > RecordingVersion)
        Fail(QString("it is of format version %1, and this program knows %2 at most. Update the program.")
                 .arg(reader.Number("version", 1, INT_MAX))
                 .arg(RecordingVersion));
    RecordingHead head;
    head.Utc = reader.Time();
    head.Port = static_cast<std::int16_t>(reader.Number("port", 1, PortTotal));
    head.Device = reader.Text("device").toStdString();
    return head;
}

TrafficOutcome ReadOutcome(const ObjectReader& reader) {
    const std::string name = reader.Text("outcome").toStdString();
    for (auto outcome = TrafficOutcome::Complete; outcome != TrafficOutcome::Stray;
         outcome = static_cast<TrafficOutcome>(static_cast<int>(outcome) + 1))
        if (OutcomeName(outcome) == name)
            return outcome;
    Fail("\"outcome\" must be complete, silent, incomplete, damaged or lost.");
}

void RequireLineEnd(const char* key, const std::string& bytes) {
    if (!bytes.ends_with('\r'))
        Fail(QString("\"%1\" must end with \\r, the end of its line.").arg(key));
}

LineTraffic ReadExchange(const ObjectReader& reader) {
    LineTraffic traffic;
    traffic.Sent = reader.Bytes("sent");
    RequireLineEnd("sent", traffic.Sent);
    traffic.Received = reader.Bytes("received");
    traffic.Outcome = ReadOutcome(reader);
    if (traffic.Outcome == TrafficOutcome::Complete || traffic.Outcome == TrafficOutcome::Damaged)
        RequireLineEnd("received", traffic.Received);
    if (reader.Has("first_ms") || reader.Has("ms")) {
        traffic.FirstUs = reader.Microseconds("first_ms");
        traffic.LastUs = reader.Microseconds("ms");
        if (traffic.LastUs < traffic.FirstUs)
            Fail("\"ms\" must not be less than \"first_ms\".");
    }
    traffic.Echo = reader.Flag("echo");
    return traffic;
}

LineTraffic ReadTraffic(const QJsonObject& object, std::int16_t port) {
    const ObjectReader reader(object);
    LineTraffic traffic;
    if (reader.Has("stray")) {
        traffic.Received = reader.Bytes("stray");
        traffic.Outcome = TrafficOutcome::Stray;
    } else {
        traffic = ReadExchange(reader);
    }
    traffic.Utc = reader.Time();
    traffic.Baud = reader.Number("baud", 1, HighestBaud);
    traffic.Port = port;
    return traffic;
}

QJsonObject ObjectIn(const QByteArray& line) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError)
        Fail(QString("it is not JSON at character %1: %2.").arg(error.offset + 1).arg(error.errorString()));
    if (!document.isObject())
        Fail("it must hold one object in braces.");
    return document.object();
}

// Whether a program that was killed may have left this as the only line.
bool MayBeBegun(const QByteArray& line) {
    const auto length = std::min(line.size(), static_cast<qsizetype>(RecordingStart.size()));
    return line.left(length) == QByteArray(RecordingStart.data(), length);
}

// The next line; nothing at the end, and of one that has none.
std::optional<QByteArray> NextLine(QFile& file, bool first) {
    QByteArray line = file.readLine(LongestLine + 1);
    if (line.endsWith('\n'))
        return line;
    if (line.size() >= LongestLine)
        Fail(QString("it is longer than %1 bytes, which no line of a recording is.").arg(LongestLine));
    if (file.error() != QFileDevice::NoError)
        Fail(file.errorString() + ".");
    if (first && !MayBeBegun(line))
        ReadHead(line); // says what is wrong with it
    return std::nullopt;
}

// A recording tells of the echo once: from there on what begins with its command has one.
void MarkEcho(LineTraffic& traffic, bool& told) {
    told = told || traffic.Echo;
    traffic.Echo = told && !traffic.Sent.empty() && traffic.Received.starts_with(traffic.Sent);
}

Recording ReadLines(QFile& file) {
    Recording recording;
    bool echo = false;
    long long number = 1;
    try {
        for (auto line = NextLine(file, true); line; line = NextLine(file, false)) {
            if (number == 1)
                recording.Head = ReadHead(*line);
            else
                MarkEcho(recording.Traffic.emplace_back(ReadTraffic(ObjectIn(*line), recording.Head.Port)),
                         echo);
            ++number;
        }
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("line " + std::to_string(number) + ": " + failure.what());
    }
    return recording;
}

} // namespace

Recording ReadRecording(const std::string& path) {
    try {
        QFile file(QString::fromStdString(path));
        OpenToRead(file, LargestFile);
        return ReadLines(file);
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("The recording \"" + path + "\" cannot be used: " + failure.what());
    }
}

} // namespace kavro
