#include "cli/mqtt_options.h"

#include "link/runtime_failure.h"

#include <QCommandLineParser>
#include <QFile>

#include <utility>

namespace kavro {

namespace {

constexpr const char* Outlet = "broker";
constexpr const char* PasswordVariable = "KAVRO_MQTT_PASSWORD";
constexpr qint64 LongestPassword = 65'535; // of MQTT
constexpr const char* OptionsOfBroker[] = {"mqtt-user", "mqtt-password-file", "mqtt-ca",
                                           "mqtt-cert", "mqtt-key",           "on-change"};
constexpr const char* OptionsOfTls[] = {"mqtt-ca", "mqtt-cert", "mqtt-key"};

std::string TextOf(const QCommandLineParser& parser, const char* option) {
    return parser.value(option).toStdString();
}

[[noreturn]] void Refuse(const char* option, const std::string& why) {
    throw RuntimeFailure("--" + std::string(option) + " " + why);
}

void Open(QFile& file, const char* option) {
    if (!file.open(QIODevice::ReadOnly))
        Refuse(option, "names a file that cannot be read: " + file.fileName().toStdString() + ": " +
                           file.errorString().toStdString() + ".");
}

// The path of a file that can be read; empty without the option.
std::string FileOf(const QCommandLineParser& parser, const char* option) {
    if (!parser.isSet(option))
        return {};
    QFile file(parser.value(option));
    Open(file, option);
    return file.fileName().toStdString();
}

// The first line of the file.
std::string PasswordIn(const QString& path) {
    constexpr const char* option = "mqtt-password-file";
    QFile file(path);
    Open(file, option);
    QByteArray line = file.readLine(LongestPassword + 3);
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    if (line.isEmpty() || line.size() > LongestPassword || line.contains('\0'))
        Refuse(option, "needs a file whose first line is the password: " + path.toStdString() + ".");
    return line.toStdString();
}

std::optional<std::string> Password(const QCommandLineParser& parser) {
    if (parser.isSet("mqtt-password-file"))
        return PasswordIn(parser.value("mqtt-password-file"));
    if (qEnvironmentVariableIsEmpty(PasswordVariable))
        return std::nullopt;
    return qgetenv(PasswordVariable).toStdString();
}

void ReadLogin(const QCommandLineParser& parser, MqttChoice& broker) {
    broker.User = TextOf(parser, "mqtt-user");
    broker.Password = Password(parser);
    if (broker.User.empty() && (parser.isSet("mqtt-user") || broker.Password))
        throw RuntimeFailure("A user of the broker needs a name. Give --mqtt-user NAME, or no password.");
}

void ReadTls(const QCommandLineParser& parser, MqttChoice& broker) {
    if (!broker.Tls)
        for (const char* option : OptionsOfTls)
            if (parser.isSet(option))
                Refuse(option,
                       "is for a connection with TLS. Begin the address with mqtts://, or leave it out.");
    broker.CaFile = FileOf(parser, "mqtt-ca");
    broker.CertFile = FileOf(parser, "mqtt-cert");
    broker.KeyFile = FileOf(parser, "mqtt-key");
    if (broker.CertFile.empty() != broker.KeyFile.empty())
        throw RuntimeFailure("--mqtt-cert and --mqtt-key belong together. Give both, or none.");
}

} // namespace

void AddMqttOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"mqtt",
         "Publish every value to the broker at ADDRESS as well: mqtt://HOST[:PORT]/PREFIX, or mqtts:// with "
         "TLS. While it is away the values wait in the spool.",
         "ADDRESS"},
        {"mqtt-user", "With --mqtt: log in as NAME.", "NAME"},
        {"mqtt-password-file",
         "With --mqtt-user: the first line of FILE is the password. Without it the variable "
         "KAVRO_MQTT_PASSWORD has it.",
         "FILE"},
        {"mqtt-ca",
         "With mqtts://: trust the certificates in FILE (PEM); those that the system trusts unless given.",
         "FILE"},
        {"mqtt-cert", "With mqtts://: show the broker the certificate in FILE (PEM).", "FILE"},
        {"mqtt-key", "With --mqtt-cert: the key of the certificate is in FILE (PEM), without a passphrase.",
         "FILE"},
        {"on-change",
         "With --mqtt: publish a value when it differs by more than BAND from the one before, when its state "
         "is another, or after SECONDS. Every value is published unless given.",
         "BAND[,SECONDS]"},
    });
}

std::optional<BrokerChoice> ReadMqttOptions(const QCommandLineParser& parser) {
    if (!parser.isSet("mqtt")) {
        for (const char* option : OptionsOfBroker)
            if (parser.isSet(option))
                Refuse(option, "is for a broker. Give --mqtt as well, or leave it out.");
        return std::nullopt;
    }
    if (parser.values("mqtt").size() > 1)
        Refuse("mqtt", "can be given once. Run a monitor for each broker.");
    BrokerChoice choice{.Broker = ParseMqttAddress(TextOf(parser, "mqtt")), .OnChange = {}};
    ReadTls(parser, choice.Broker);
    ReadLogin(parser, choice.Broker);
    if (parser.isSet("on-change"))
        choice.OnChange = ParseOnChange(TextOf(parser, "on-change"));
    return choice;
}

FeedTarget BrokerTarget(const BrokerChoice& choice, const SpoolChoice& spool) {
    const MqttLine line{spool.Line, choice.OnChange, choice.Descriptions};
    return {Outlet, [broker = choice.Broker, line](const std::string& /*spoolId*/) {
                return std::make_unique<MqttDestination>(broker, line);
            }};
}

} // namespace kavro
