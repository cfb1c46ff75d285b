#pragma once

#include "monitor/module_description.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// A reading as it is published, under a topic that says of what.
struct PublishedValue {
    std::optional<double> Number; ///< only when `State` is "ok"
    std::string Text, Unit;
    std::string State; ///< of `StateText`
    std::int64_t UnixMs = 0;
};

/// Version of what is published; stands in the descriptions.
inline constexpr int PublishedVersion = 1;

/// The JSON of a reading, on one line.
std::string ValueJson(const PublishedValue& value);

/// The JSON of a module's description, on one line.
std::string DescriptionJson(const ModuleDescription& description);

/// The topics of a line, under a prefix.
class Topics {
public:
    /// Throws `RuntimeFailure` unless the prefix, one level or more, can stand at the beginning of topics.
    Topics(const std::string& prefix, const std::string& line);

    std::string Status() const { return root_ + "status"; }
    std::string Lost() const { return root_ + "dropped"; }
    std::string OfModule(std::int16_t address) const { return root_ + std::to_string(address); }
    std::string OfChannel(std::int16_t address, const std::string& channel) const {
        return OfModule(address) + "/" + channel;
    }

private:
    std::string root_; // with the line and a "/"
};

/// Throws `RuntimeFailure` unless the text can be the prefix of topics: levels between "/", none of them
/// empty, and without what means something else in a topic or an address.
void RequireTopicPrefix(const std::string& prefix);

} // namespace kavro
