#pragma once

#include <unistd.h>

namespace kavro {

/// A file descriptor that is closed at the end. Not for Windows.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0)
            close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    operator int() const { return number_; }

private:
    int number_;
};

} // namespace kavro
