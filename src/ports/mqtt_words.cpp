#include "ports/mqtt_words.h"

#include "ports/mqtt_library.h"

#include <algorithm>
#include <string_view>

namespace kavro {

namespace {

constexpr int FirstRefusal = 0x80; // of MQTT 5; the few codes of 3.1.1 are below

struct ReasonWords {
    int Reason, OldReason; // of MQTT 5, and of a connection of 3.1.1; 0: none
    bool Refused;
    const char* Words;
};

constexpr const char* NoRight =
    "the broker does not let this user publish these topics; give the right there, or choose another prefix";

constexpr ReasonWords Reasons[] = {
    {0x84, 1, true, "the broker speaks neither MQTT 5 nor 3.1.1"},
    {0x85, 2, true, "the broker does not take the client's name, which is the prefix and the line"},
    {0x86, 4, true, "the broker refuses the user or the password"},
    {0x87, 5, true, "the broker refuses the user or the password"},
    {0x8A, 0, true, "the broker has banned this user or computer"},
    {0x8C, 0, true, "the broker wants a way of logging in that is not known here"},
    {0x8E, 0, false,
     "another program sends as this line with this prefix; give each line a --line of its own"},
    {0x90, 0, true, NoRight},
    {0x9A, 0, true, "the broker retains no messages; let it"},
    {0x9B, 0, true, "the broker takes no messages of QoS 1; let it"},
};

struct TlsWords {
    std::string_view Piece; // of what OpenSSL and the library say
    bool Refused;
    const char* Words;
};

// The first one that is found counts.
constexpr TlsWords Tls[] = {
    {"host name verification", true,
     "the certificate of the broker is for another name than that of its address"},
    {"certificate verify failed", true,
     "the certificate of the broker is not trusted, or not valid at present; name those who are trusted with "
     "--mqtt-ca, and check the clock"},
    {"Unable to load CA", true, "the file of --mqtt-ca has no certificate in it"},
    {"Unable to load client certificate", true, "the file of --mqtt-cert has no certificate in it"},
    {"Unable to load client key", true,
     "the file of --mqtt-key has no key without a passphrase that belongs to the certificate"},
    {"alert protocol version", true, "the broker knows no version of TLS that is safe; update it"},
    {"alert handshake failure", true,
     "the broker does not agree to TLS; it wants a certificate that it trusts (--mqtt-cert, --mqtt-key), or "
     "encrypts in no way that is known here"},
    {"alert", true, "the broker wants a certificate that it trusts (--mqtt-cert, --mqtt-key)"},
    {"wrong version number", false, "there is no TLS at that port; mqtt:// is without"},
    {"unexpected eof", false, "the connection was lost while TLS began; maybe there is none at that port"},
};

} // namespace

MqttFailure FailureOfReason(int reason, bool connected) {
    const bool old = reason < FirstRefusal;
    const auto* const words =
        std::ranges::find(Reasons, reason, old ? &ReasonWords::OldReason : &ReasonWords::Reason);
    if (words == std::end(Reasons))
        return {.Reason = old ? Mqtt().OldReasonText(reason) : Mqtt().ReasonText(reason)};
    MqttFailure failure{words->Refused, words->Words};
    failure.OtherVersion = words == std::begin(Reasons);
    if (connected && words->Reason == 0x87)
        failure.Reason = NoRight;
    return failure;
}

MqttFailure FailureOfTls(const std::string& log) {
    const auto* const words = std::ranges::find_if(
        Tls, [&](const TlsWords& each) { return log.find(each.Piece) != std::string::npos; });
    if (words != std::end(Tls))
        return {.Refused = words->Refused, .Reason = words->Words};
    return {.Reason = "no TLS connection came about" + (log.empty() ? log : " (" + log + ")")};
}

} // namespace kavro
