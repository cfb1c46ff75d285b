#pragma once

#include <mosquitto.h>

namespace kavro {

/// The functions of libmosquitto that are used, loaded with the library when they are first asked for: it
/// brings OpenSSL with it, by which every start of a program that never speaks to a broker would be slower.
struct MqttLibrary {
    decltype(&mosquitto_lib_init) Begin = nullptr;
    decltype(&mosquitto_new) New = nullptr;
    decltype(&mosquitto_destroy) Destroy = nullptr;
    decltype(&mosquitto_int_option) SetNumber = nullptr;
    decltype(&mosquitto_will_set) SetWill = nullptr;
    decltype(&mosquitto_username_pw_set) SetUser = nullptr;
    decltype(&mosquitto_tls_set) SetTls = nullptr;
    decltype(&mosquitto_connect_v5_callback_set) OnConnect = nullptr;
    decltype(&mosquitto_disconnect_v5_callback_set) OnDisconnect = nullptr;
    decltype(&mosquitto_publish_v5_callback_set) OnPublished = nullptr;
    decltype(&mosquitto_log_callback_set) OnLog = nullptr;
    decltype(&mosquitto_connect_bind_async) Connect = nullptr;
    decltype(&mosquitto_disconnect) Disconnect = nullptr;
    decltype(&mosquitto_publish) Publish = nullptr;
    decltype(&mosquitto_loop) Loop = nullptr;
    decltype(&mosquitto_want_write) WantsToWrite = nullptr;
    decltype(&mosquitto_strerror) ErrorText = nullptr;
    decltype(&mosquitto_reason_string) ReasonText = nullptr;
    decltype(&mosquitto_connack_string) OldReasonText = nullptr;
};

/// The library. Throws `RuntimeFailure` when it is not installed. May be called from any thread.
const MqttLibrary& Mqtt();

} // namespace kavro
