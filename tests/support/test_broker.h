#pragma once

#include "support/tcp_peer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <csignal>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <mosquitto.h>
#include <sys/prctl.h>

namespace kavro {

inline constexpr int BrokerPatienceMs = 20000;

/// A password file of a broker as mosquitto_passwd writes it: the user meter has the password "secret".
inline constexpr const char* MeterPassword =
    "meter:$7$101$rcyG3Ybl43cQF7Wl$lz7Gbt+Ieo71yX0H4ZKdXqL1SlurpWfvuxthNkvG2aymf+E/"
    "RsXhg2sX4nrxR9GHRY1ha4XD7KX27DkKfQB3Zg==\n";

/// A program that ends with the test, however that ends.
inline void StartBound(QProcess& process, const QString& program, const QStringList& arguments) {
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.start(program, arguments);
}

/// A broker of its own on a free port of the loopback, in a folder of its own, which it remembers across an
/// orderly end.
class TestBroker {
public:
    /// `settings` are lines of its configuration, which may name the files, by name and content. It runs.
    explicit TestBroker(const std::string& settings = "allow_anonymous true\n",
                        const std::map<const char*, const char*>& files = {}) {
        Port = TcpPeer([](TcpPeer&) {}).Port; // free again at once
        process_.setWorkingDirectory(folder_.path());
        process_.setProcessChannelMode(QProcess::MergedChannels);
        for (const auto& [name, content] : files)
            Write(name, content);
        Write("broker.conf", "user root\npersistence true\nmax_queued_messages 0\nlistener " +
                                 std::to_string(Port) + " 127.0.0.1\n" + settings);
        Start();
    }
    ~TestBroker() { Kill(); }

    /// Runs when it returns.
    void Start() {
        const QString program = QStandardPaths::findExecutable("mosquitto", {"/usr/sbin", "/usr/bin"});
        StartBound(process_, program, {"-c", "broker.conf"});
        QByteArray said;
        while (!said.contains(" running\n")) {
            if (!process_.waitForReadyRead(BrokerPatienceMs))
                throw std::runtime_error("mosquitto does not run: " + said.toStdString());
            said += process_.readAll();
        }
    }

    /// An orderly end.
    void End() {
        process_.terminate();
        process_.waitForFinished(BrokerPatienceMs);
    }

    void Kill() {
        process_.kill();
        process_.waitForFinished(BrokerPatienceMs);
    }

    /// Its address, with a prefix.
    std::string Address(const char* scheme = "mqtt", const char* host = "127.0.0.1") const {
        return std::string(scheme) + "://" + host + ":" + std::to_string(Port) + "/plant";
    }

    std::uint16_t Port = 0;

private:
    void Write(const char* name, const std::string& content) const {
        QFile file(folder_.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content.c_str()) < 0)
            throw std::runtime_error("no room for a test");
    }

    QTemporaryDir folder_;
    QProcess process_;
};

/// Another client, who hears what is published, also while the broker was away.
class TestSubscriber {
public:
    explicit TestSubscriber(const TestBroker& broker, const char* name = "subscriber",
                            const char* user = nullptr, const char* password = nullptr)
        : broker_(broker) {
        mosquitto_lib_init();
        client_ = mosquitto_new(name, false, this);
        mosquitto_message_callback_set(
            client_, [](mosquitto*, void* object, const mosquitto_message* message) {
                static_cast<TestSubscriber*>(object)->Heard.emplace_back(
                    message->topic, std::string(static_cast<const char*>(message->payload),
                                                static_cast<std::size_t>(message->payloadlen)));
            });
        mosquitto_subscribe_callback_set(client_, [](mosquitto*, void* object, int, int, const int*) {
            static_cast<TestSubscriber*>(object)->subscribed_ = true;
        });
        mosquitto_username_pw_set(client_, user, password);
        Connect();
    }
    ~TestSubscriber() { mosquitto_destroy(client_); }
    TestSubscriber(const TestSubscriber&) = delete;
    TestSubscriber& operator=(const TestSubscriber&) = delete;

    void Connect() {
        mosquitto_connect(client_, "127.0.0.1", broker_.Port, 60);
        subscribed_ = false;
        mosquitto_subscribe(client_, nullptr, "plant/#", 1);
        Until([this] { return subscribed_; });
    }

    /// Whether it comes true of what is heard.
    bool Until(const std::function<bool()>& isTrue) {
        QElapsedTimer timer;
        timer.start();
        while (!isTrue())
            if (timer.elapsed() > BrokerPatienceMs || mosquitto_loop(client_, 50, 1) != MOSQ_ERR_SUCCESS)
                return false;
        return true;
    }

    /// Whether that is published from now on, or has been last.
    bool Hears(const std::string& topic, const std::string& payload) {
        return Until([&] { return Last(topic) == payload; });
    }

    /// What was published last.
    std::string Last(const std::string& topic) const {
        for (auto each = Heard.rbegin(); each != Heard.rend(); ++each)
            if (each->first == topic)
                return each->second;
        return {};
    }

    std::vector<std::pair<std::string, std::string>> Heard; ///< topic and content

private:
    const TestBroker& broker_;
    mosquitto* client_ = nullptr;
    bool subscribed_ = false;
};

} // namespace kavro
