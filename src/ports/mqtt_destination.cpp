#include "ports/mqtt_destination.h"

#include "ports/mqtt_library.h"

#include <utility>

namespace kavro {

namespace {

constexpr int YoungMs = 10'000;

constexpr int ManyYoung = 3; // in a row
constexpr const char* AnotherProgram =
    " soon, time and again; maybe another program sends as this line with this prefix";

using Descriptions = std::map<std::int16_t, ModuleDescription>;

} // namespace

void DescriptionBoard::Put(const ModuleDescription& description) {
    const std::scoped_lock lock(mutex_);
    all_[description.Address] = news_[description.Address] = description;
}

Descriptions DescriptionBoard::All() {
    const std::scoped_lock lock(mutex_);
    news_.clear();
    return all_;
}

Descriptions DescriptionBoard::News() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(news_, {});
}

MqttDestination::MqttDestination(MqttChoice choice, MqttLine line)
    : choice_(std::move(choice)), line_(std::move(line)), topics_(choice_.Prefix, line_.Name) {
    Mqtt();
    if (line_.OnChange)
        changes_.emplace(*line_.OnChange);
}

std::optional<std::int64_t> MqttDestination::Connect(std::int64_t lostEver) {
    // One client for one status: a connection that a power cut has left behind ends when the next one comes,
    // and its last will with it, not after it.
    connection_ = std::make_unique<MqttConnection>(choice_, choice_.Prefix + "/" + line_.Name, Status(false));
    young_ = Deadline(YoungMs);
    if (changes_)
        changes_->Forget();
    std::vector<MqttMessage> messages = {Status(true), Lost(lostEver)};
    AddDescriptions(messages, line_.Descriptions->All());
    Publish(messages);
    return std::nullopt;
}

std::int64_t MqttDestination::Send(const std::vector<SpoolRow>& rows) {
    std::vector<MqttMessage> messages;
    AddDescriptions(messages, line_.Descriptions->News());
    for (const SpoolRow& row : rows) {
        const PublishedValue value = {row.Number, row.Text, row.Unit, row.State, row.UnixMs};
        if (!changes_ || changes_->Passes(row.Address, row.Channel, value))
            messages.push_back({topics_.OfChannel(row.Address, row.Channel), ValueJson(value)});
    }
    Publish(messages);
    return rows.back().Id;
}

void MqttDestination::SendGaps(const std::vector<SpoolGap>& /*gaps*/, std::int64_t lost) {
    Publish({Lost(lost)});
}

void MqttDestination::Idle() {
    std::vector<MqttMessage> messages;
    AddDescriptions(messages, line_.Descriptions->News());
    Publish(messages);
}

void MqttDestination::Close() {
    if (!connection_)
        return;
    try {
        Publish({Status(false)});
        connection_->End();
    } catch (const RuntimeFailure&) { // the broker publishes it
    }
    connection_.reset();
}

void MqttDestination::AddDescriptions(std::vector<MqttMessage>& messages,
                                      const Descriptions& descriptions) const {
    for (const auto& [address, description] : descriptions)
        messages.push_back({topics_.OfModule(address), DescriptionJson(description)});
}

// Without a message a look at the connection. Whatever fails, nothing is connected behind it.
void MqttDestination::Publish(const std::vector<MqttMessage>& messages) {
    try {
        if (!connection_)
            throw DestinationAway("there is no connection");
        if (messages.empty())
            connection_->Look();
        else
            connection_->Publish(messages);
    } catch (const DestinationAway& failure) {
        connection_.reset();
        diedYoung_ = young_.Over() ? 0 : diedYoung_ + 1;
        if (diedYoung_ >= ManyYoung && failure.what() == std::string(ConnectionLost))
            throw DestinationAway(failure.what() + std::string(AnotherProgram));
        throw;
    } catch (const RuntimeFailure&) {
        connection_.reset();
        throw;
    }
}

} // namespace kavro
