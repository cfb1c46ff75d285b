#include <QtGlobal>

#ifdef Q_OS_UNIX

#include "ports/host_lookup.h"

#include "link/runtime_failure.h"

#include <future>
#include <thread>

#include <sys/socket.h>

namespace kavro {

namespace {

struct Found {
    int Error = 0;
    HostAddresses Addresses{nullptr, freeaddrinfo};
};

Found Ask(const std::string& host, const std::string& port, int flags) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV | flags;
    addrinfo* list = nullptr;
    Found found;
    found.Error = getaddrinfo(host.c_str(), port.c_str(), &hints, &list);
    if (found.Error == 0)
        found.Addresses.reset(list);
    return found;
}

Found AskInThread(const std::string& host, const std::string& port, const Deadline& deadline) {
    std::packaged_task<Found()> task([host, port] { return Ask(host, port, 0); });
    std::future<Found> found = task.get_future();
    std::thread(std::move(task)).detach();
    if (found.wait_for(std::chrono::milliseconds(deadline.LeftMs())) != std::future_status::ready)
        throw RuntimeFailure("The name service did not answer for the host \"" + host +
                             "\" in time. Check the network, or write the numeric address of the host.");
    return found.get();
}

} // namespace

HostAddresses LookUpHost(const NetworkAddress& address, const Deadline& deadline) {
    const std::string port = std::to_string(address.Port);
    Found found = Ask(address.Host, port, AI_NUMERICHOST); // asks nobody
    if (found.Error == EAI_NONAME)
        found = AskInThread(address.Host, port, deadline);
    if (found.Error == EAI_AGAIN)
        throw RuntimeFailure(
            "The host \"" + address.Host +
            "\" cannot be looked up: the name service does not answer. Check the network, or "
            "write the numeric address of the host.");
    if (found.Error != 0)
        throw RuntimeFailure("There is no such host as \"" + address.Host +
                             "\". Check its name, or write its numeric address.");
    return std::move(found.Addresses);
}

} // namespace kavro

#endif
