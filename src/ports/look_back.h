#pragma once

#include "monitor/trend_history.h"
#include "ports/caller_loop.h"
#include "ports/limited_thread.h"

#include <cstdint>
#include <memory>
#include <string>

namespace kavro {

/// Looks back into the readings of a line in a history file, in a thread with a connection of its own that
/// only reads. Used in the thread that made it alone, whose event loop the answers come from.
class LookBack : public TrendHistory {
public:
    /// The file is opened for each asking; a failure to is the answer.
    LookBack(const std::string& path, const std::string& line);

    /// Breaks off what is being read. Waits a second at most.
    ~LookBack() override;

    void Ask(std::vector<HistoryQuestion> questions,
             std::function<void(std::vector<HistoryAnswer> answers)> done) override;

private:
    struct Desk;

    void Answer(std::uint64_t number, std::vector<HistoryAnswer> answers);

    std::function<void(std::vector<HistoryAnswer> answers)> done_;
    std::shared_ptr<Desk> desk_;
    CallerLoop loop_; // before the thread, which is waited for with answers still coming
    LimitedThread thread_;
};

} // namespace kavro
