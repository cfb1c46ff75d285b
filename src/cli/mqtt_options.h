#pragma once

#include "monitor/on_change.h"
#include "ports/feed.h"
#include "ports/mqtt_destination.h"

#include <memory>
#include <optional>
#include <string>

class QCommandLineParser;

namespace kavro {

/// The broker that the options name, and what goes there.
struct BrokerChoice {
    MqttChoice Broker;
    std::optional<OnChangeRule> OnChange; ///< nothing: all readings
    std::shared_ptr<DescriptionBoard> Descriptions = std::make_shared<DescriptionBoard>();
};

/// Adds --mqtt and what belongs to it.
void AddMqttOptions(QCommandLineParser& parser);

/// Reads them, and the password, from its file or the environment; nothing without --mqtt. Throws
/// `RuntimeFailure` when one is wrong or out of place, or names a file that cannot be read.
std::optional<BrokerChoice> ReadMqttOptions(const QCommandLineParser& parser);

/// The broker as the target of a spool with the readings of a line.
FeedTarget BrokerTarget(const BrokerChoice& choice, const SpoolChoice& spool);

} // namespace kavro
