#include "map/search_form.h"

#include "link/baud.h"
#include "link/text.h"
#include "ui/center_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;

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
    const std::string text = hiAddress_->text().toStdString();
    const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (text.empty() || !digits) {
        messages_.Show("Please input a number.", "Error");
        return;
    }
    const int value = hiAddress_->text().toInt(); // 0 with more digits than any number has
    if (value > HighestAddress || text.size() > 9) {
        messages_.Show("Number can not exceed " + std::to_string(HighestAddress) + ".", "Error");
        return;
    }
    session_.SearchHighAddress = static_cast<std::int16_t>(value);
    session_.SearchAccepted = -1;
    accept();
}

} // namespace kavro
