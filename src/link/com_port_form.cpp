#include "link/com_port_form.h"

#include "link/baud_checks_form.h"
#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "ui/center_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/note.h"
#include "ui/ok_cancel.h"
#include "ui/spin_buttons.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr SpinRange DataBitsRange = {4, 8};

constexpr const char* NotOnTheWire =
    "This is kept and shown, but every port is driven n,8,1: no parity, 8 data bits, 1 stop bit.";
constexpr const char* ThisRunOnly =
    "\nFor this run only: the next start accepts COM1 to COM4. After any other it reports wrong settings and "
    "begins with COM2 and a TimeOut of 100 ms.";
constexpr int HighestStartPort = 4;

QString DeviceText(const std::string& device) {
    return QString::fromStdString(ShownDevice(device));
}

// A tooltip, which a screen reader speaks as well.
void Explain(QWidget& control, const QString& text) {
    control.setToolTip(text);
    control.setAccessibleDescription(text);
}

// "/dev/ttyUSB0  (FT-X 485 adapter, maker, serial number)"
QString DetectedText(const DetectedDevice& device) {
    QStringList details;
    for (const std::string& detail : {device.Description, device.Manufacturer, device.SerialNumber})
        if (!detail.empty())
            details << QString::fromStdString(detail);
    const QString path = QString::fromStdString(device.Path);
    return details.isEmpty() ? path : path + "  (" + details.join(", ") + ")";
}

// The device that the box names: an item's own, or what was typed.
std::string DeviceIn(const QComboBox& box) {
    const QString text = box.currentText().trimmed();
    const int item = box.findText(text);
    return (item >= 0 ? box.itemData(item).toString() : text).toStdString();
}

QLineEdit* NumberBox(const QString& name, const QString& accessibleName) {
    auto* box = Named(new QLineEdit, name, accessibleName);
    FilterKeys(*box, FilterDigitKey);
    return box;
}

} // namespace

