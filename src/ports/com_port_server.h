#pragma once

#include "ports/com_port_control.h"

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A server's side of COM Port Control: any rate that is asked for is taken and reported, the other settings
/// are those of the line, whatever is asked for.
class ComPortServer {
public:
    /// `baud`: the rate until a client sets another.
    explicit ComPortServer(int baud) : baud_(baud) {}

    /// What to send to a client first.
    std::string Begin();

    /// Characters for the line in `bytes`, appended to `data`.
    void Receive(std::string_view bytes, std::string& data);

    /// What to send in answer to what has been received; empty when there is nothing.
    std::string TakeAnswers();

    /// The rate that is set.
    int Baud() const { return baud_; }

private:
    void NoteCommand(const std::string& body);

    TelnetReader reader_;
    TelnetOffers offers_;
    std::vector<TelnetEvent> events_;
    std::string answers_;
    int baud_;
};

} // namespace kavro
