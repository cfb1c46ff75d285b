// Time to the first painted window and memory of one program against another, on the X display of this run:
//
//     startup_bench EMPTY_WINDOW PROGRAM [ARGUMENT...]
//
// The display must be otherwise empty and its background black, as that of a fresh Xvfb -br is: a window
// counts from the moment on which a pixel of it is not black any more. Both programs are measured alike.

#include "bench/figures.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kavro {

namespace {

constexpr int Runs = 11;
constexpr double LimitSeconds = 20;
constexpr useconds_t PollUs = 500;
constexpr useconds_t SettleUs = 700'000; // what a program still loads after its first window counts as memory
constexpr int SmallestWindow = 100;      // pixels; nothing smaller is a main window

struct Cost {
    double WindowMs = 0;
    double MemoryMb = 0;
};

// The display's root window as a picture of what is on the screen.
class Screen {
public:
    Screen() : display_(XOpenDisplay(nullptr)) {
        if (display_ == nullptr)
            throw std::runtime_error("there is no X display; run it under Xvfb");
        // A window may go away between two requests; that is no reason to end.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    }
    ~Screen() { XCloseDisplay(display_); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // Whether a window of a useful size is there and painted.
    bool ShowsWindow() const {
        Window root = 0;
        Window parent = 0;
        Window* children = nullptr;
        unsigned count = 0;
        if (XQueryTree(display_, DefaultRootWindow(display_), &root, &parent, &children, &count) == 0)
            return false;
        bool found = false;
        for (unsigned i = 0; i < count && !found; ++i)
            found = IsPainted(children[i]);
        if (children != nullptr)
            XFree(children);
        return found;
    }

private:
    bool IsPainted(Window window) const {
        XWindowAttributes attributes{};
        if (XGetWindowAttributes(display_, window, &attributes) == 0 || attributes.map_state != IsViewable ||
            attributes.width < SmallestWindow || attributes.height < SmallestWindow)
            return false;
        XImage* const pixel = XGetImage(display_, window, 1, 1, 1, 1, AllPlanes, ZPixmap);
        if (pixel == nullptr)
            return false;
        constexpr unsigned long Colours = 0xffffff;
        const bool painted = (XGetPixel(pixel, 0, 0) & Colours) != 0;
        XDestroyImage(pixel);
        return painted;
    }

    Display* display_;
};

double MemoryMb(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmRSS:", 0) == 0)
            return std::atof(line.c_str() + 6) / 1024;
    return 0;
}

pid_t Start(char** command) {
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    if (posix_spawn(&process, command[0], &actions, nullptr, command, environ) != 0)
        throw std::runtime_error(std::string(command[0]) + " cannot be started");
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

void WaitFor(const Screen& screen, bool window) {
    const double limit = Seconds(CLOCK_MONOTONIC) + LimitSeconds;
    while (screen.ShowsWindow() != window) {
        if (Seconds(CLOCK_MONOTONIC) > limit)
            throw std::runtime_error(window ? "no window came" : "the display is not empty");
        usleep(PollUs);
    }
}

Cost Measure(const Screen& screen, char** command) {
    WaitFor(screen, false);
    Cost cost;
    const double start = Seconds(CLOCK_MONOTONIC);
    const pid_t process = Start(command);
    std::string failure;
    try {
        WaitFor(screen, true);
        cost.WindowMs = (Seconds(CLOCK_MONOTONIC) - start) * 1e3;
        usleep(SettleUs);
        cost.MemoryMb = MemoryMb(process);
    } catch (const std::runtime_error& error) {
        failure = error.what();
    }
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    if (!failure.empty())
        throw std::runtime_error(std::string(command[0]) + ": " + failure);
    return cost;
}

void Run(char** empty, char** program) {
    const Screen screen;
    Measure(screen, empty); // so that both find their libraries in memory
    Measure(screen, program);
    std::vector<double> emptyMs, emptyMb, programMs, programMb;
    for (int run = 0; run < Runs; ++run) {
        const Cost least = Measure(screen, empty);
        const Cost whole = Measure(screen, program);
        emptyMs.push_back(least.WindowMs);
        emptyMb.push_back(least.MemoryMb);
        programMs.push_back(whole.WindowMs);
        programMb.push_back(whole.MemoryMb);
    }
    std::printf("start: %d runs, medians\n", Runs);
    std::printf("  %-34s %10s %10s %8s %8s\n", "", "empty", "kavro", "ratio", "goal");
    std::printf("  %-34s %10.1f %10.1f %8.2f %8s\n", "first painted window, milliseconds", Median(emptyMs),
                Median(programMs), Median(programMs) / Median(emptyMs), "<= 2");
    std::printf("  %-34s %10.1f %10.1f %8.2f %8s\n", "resident memory, MiB", Median(emptyMb),
                Median(programMb), Median(programMb) / Median(emptyMb), "<= 2");
}

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: startup_bench EMPTY_WINDOW PROGRAM [ARGUMENT...]\n");
        return 2;
    }
    std::array<char*, 2> empty = {argv[1], nullptr};
    try {
        kavro::Run(empty.data(), argv + 2);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "startup_bench: %s\n", error.what());
        return 1;
    }
}
