#pragma once

#include "link/network_address.h"
#include "ports/deadline.h"

#include <memory>

#include <netdb.h>

namespace kavro {

/// Socket addresses of a host, freed at the end.
using HostAddresses = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

/// Finds the socket addresses of a host. Asking the name service cannot be broken off, so a thread of its own
/// does; one that gets no answer in time is left behind and ends by itself. Throws `RuntimeFailure` when
/// there is no such host, or no answer by the deadline. Not for Windows.
HostAddresses LookUpHost(const NetworkAddress& address, const Deadline& deadline);

} // namespace kavro
