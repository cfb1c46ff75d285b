#include "config/multi_config_form.h"

#include "config/alarm_input_config.h"
#include "config/range_lists_form.h"
#include "link/codes.h"
#include "link/model_choices.h"
#include "link/text.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/note.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr std::int16_t AlarmModes = 3;

QStringList AlarmModeItems() {
    QStringList items;
    for (std::int16_t mode = 0; mode < AlarmModes; ++mode)
        items << QString::fromStdString(Trim(AlarmModeName(mode)));
    return items;
}

} // namespace

MultiConfigForm::MultiConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("MultiConfigForm", session, messages, parent), ranges_(RangeCodes(Record().Model)),
      formatMap_(FormatCodes(Record().Model)) {
    ReadEntry();
    const AlarmInputConfig config = AlarmInputConfigOf(session, Index());
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address (Dec):");
    // By code and not by name: two ranges of the 8210 may carry one name.
    inputRange_ = AddList(*rows, "InputRange", "Input &range:", RangeItems(ranges_),
                          CodePosition(ranges_, config.InputRange));
    dataFormat_ = AddList(*rows, "DataFormat", "Data &format:", FormatItems(formatMap_),
                          CodePosition(formatMap_, config.DataFormat));
    AddBaudRate(*rows);
    AddChecksumCombo(*rows);
    alarmMode_ = AddList(*rows, "AlarmMode", "Alarm &mode:", AlarmModeItems(), config.AlarmMode);
    lowAlarm_ = AddLimit(*rows, "LowAlarm", "&Low alarm limit:", config.LowAlarm);
    highAlarm_ = AddLimit(*rows, "HighAlarm", "&High alarm limit:", config.HighAlarm);
    limitsNote_ = AddNote(*rows, "LimitsNote");
    connect(inputRange_, &QComboBox::currentIndexChanged, this, [this] {
        ShowUnit();
        ShowLimitsNote();
    });
    ShowUnit();
    for (QLineEdit* limit : {lowAlarm_, highAlarm_})
        connect(limit, &QLineEdit::textChanged, this, [this] { ShowLimitsNote(); });
    ShowLimitsNote();

    auto* fields = new QVBoxLayout;
    fields->addLayout(rows);
    Finish(*fields);
}

QLineEdit* MultiConfigForm::AddLimit(QFormLayout& rows, const char* name, const char* label,
                                     const std::string& text) {
    auto* box = new QLineEdit(QString::fromStdString(text));
    box->setObjectName(name);
    FilterKeys(*box, [this](int& keyCode) {
        if (keyCode != '.') // which is taken as well as the user's own
            FilterSignedNumberKey(keyCode, Session().DecimalSeparator);
    });
    auto* unit = Named(new QLabel, QString(name) + "Unit", {});
    unit->setMinimumWidth(unit->fontMetrics().horizontalAdvance("mA "));
    units_.push_back(unit);
    auto* row = new QHBoxLayout;
    row->addWidget(box, 1);
    row->addWidget(unit);
    AddLabelled(rows, label, *box, row);
    return box;
}

std::int16_t MultiConfigForm::SelectedInputRange() const {
    return SelectedCode(*inputRange_, ranges_, Record().InputRange);
}

void MultiConfigForm::ShowUnit() {
    const QString unit = QString::fromStdString(Trim(RangeUnit(SelectedInputRange(), EngineeringUnits)));
    for (QLabel* label : units_)
        label->setText(unit);
    lowAlarm_->setAccessibleName("Low alarm limit, " + unit);
    highAlarm_->setAccessibleName("High alarm limit, " + unit);
}

void MultiConfigForm::ShowLimitsNote() {
    limitsNote_->Tell(QString::fromStdString(AlarmOrderNote(ConfigInFields({}), Session().DecimalSeparator)));
}

AlarmInputConfig MultiConfigForm::ConfigInFields(const LinkSettings& link) const {
    const int mode = alarmMode_->currentIndex();
    return {link,
            SelectedInputRange(),
            SelectedCode(*dataFormat_, formatMap_, Record().DataFormat),
            mode < 0 ? Record().AlarmMode : static_cast<std::int16_t>(mode),
            lowAlarm_->text().toStdString(),
            highAlarm_->text().toStdString()};
}

ConfigOutcome MultiConfigForm::Apply(const LinkSettings& link) {
    const AlarmInputConfig config = ConfigInFields(link);
    const ConfigOutcome outcome = ApplyAlarmInputConfig(Session(), Index(), config, Messages());
    if (outcome == ConfigOutcome::Refused)
        ReturnTo(RefusedAlarmSetting(config, Session().DecimalSeparator));
    return outcome;
}

} // namespace kavro
