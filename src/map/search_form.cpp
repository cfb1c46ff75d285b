#include "map/search_form.h"

#include "link/baud.h"
#include "link/text.h"
#include "ui/center_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/note.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;
constexpr const char* NoRateText =
    "No baud rate is ticked, so this search will find nothing. Cancel it and tick "
    "the rates of the modules under Network > ComPort.";

// The rates in code order, so 115200 stands before 57600.
QString EnabledRates(const PortSettingsRecord& settings) {
    QStringList rates;
    for (std::int16_t code = 0; code < BaudCodeCount; ++code)
        if (settings.BaudEnabled[static_cast<std::size_t>(code)] == 1)
            rates << QString::number(BaudFromCode(code));
    return rates.join(", ");
}

} // namespace

SearchForm::SearchForm(Session& session, Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages) {
    setObjectName("SearchForm");
    setWindowTitle("Search");

    const PortSettingsRecord& settings = session.Line.SettingsOf(session.Line.CurrentPort);
    // Two blanks between "exist" and "modules": an empty name stands between them.
    auto* note = Named(new QLabel("Search all exist  modules in network, if you just want to do new module "
                                  "initialization, select Cancel button to skip it."),
                       "Label1", {});
    note->setWordWrap(true);
    note->setMinimumWidth(fontMetrics().averageCharWidth() * 70);
    auto* comPort = Named(new QLabel(QString("COM%1").arg(session.Line.CurrentPort)), "ComPort", {});
    auto* baudRate = Named(new QLabel(EnabledRates(settings)), "BaudRate", {});
    baudRate->setWordWrap(true);
    hiAddress_ = Named(new QLineEdit("255"), "HiAddress", "Search address range from 0 to");
    hiAddress_->selectAll();
    FilterKeys(*hiAddress_, FilterDigitKey);

    auto* buttons = OkAndCancel(*this, [this] { Guard(messages_, [this] { OKBtn_Click(); }); });

    auto* layout = new QFormLayout(this);
    layout->addRow(note);
    layout->addRow("COM port:", comPort);
    layout->addRow("Search baud rates:", baudRate);
    auto* noRate = new Note("BaudRateNote", *this);
    noRate->Tell(baudRate->text().isEmpty() ? NoRateText : "");
    layout->addRow(noRate);
    layout->addRow("Search &address range from 0 to", hiAddress_);
    layout->addRow(buttons);
    hiAddress_->setFocus();
    CenterForm(*this);
}

void SearchForm::reject() {
    session_.SearchAccepted = 0;
    QDialog::reject();
}

void SearchForm::OKBtn_Click() {
    const auto value = CappedNumber(hiAddress_->text().toStdString());
    if (!value) {
        messages_.Show("Please input a number.", "Error");
        return;
    }
    if (*value > HighestAddress) {
        messages_.Show("Number can not exceed " + std::to_string(HighestAddress) + ".", "Error");
        return;
    }
    session_.SearchHighAddress = static_cast<std::int16_t>(*value);
    session_.SearchAccepted = -1;
    accept();
}

} // namespace kavro
