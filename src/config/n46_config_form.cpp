#include "config/n46_config_form.h"

#include "config/port_direction_config.h"
#include "ui/busy_pointer.h"
#include "ui/note.h"

#include <QFormLayout>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* PortLabels[] = {"Port A", "Port B", "Port CH", "Port CL"};
constexpr int Ports = std::size(PortLabels);

constexpr const char* PortsUnknown =
    "The directions could not be read: what stands here may be wrong, and OK sends it.";

// The first port has the highest bit.
constexpr int BitOf(int port) {
    return Ports - 1 - port;
}

} // namespace

N46ConfigForm::N46ConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("N46ConfigForm", session, messages, parent) {
    const BusyPointer busy;
    const PortDirectionConfig config = ReadPortDirectionConfig(session, Index());
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address(Dec):");
    AddBaudRate(*rows);
    AddChecksumBox(*rows, "&Checksum enabled");
    ports_ = new OptionPairs("Port config", {"PortInput", "Input"}, {"PortOutput", "Output"},
                             {std::begin(PortLabels), std::end(PortLabels)});
    for (int port = 0; port < Ports; ++port)
        ports_->Choose(port, (config.InputPorts >> BitOf(port) & 1U) != 0);

    auto* fields = new QVBoxLayout;
    fields->addLayout(rows);
    fields->addWidget(ports_);
    auto* unknown = new Note("PortsNote", *this);
    unknown->Tell(config.PortsKnown ? "" : PortsUnknown);
    fields->addWidget(unknown);
    Finish(*fields);
}

ConfigOutcome N46ConfigForm::Apply(const LinkSettings& link) {
    PortDirectionConfig config{link};
    for (int port = 0; port < Ports; ++port)
        config.InputPorts |= (ports_->IsFirst(port) ? 1U : 0U) << BitOf(port);
    return ApplyPortDirectionConfig(Session(), Index(), config, Messages());
}

} // namespace kavro
