#include "ports/mqtt_library.h"

#include "link/runtime_failure.h"

#include <QLibrary>

namespace kavro {

namespace {

constexpr const char* Name = "mosquitto";
constexpr int Version = 1; // of its binary interface

template <class Function>
void Take(QLibrary& library, Function& function, const char* name) {
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        throw RuntimeFailure("The library libmosquitto cannot be used: " +
                             library.errorString().toStdString() + ". Install the package libmosquitto1.");
}

MqttLibrary Loaded() {
    QLibrary library(Name, Version);
    MqttLibrary mqtt;
    Take(library, mqtt.Begin, "mosquitto_lib_init");
    Take(library, mqtt.New, "mosquitto_new");
    Take(library, mqtt.Destroy, "mosquitto_destroy");
    Take(library, mqtt.SetNumber, "mosquitto_int_option");
    Take(library, mqtt.SetWill, "mosquitto_will_set");
    Take(library, mqtt.SetUser, "mosquitto_username_pw_set");
    Take(library, mqtt.SetTls, "mosquitto_tls_set");
    Take(library, mqtt.OnConnect, "mosquitto_connect_v5_callback_set");
    Take(library, mqtt.OnDisconnect, "mosquitto_disconnect_v5_callback_set");
    Take(library, mqtt.OnPublished, "mosquitto_publish_v5_callback_set");
    Take(library, mqtt.OnLog, "mosquitto_log_callback_set");
    Take(library, mqtt.Connect, "mosquitto_connect_bind_async");
    Take(library, mqtt.Disconnect, "mosquitto_disconnect");
    Take(library, mqtt.Publish, "mosquitto_publish");
    Take(library, mqtt.Loop, "mosquitto_loop");
    Take(library, mqtt.WantsToWrite, "mosquitto_want_write");
    Take(library, mqtt.ErrorText, "mosquitto_strerror");
    Take(library, mqtt.ReasonText, "mosquitto_reason_string");
    Take(library, mqtt.OldReasonText, "mosquitto_connack_string");
    mqtt.Begin();
    return mqtt;
}

} // namespace

const MqttLibrary& Mqtt() {
    static const MqttLibrary library = Loaded(); // again after a failure
    return library;
}

} // namespace kavro
