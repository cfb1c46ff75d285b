#include "terminal/command_history.h"

#include "link/text.h"

namespace kavro {

namespace {

constexpr std::size_t MostCommands = 500;

} // namespace

void CommandHistory::Add(const std::string& command) {
    const bool repeats = !commands_.empty() && commands_.back() == command;
    if (!Trim(command).empty() && !repeats)
        commands_.push_back(command);
    if (commands_.size() > MostCommands)
        commands_.erase(commands_.begin());
    recalled_ = commands_.size();
}

std::string CommandHistory::Previous(const std::string& typed) {
    if (commands_.empty())
        return typed;
    if (recalled_ == commands_.size())
        typed_ = typed;
    if (recalled_ > 0)
        --recalled_;
    return commands_[recalled_];
}

std::string CommandHistory::Next(const std::string& typed) {
    if (recalled_ == commands_.size())
        return typed;
    ++recalled_;
    return recalled_ == commands_.size() ? typed_ : commands_[recalled_];
}

} // namespace kavro
