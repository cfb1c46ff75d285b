#pragma once

namespace kavro {

/// Makes a TCP socket send at once and notice a peer that is gone without a word: by probes after 10 s of
/// silence, and when what was written is not acknowledged for 5 s. Not for Windows.
void SetSocketOptions(int socket);

} // namespace kavro
