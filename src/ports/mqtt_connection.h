#pragma once

#include "ports/mqtt_choice.h"
#include "ports/mqtt_words.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct mosquitto;

namespace kavro {

/// A message that the broker keeps until the next one of its topic.
struct MqttMessage {
    std::string Topic, Payload;
};

/// What is said of a connection that ended without another reason.
inline constexpr const char* ConnectionLost = "the connection was lost";

/// A connection to a broker, used in one thread alone. It speaks MQTT 5, whose acknowledgements tell what the
/// broker refuses, and 3.1.1 with a broker that knows no other. Every call ends within some 15 s unless the
/// broker goes on to acknowledge; all throw `DestinationRefused` or `DestinationAway`, and the connection is
/// of no more use then.
class MqttConnection {
public:
    /// Connects. The broker takes any other connection of that `client` for gone, and publishes the `will`
    /// when this one ends without `End`.
    MqttConnection(const MqttChoice& choice, const std::string& client, const MqttMessage& will);
    ~MqttConnection();
    MqttConnection(const MqttConnection&) = delete;
    MqttConnection& operator=(const MqttConnection&) = delete;

    /// Publishes the messages in order, with QoS 1 and retained, a few at a time; the broker has them all
    /// when it returns.
    void Publish(const std::vector<MqttMessage>& messages);

    /// Looks whether the connection stands, and shows the broker that it does. Due every 10 s at least.
    void Look();

    /// Ends the connection in good order; the will is not published. Does not throw.
    void End();

private:
    struct Free {
        void operator()(mosquitto* handle) const;
    };

    std::optional<MqttFailure> Open(int version, const char* bindTo, int limitMs);
    void SetUp(int version);
    void Listen();
    void Loop(int waitMs);
    void Check(int result) const;
    MqttFailure FailureOf(int result) const;

    const MqttChoice& choice_;
    const std::string client_;
    const MqttMessage will_;
    std::unique_ptr<mosquitto, Free> handle_;
    bool connected_ = false;
    std::size_t acknowledged_ = 0; // of the messages of a call
    int reason_ = 0;               // that the broker gave for a refusal or an end
    std::string log_;              // what the library said of failures
};

} // namespace kavro
