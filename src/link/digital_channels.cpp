#include "link/digital_channels.h"

#include "link/models.h"

namespace kavro {

DigitalChannels DigitalChannelsOf(std::string_view model) {
    return RowOfModel(model).Digital;
}

} // namespace kavro
