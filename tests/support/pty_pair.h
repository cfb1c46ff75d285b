#pragma once

#include "link/runtime_failure.h"

#include <array>
#include <string>
#include <utility>

#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

namespace kavro {

/// A raw pseudo-terminal: tests play the modules and hand `Device` to a port.
class PtyPair {
public:
    PtyPair() {
        std::array<char, 64> name{};
        termios raw{};
        cfmakeraw(&raw);
        if (openpty(&master_, &slave_, name.data(), &raw, nullptr) != 0)
            throw RuntimeFailure("No pseudo-terminal can be opened. Mount /dev/pts to run this test.");
        Device = name.data();
    }
    ~PtyPair() { Unplug(); }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    /// Takes the device away, as pulling out the adapter does.
    void Unplug() {
        for (int* const end : {&slave_, &master_})
            if (*end >= 0)
                close(std::exchange(*end, -1));
    }

    /// Lets these characters arrive at the port.
    bool Send(const std::string& text) {
        return write(master_, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

    /// What the port has written, up to `size` characters; empty when nothing comes within a second.
    std::string Received(std::size_t size) {
        std::string text(size, '\0');
        pollfd wait = {master_, POLLIN, 0};
        const ssize_t got = poll(&wait, 1, 1000) == 1 ? read(master_, text.data(), size) : 0;
        text.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return text;
    }

    /// Baud constant (`B9600` and so on) that the port has set.
    speed_t Speed() const {
        termios settings{};
        tcgetattr(master_, &settings);
        return cfgetospeed(&settings);
    }

    std::string Device;

private:
    int master_ = -1;
    int slave_ = -1;
};

} // namespace kavro
