#include "diag/ad_diag_form.h"

#include "diag/analog_input_panel.h"
#include "diag/reading_rows_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "ui/named.h"
#include "ui/tinted_label.h"

#include <QFormLayout>
#include <QLabel>

namespace kavro {

namespace {

constexpr int ChannelRows = 8;

} // namespace

AdDiagForm::AdDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : PanelForm("AdDiagForm", "A/D Module Diagnostic", session, messages, parent),
      channelCount_(ChannelCount(Record().Model).value_or(0)), hasOpenStatus_(HasOpenStatus(Record().Model)) {
    Build();
    Operate([this] { ReadEnables(); });
    ReadRevision();
    StartPolling();
}

void AdDiagForm::Build() {
    AddHead();
    QStringList captions;
    for (int channel = 0; channel < ChannelRows; ++channel)
        captions << QString("Channel %1:").arg(channel);
    readings_ = new ReadingRows("A/D readings", captions);
    for (int channel = channelCount_; channel < ChannelRows; ++channel)
        readings_->ShowMissing(channel);
    Rows().addWidget(readings_);
    label4_ = Named(new QLabel("Open status:"), "Label4", {});
    openStatus_ = Named(new TintedLabel, "OpenStatus", {});
    auto* row = new QFormLayout;
    row->addRow(label4_, openStatus_);
    Rows().addLayout(row);
    label4_->setVisible(hasOpenStatus_);
    openStatus_->setVisible(hasOpenStatus_);
    Finish();
}

// Asked once: without an answer every channel counts as disabled for as long as the panel is open. A port
// that fails is no missing answer.
void AdDiagForm::ReadEnables() {
    channelEnabled_ = ReadChannelEnables(Session(), Index(), Session().Line.ReplyTimeout).value_or(0);
    for (int channel = 0; channel < channelCount_; ++channel)
        if (!Enabled(channel))
            readings_->ShowDisabled(channel);
}

void AdDiagForm::Tick() {
    if (!channelEnabled_)
        ReadEnables();
    const std::string unit = RangeUnit(Record().InputRange, Record().DataFormat);
    for (int channel = 0; channel < channelCount_; ++channel)
        if (Enabled(channel))
            Then([this, unit, channel] {
                readings_->BeginReading(channel);
                readings_->ShowReading(
                    channel,
                    SignedReading(ReadAnalogInput(Session(), Index(), channel), Session().DecimalSeparator),
                    unit);
            });
    if (hasOpenStatus_)
        Then([this] { ShowOpenStatus(); });
}

void AdDiagForm::ShowOpenStatus() {
    const auto status = ReadOpenStatus(Session(), Index());
    if (!status)
        return;
    openStatus_->SetTint({});
    openStatus_->setText(QString::fromStdString(*status));
    const auto open = status->size() == 2 ? HexNumber(*status) : std::nullopt;
    for (int channel = 0; open && channel < channelCount_; ++channel)
        readings_->ShowOpen(channel, Enabled(channel) && (*open >> channel & 1U) != 0);
}

void AdDiagForm::ShowChannelTags() {
    readings_->ShowTags(ChannelTags(0, channelCount_));
}

void AdDiagForm::ShowStale(bool stale) {
    if (!stale)
        return; // what is read again has become fresh by that
    readings_->ShowStale();
    for (int channel = 0; !channelEnabled_ && channel < channelCount_; ++channel)
        readings_->ShowUnread(channel);
    openStatus_->SetTint(QColor(StaleTint));
    if (!openStatus_->text().isEmpty() && !openStatus_->text().endsWith(StaleMark))
        openStatus_->setText(openStatus_->text() + StaleMark);
}

} // namespace kavro
