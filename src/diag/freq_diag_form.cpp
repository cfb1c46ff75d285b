#include "diag/freq_diag_form.h"

#include "map/tag_label_form.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int TagColumns = 24;

} // namespace

FreqDiagForm::FreqDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : DriveForm("FreqDiagForm", "Frequency Diagnostic", session, messages, parent) {
    AddHead();
    auto* frame = new QGroupBox("Frequencies");
    auto* rows = new QFormLayout(frame);
    for (int input = 0; input < CounterTotal; ++input) {
        QLabel* label = ValueLabel(QString("Frequency_%1").arg(input));
        ShowLarge(*label, "4294967295 Hz");
        rows->addRow(QString("Input %1:").arg(input), label);
        if (Tagged()) {
            auto& tag = tags_[static_cast<std::size_t>(input)];
            tag = new TagLabel(QString("Tag_%1").arg(input), TagColumns);
            rows->addRow("Tag:", tag);
        }
        std::uint32_t& hertz = hertz_[static_cast<std::size_t>(input)];
        AddRead({QString("Input %1").arg(input),
                 [this, input, &hertz] { return ReadCounter(Session(), Index(), input, hertz); },
                 [label, &hertz](bool stale) { ShowValue(*label, QString("%1 Hz").arg(hertz), stale); }});
    }
    Rows().addWidget(frame);
    FinishDrive();
}

void FreqDiagForm::ShowChannelTags() {
    const auto tags = ChannelTags(0, CounterTotal);
    for (std::size_t input = 0; input < tags.size(); ++input)
        tags_[input]->Show(tags[input]);
}

} // namespace kavro
