#include "calib/ad_calib_form.h"

#include "link/codes.h"
#include "link/text.h"
#include "ui/key_filter.h"
#include "ui/named.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int Steps = 3;
constexpr int LongestTarget = 16; // characters; far more than any temperature needs
constexpr double ReadingScale = 1.4;
constexpr const char* Degrees = "\u00b0C";

} // namespace

AdCalibForm::AdCalibForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : CalibForm("AdCalibForm", "Analog Input Calibration", Steps, session, messages, parent),
      calibration_(session, Index(), [this](int milliseconds) { Wait(milliseconds); }) {
    const std::string range = RangeName(session.ModuleTable[Index()].InputRange);
    Rows().addRow("Input range:", Named(new QLabel(QString::fromStdString(Trim(range))), "RangeText", {}));

    reading_ = Named(new QLabel, "Reading", {});
    QFont font = reading_->font();
    font.setPointSizeF(font.pointSizeF() * ReadingScale);
    font.setBold(true);
    reading_->setFont(font);
    reading_->setAlignment(Qt::AlignCenter);
    coldJunctionPanel_ = BuildColdJunction();
    AddToStage(*coldJunctionPanel_, 0);
    choices_ = BuildChoices();
    AddToStage(*choices_, 1);
    AddToStage(*reading_, 1);
    Finish([this] { calibration_.BackBtn_Click(); },
           [this] {
               calibration_.NextBtn_Click();
               return false;
           });
}

QPushButton* AdCalibForm::Choice(const char* name, const char* caption, void (AdCalibration::*choose)()) {
    QPushButton* button = Button(name, caption);
    connect(button, &QPushButton::clicked, this, [this, choose] {
        Operate([&] {
            (calibration_.*choose)();
            return false;
        });
    });
    return button;
}

QWidget* AdCalibForm::BuildChoices() {
    offset_ = Choice("OffsetBtn", "&Offset", &AdCalibration::OffsetBtn_Click);
    auto* span = Choice("SpanBtn", "&Span", &AdCalibration::SpanBtn_Click);
    coldJunction_ = Choice("CJCBtn", "&CJC", &AdCalibration::CJCBtn_Click);
    auto* panel = new QWidget;
    auto* row = new QHBoxLayout(panel);
    row->addStretch(1);
    for (QPushButton* choice : {offset_, span, coldJunction_})
        row->addWidget(choice);
    row->addStretch(1);
    return panel;
}

QWidget* AdCalibForm::BuildColdJunction() {
    temperature_ = Named(new QLabel, "Temperature", {});
    cjcInput_ = Named(new QLineEdit, "CJCInput", "Target temperature in degrees Celsius");
    cjcInput_->setMaxLength(LongestTarget);
    FilterKeys(*cjcInput_,
               [this](int& keyCode) { FilterSignedNumberKey(keyCode, Session().DecimalSeparator); });
    connect(cjcInput_, &QLineEdit::textChanged, this, [this](const QString& text) {
        calibration_.CJCInput = text.toStdString();
        ShowFoot(calibration_.Foot());
    });
    auto* ask = Named(new QLabel("Please input &target temperature then press 'Execute' button:"),
                      "CJCInputLabel", {});
    ask->setWordWrap(true);
    ask->setBuddy(cjcInput_);

    auto* panel = new QWidget;
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins({});
    const auto addRow = [layout](std::initializer_list<QWidget*> controls) {
        auto* row = new QHBoxLayout;
        for (QWidget* control : controls)
            row->addWidget(control);
        row->addStretch(1);
        layout->addLayout(row);
    };
    temperatureUnit_ = Named(new QLabel(Degrees), "TemperatureUnit", {});
    addRow({Named(new QLabel("CJC temperature ="), "CJCLabel", {}), temperature_, temperatureUnit_});
    layout->addWidget(ask);
    addRow({cjcInput_, Named(new QLabel(Degrees), "DegreeLabel", {})});
    layout->addStretch(1);
    return panel;
}

QWidget& AdCalibForm::ShowView() {
    const AdCalibrationView& view = calibration_.View();
    ShowCommon(view, calibration_.Foot());
    choices_->setVisible(view.ChoicesShown);
    coldJunction_->setVisible(view.CJCChoiceShown);
    reading_->setVisible(view.ReadingShown);
    reading_->setText(QString::fromStdString(view.Reading));
    coldJunctionPanel_->setVisible(view.CJCShown);
    temperature_->setText(QString::fromStdString(view.Temperature));
    temperatureUnit_->setVisible(!view.Temperature.empty());
    cjcInput_->setText(QString::fromStdString(calibration_.CJCInput));
    if (view.ChoicesShown)
        return *offset_;
    return view.CJCShown ? static_cast<QWidget&>(*cjcInput_) : NextBtn();
}

} // namespace kavro
