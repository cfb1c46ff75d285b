#include "ports/mqtt_connection.h"

#include "ports/deadline.h"
#include "ports/destination.h"
#include "ports/host_lookup.h"
#include "ports/mqtt_library.h"

#include <cerrno>
#include <system_error>

#include <mqtt_protocol.h>

namespace kavro {

namespace {

constexpr int KeepAliveS = 30; // half of that more and the broker takes us for gone
constexpr int ConnectMs = 4000, FirstConnectMs = 3000, LookUpMs = 3000;
constexpr int AcknowledgeMs = 5000; // without any progress
constexpr int EndMs = 500;
constexpr int LoopMs = 100;
constexpr std::size_t MostUnacknowledged = 20;
constexpr int Qos = 1;
constexpr const char* NoWord =
    "the broker ends the connection without a word; maybe it wants TLS (mqtts://), or takes no more clients";
constexpr const char* NoCertificate =
    "the broker ends the connection when TLS has come about: it wants a certificate that it trusts "
    "(--mqtt-cert, --mqtt-key), or nobody is behind its TLS";
constexpr const char* AnyIpv4 = "0.0.0.0";

// A password for the key would be asked for on the terminal.
int NoPassphrase(char* /*text*/, int /*size*/, int /*writes*/, void* /*object*/) {
    return 0;
}

const char* TextOrNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

[[noreturn]] void Throw(const MqttFailure& failure) {
    const bool sentence = failure.Reason.ends_with('.');
    const std::string reason = failure.Reason.substr(0, failure.Reason.size() - (sentence ? 1 : 0));
    if (failure.Refused)
        throw DestinationRefused(reason);
    throw DestinationAway(reason);
}

// Whether a host has addresses of both kinds: then one may be of no use where the other one is.
bool HasBothKinds(const MqttChoice& choice) {
    bool ipv4 = false, ipv6 = false;
    try {
        const HostAddresses found =
            LookUpHost({NetworkKind::Raw, choice.Host, choice.Port}, Deadline(LookUpMs));
        for (const addrinfo* each = found.get(); each; each = each->ai_next)
            (each->ai_family == AF_INET ? ipv4 : ipv6) = true;
    } catch (const RuntimeFailure& failure) {
        Throw({.Reason = failure.what()});
    }
    return ipv4 && ipv6;
}

} // namespace

void MqttConnection::Free::operator()(mosquitto* handle) const {
    Mqtt().Destroy(handle);
}

MqttConnection::MqttConnection(const MqttChoice& choice, const std::string& client, const MqttMessage& will)
    : choice_(choice), client_(client), will_(will) {
    const bool both = HasBothKinds(choice);
    const char* bindTo = nullptr;
    auto failure = Open(MQTT_PROTOCOL_V5, bindTo, both ? FirstConnectMs : ConnectMs);
    if (failure && failure->NotReached && both)
        failure = Open(MQTT_PROTOCOL_V5, bindTo = AnyIpv4, ConnectMs);
    if (failure && failure->OtherVersion)
        failure = Open(MQTT_PROTOCOL_V311, bindTo, ConnectMs);
    if (failure)
        Throw(*failure);
}

MqttConnection::~MqttConnection() = default;

void MqttConnection::SetUp(int version) {
    const MqttLibrary& mqtt = Mqtt();
    handle_.reset(mqtt.New(client_.c_str(), true, this));
    mosquitto* const handle = handle_.get();
    if (!handle)
        throw DestinationRefused(mqtt.ErrorText(errno == ENOMEM ? MOSQ_ERR_NOMEM : MOSQ_ERR_INVAL));
    Listen();
    Check(mqtt.SetNumber(handle, MOSQ_OPT_PROTOCOL_VERSION, version));
    Check(mqtt.SetNumber(handle, MOSQ_OPT_TCP_NODELAY, 1));
    const int will = mqtt.SetWill(handle, will_.Topic.c_str(), static_cast<int>(will_.Payload.size()),
                                  will_.Payload.data(), Qos, true);
    if (will == MOSQ_ERR_INVAL || will == MOSQ_ERR_MALFORMED_UTF8)
        throw DestinationRefused("the prefix cannot stand in a topic; leave out its unusual characters");
    Check(will);
    if (!choice_.User.empty())
        Check(mqtt.SetUser(handle, choice_.User.c_str(),
                           choice_.Password ? choice_.Password->c_str() : nullptr));
    if (!choice_.Tls)
        return;
    if (choice_.CaFile.empty())
        Check(mqtt.SetNumber(handle, MOSQ_OPT_TLS_USE_OS_CERTS, 1));
    Check(mqtt.SetTls(handle, TextOrNull(choice_.CaFile), choice_.CaFile.empty() ? "/etc/ssl/certs" : nullptr,
                      TextOrNull(choice_.CertFile), TextOrNull(choice_.KeyFile), NoPassphrase));
}

void MqttConnection::Listen() {
    const MqttLibrary& mqtt = Mqtt();
    mosquitto* const handle = handle_.get();
    mqtt.OnConnect(handle, [](mosquitto*, void* object, int reason, int, const mosquitto_property*) {
        auto& self = *static_cast<MqttConnection*>(object);
        self.connected_ = reason == 0;
        self.reason_ = reason;
    });
    mqtt.OnPublished(handle, [](mosquitto*, void* object, int, int reason, const mosquitto_property*) {
        auto& self = *static_cast<MqttConnection*>(object);
        if (reason >= MQTT_RC_UNSPECIFIED)
            self.reason_ = reason;
        else
            ++self.acknowledged_;
    });
    mqtt.OnDisconnect(handle, [](mosquitto*, void* object, int reason, const mosquitto_property*) {
        if (reason >= MQTT_RC_UNSPECIFIED) // the others are of the library
            static_cast<MqttConnection*>(object)->reason_ = reason;
    });
    mqtt.OnLog(handle, [](mosquitto*, void* object, int level, const char* text) {
        auto& log = static_cast<MqttConnection*>(object)->log_;
        if (level == MOSQ_LOG_ERR)
            log += (log.empty() ? "" : "; ") + std::string(text);
    });
}

// Nothing when the broker has let us in.
std::optional<MqttFailure> MqttConnection::Open(int version, const char* bindTo, int limitMs) {
    connected_ = false;
    reason_ = 0;
    log_.clear();
    SetUp(version);
    errno = 0;
    const Deadline limit(limitMs);
    int result = Mqtt().Connect(handle_.get(), choice_.Host.c_str(), choice_.Port, KeepAliveS, bindTo);
    while (result == MOSQ_ERR_SUCCESS && !connected_ && reason_ == 0 && !limit.Over())
        result = Mqtt().Loop(handle_.get(), LoopMs, 1);
    if (connected_)
        return std::nullopt;
    MqttFailure failure = result == MOSQ_ERR_SUCCESS && reason_ == 0
                              ? MqttFailure{.Reason = "there is no answer", .NotReached = true}
                              : FailureOf(result);
    if (result == MOSQ_ERR_CONN_LOST && reason_ == 0) {
        // The alert that would say so is lost when the broker closes with our first message unread.
        failure = choice_.Tls ? MqttFailure{.Refused = true, .Reason = NoCertificate}
                              : MqttFailure{.Reason = NoWord};
        failure.OtherVersion = true; // some brokers of old do not say so
    }
    return failure;
}

MqttFailure MqttConnection::FailureOf(int result) const {
    if (reason_ != 0)
        return FailureOfReason(reason_, connected_);
    if (choice_.Tls && result == MOSQ_ERR_TLS)
        return FailureOfTls(log_);
    if (choice_.Tls && result == MOSQ_ERR_ERRNO && errno == EPROTO)
        return FailureOfTls("alert");
    if (result == MOSQ_ERR_ERRNO && errno == 0)
        return {.Reason = "what answers there does not speak MQTT"};
    if (result == MOSQ_ERR_ERRNO)
        return {.Reason = std::generic_category().message(errno), .NotReached = !connected_};
    if (result == MOSQ_ERR_CONN_LOST || result == MOSQ_ERR_NO_CONN)
        return {.Reason = ConnectionLost};
    return {.Reason = Mqtt().ErrorText(result)};
}

void MqttConnection::Check(int result) const {
    if (result != MOSQ_ERR_SUCCESS || reason_ != 0)
        Throw(FailureOf(result));
}

void MqttConnection::Loop(int waitMs) {
    Check(Mqtt().Loop(handle_.get(), waitMs, 1));
}

void MqttConnection::Publish(const std::vector<MqttMessage>& messages) {
    Look(); // what the broker has said last tells more than a connection that is lost
    acknowledged_ = 0;
    std::size_t sent = 0;
    Deadline limit(AcknowledgeMs);
    while (acknowledged_ < messages.size()) {
        for (; sent < messages.size() && sent - acknowledged_ < MostUnacknowledged; ++sent) {
            const auto& [topic, payload] = messages[sent];
            Check(Mqtt().Publish(handle_.get(), nullptr, topic.c_str(), static_cast<int>(payload.size()),
                                 payload.data(), Qos, true));
        }
        const std::size_t before = acknowledged_;
        Loop(LoopMs);
        if (acknowledged_ != before)
            limit = Deadline(AcknowledgeMs);
        else if (limit.Over())
            throw DestinationAway("the broker acknowledges nothing");
    }
}

void MqttConnection::Look() {
    Loop(0);
}

void MqttConnection::End() {
    const Deadline limit(EndMs);
    int result = Mqtt().Disconnect(handle_.get());
    while (result == MOSQ_ERR_SUCCESS && Mqtt().WantsToWrite(handle_.get()) && !limit.Over())
        result = Mqtt().Loop(handle_.get(), LoopMs, 1);
}

} // namespace kavro
