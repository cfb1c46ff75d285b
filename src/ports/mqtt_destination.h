#pragma once

#include "monitor/module_description.h"
#include "monitor/on_change.h"
#include "monitor/published.h"
#include "ports/deadline.h"
#include "ports/destination.h"
#include "ports/mqtt_connection.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What the modules of a line are, as far as it is known: put in by one thread, published by another. It does
/// not wait in the spool, as only the newest counts.
class DescriptionBoard {
public:
    /// Puts a module's description in the place of the one before.
    void Put(const ModuleDescription& description);

    /// All of them.
    std::map<std::int16_t, ModuleDescription> All();

    /// Those that were put in since the last call of one of the two.
    std::map<std::int16_t, ModuleDescription> News();

private:
    std::mutex mutex_;
    std::map<std::int16_t, ModuleDescription> all_, news_; // by address
};

/// What a broker is told of a line beside its readings.
struct MqttLine {
    std::string Name;
    std::optional<OnChangeRule> OnChange{}; ///< nothing: all readings are published
    std::shared_ptr<DescriptionBoard> Descriptions;
};

/// A broker to which the readings of a line are published, retained, each under a topic of its own, with the
/// line's status, what its modules are, and how many readings are lost.
class MqttDestination : public Destination {
public:
    /// Throws `RuntimeFailure` when libmosquitto is not installed, or the prefix is none.
    MqttDestination(MqttChoice choice, MqttLine line);

    std::string Name() const override { return "The broker " + PlaceOf(choice_); }
    std::size_t Most() const override { return 200; }
    int GatherMs() const override { return 200; }

    /// As a broker may have forgotten what it retained, everything is told anew that is not a reading, and
    /// the next reading of each value counts as a change.
    std::optional<std::int64_t> Connect(std::int64_t lostEver) override;

    std::int64_t Send(const std::vector<SpoolRow>& rows) override;
    void SendGaps(const std::vector<SpoolGap>& gaps, std::int64_t lost) override;
    void Idle() override;
    void Close() override;

private:
    MqttMessage Status(bool online) const { return {topics_.Status(), online ? "online" : "offline"}; }
    MqttMessage Lost(std::int64_t count) const { return {topics_.Lost(), std::to_string(count)}; }
    void AddDescriptions(std::vector<MqttMessage>& messages,
                         const std::map<std::int16_t, ModuleDescription>& descriptions) const;
    void Publish(const std::vector<MqttMessage>& messages);

    const MqttChoice choice_;
    const MqttLine line_;
    const Topics topics_;
    std::optional<OnChange> changes_;
    std::unique_ptr<MqttConnection> connection_;
    Deadline young_{0}; // the connection is, until then
    int diedYoung_ = 0; // connections in a row: not every broker says that another program took the place
};

} // namespace kavro