ComPortForm::ComPortForm(Line& line, PortDevices& devices, Messages& messages, QWidget* parent)
    : QDialog(parent), line_(line), devices_(devices), messages_(messages) {
    setObjectName("ComPortForm");
    setWindowTitle("COM Port");

    auto* groups = new QHBoxLayout;
    groups->addWidget(BuildParity());
    groups->addWidget(BuildBaudChecks());
    groups->addLayout(BuildValues(), 1);

    auto* buttons = OkAndCancel(*this, [this] { OKBtn_Click(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BuildPorts());
    layout->addLayout(groups);
    rateNote_ = new Note("RateNote", *this);
    layout->addWidget(rateNote_);
    layout->addStretch(1);
    layout->addWidget(buttons);

    Fill();
    connect(comOption_, &QButtonGroup::idToggled, this, [this] { ShowRateNote(); });
    for (QComboBox* device : comDevice_)
        connect(device, &QComboBox::currentTextChanged, this, [this] { ShowRateNote(); });
    ShowRateNote();
    CenterForm(*this);
}

void ComPortForm::ShowRateNote() {
    const int port = comOption_->checkedId();
    const bool fixed = port >= 1 && RateIsFixed(DeviceIn(*comDevice_[static_cast<std::size_t>(port - 1)]));
    rateNote_->Tell(fixed ? FixedRateText : "");
}

QGroupBox* ComPortForm::BuildPorts() {
    auto* group = new QGroupBox("COM port");
    auto* grid = new QGridLayout(group);
    grid->setColumnStretch(1, 1);
    comOption_ = new QButtonGroup(this);
    for (int port = 1; port <= PortTotal; ++port) {
        const QString name = QString("COM%1").arg(port);
        auto* option = Named(new QRadioButton(name), QString("ComOption_%1").arg(port), name);
        auto* device = Named(new QComboBox, QString("ComDevice_%1").arg(port), "Device of " + name);
        device->setEditable(true);
        device->setInsertPolicy(QComboBox::NoInsert);
        device->setMinimumContentsLength(30);
        const QString limit = port > HighestStartPort ? ThisRunOnly : "";
        Explain(*option, limit.trimmed());
        Explain(*device,
                "The device that " + name +
                    " stands for: choose a detected one or type its path. A port of a device server is " +
                    NetworkForms + "; replay:FILE plays a recording." + limit);
        comOption_->addButton(option, port);
        comDevice_[static_cast<std::size_t>(port - 1)] = device;
        grid->addWidget(option, port - 1, 0);
        grid->addWidget(device, port - 1, 1);
    }
    return group;
}

QGroupBox* ComPortForm::BuildParity() {
    auto* group = new QGroupBox("Parity");
    auto* layout = new QVBoxLayout(group);
    parityOption_ = new QButtonGroup(this);
    for (const QString name : {"None", "Odd", "Even"}) {
        const int index = static_cast<int>(parityOption_->buttons().size());
        auto* option = Named(new QRadioButton(name), QString("ParityOption_%1").arg(index), "Parity " + name);
        Explain(*option, NotOnTheWire);
        parityOption_->addButton(option, index);
        layout->addWidget(option);
    }
    layout->addStretch(1);
    return group;
}

QGroupBox* ComPortForm::BuildBaudChecks() {
    auto* group = new QGroupBox("Baud rate to search");
    auto* grid = new QGridLayout(group);
    baudCheck_ = AddBaudChecks(*grid, 4);
    grid->setRowStretch(4, 1);
    return group;
}

QLayout* ComPortForm::BuildValues() {
    dataBits_ = NumberBox("DataBits", "Data bits");
    timeout_ = NumberBox("Timeout", "TimeOut in milliseconds");
    Explain(*timeout_, "Milliseconds of silence after which a reply is given up: 100 to 6553");
    stopBits_ = Named(new QComboBox, "StopBits", "Stop bits");
    stopBits_->addItems({"1", "1.5", "2"});
    for (QWidget* control : {static_cast<QWidget*>(dataBits_), static_cast<QWidget*>(stopBits_)})
        Explain(*control, NotOnTheWire);
    auto* dataBitsRow = new QHBoxLayout;
    dataBitsRow->setSpacing(0);
    dataBitsRow->addWidget(dataBits_);
    AddSpinButtons(*dataBitsRow, *dataBits_, "DataBitSpin", DataBitsRange);

    auto* form = new QFormLayout;
    auto* dataBitsLabel = new QLabel("&Data bits:");
    dataBitsLabel->setBuddy(dataBits_);
    form->addRow(dataBitsLabel, dataBitsRow);
    form->addRow("&Stop bits:", stopBits_);
    auto* timeoutRow = new QHBoxLayout;
    timeoutRow->addWidget(timeout_);
    timeoutRow->addWidget(new QLabel("ms"));
    auto* timeoutLabel = new QLabel("&TimeOut");
    timeoutLabel->setBuddy(timeout_);
    form->addRow(timeoutLabel, timeoutRow);
    return form;
}

void ComPortForm::Fill() {
    const auto detected = devices_.Detect();
    for (int port = 1; port <= PortTotal; ++port)
        FillDevices(*comDevice_[static_cast<std::size_t>(port - 1)], port, detected);

    // COM.CFG can name port 0, which has no option and no settings.
    const bool known = line_.CurrentPort >= 1 && line_.CurrentPort <= PortTotal;
    const PortSettingsRecord settings = known ? line_.SettingsOf(line_.CurrentPort) : DefaultPortSettings();
    if (known)
        comOption_->button(line_.CurrentPort)->setChecked(true);
    if (auto* parity = parityOption_->button(settings.Parity))
        parity->setChecked(true);
    for (std::size_t code = 0; code < baudCheck_.size(); ++code)
        baudCheck_[code]->setChecked(settings.BaudEnabled[code] == 1);
    dataBits_->setText(QString::number(settings.DataBits));
    stopBits_->setCurrentIndex(settings.StopBits);
    timeout_->setText(QString::number(line_.ChosenTimeout()));
}

void ComPortForm::FillDevices(QComboBox& box, int port, const std::vector<DetectedDevice>& detected) {
    const std::string current = devices_.Device(port);
    for (const DetectedDevice& device : detected)
        box.addItem(DetectedText(device), QString::fromStdString(device.Path));
    box.addItem(DeviceText(SimulatedLineDevice), SimulatedLineDevice);
    for (const std::string& device : devices_.Recent())
        box.addItem(QString::fromStdString(device), QString::fromStdString(device));
    if (box.findData(QString::fromStdString(current)) < 0)
        box.addItem(DeviceText(current), QString::fromStdString(current));
    box.setCurrentIndex(box.findData(QString::fromStdString(current)));
}

PortChoice ComPortForm::ReadChoice() const {
    PortChoice choice;
    choice.Port = static_cast<std::int16_t>(comOption_->checkedId());
    choice.Parity = static_cast<std::int16_t>(parityOption_->checkedId());
    for (std::size_t code = 0; code < baudCheck_.size(); ++code)
        choice.BaudEnabled[code] = baudCheck_[code]->isChecked() ? 1 : 0;
    choice.DataBits = dataBits_->text().toStdString();
    choice.StopBits = static_cast<std::int16_t>(stopBits_->currentIndex());
    choice.Timeout = timeout_->text().toStdString();
    return choice;
}

std::vector<ComPortForm::DeviceChange> ComPortForm::ChangedDevices() const {
    std::vector<DeviceChange> changes;
    for (int port = 1; port <= PortTotal; ++port) {
        const DeviceChange change = {port, devices_.Device(port),
                                     DeviceIn(*comDevice_[static_cast<std::size_t>(port - 1)])};
        if (change.After != change.Before)
            changes.push_back(change);
    }
    return changes;
}

bool ComPortForm::Check(QLineEdit& box, std::int16_t (*number)(const std::string& text)) {
    if (Guard(messages_, [&] { number(box.text().toStdString()); }))
        return true;
    box.setFocus();
    box.selectAll();
    return false;
}

// What cannot be applied keeps the dialog open, so that no other entry is lost.
bool ComPortForm::CheckEntries() {
    if (comOption_->checkedId() < 1) {
        messages_.Show("Please choose a COM port.", "Error");
        return false;
    }
    for (const DeviceChange& change : ChangedDevices()) {
        const auto check = [&] {
            if (change.After.empty())
                throw RuntimeFailure("COM" + std::to_string(change.Port) +
                                     " has no device. Choose one, or type its path.");
            RequireDeviceName(change.After);
        };
        if (!Guard(messages_, check)) {
            comDevice_[static_cast<std::size_t>(change.Port - 1)]->setFocus();
            return false;
        }
    }
    return Check(*dataBits_, DataBitsIn) && Check(*timeout_, TimeoutIn);
}

// A choice that fails anywhere leaves every device as it was.
void ComPortForm::Apply(PortChoice& choice) {
    const auto changes = ChangedDevices();
    const auto isLeft = [&](const DeviceChange& change) {
        return change.Port == line_.CurrentPort && change.Port != choice.Port;
    };
    try {
        for (const DeviceChange& change : changes)
            if (!isLeft(change))
                devices_.Assign(change.Port, change.After);
        ApplyPortChoice(line_, choice, messages_);
    } catch (const RuntimeFailure&) {
        for (const DeviceChange& change : changes) {
            try {
                devices_.Assign(change.Port, change.Before);
            } catch (const RuntimeFailure&) {
                // The failure that led here is the one to tell.
            }
        }
        throw;
    }
    for (const DeviceChange& change : changes)
        devices_.Assign(change.Port, change.After); // the port just left is closed by now
    if (!changes.empty())                           // a choice that cannot be kept still counts for this run
        Guard(messages_, [this] { devices_.Save(); });
}

void ComPortForm::OKBtn_Click() {
    if (!CheckEntries())
        return;
    PortChoice choice = ReadChoice();
    setCursor(Qt::WaitCursor); // a change of the baud rate takes a second
    Guard(messages_, [&] {
        Apply(choice);
        timeout_->setText(QString::fromStdString(choice.Timeout));
        messages_.Show("COM Port configuration complete.");
    });
    accept();
}

} // namespace kavro
