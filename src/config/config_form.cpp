#include "config/config_form.h"

#include "config/entry_notes.h"
#include "link/baud.h"
#include "link/text.h"
#include "map/module_command.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"
#include "ui/note.h"
#include "ui/ok_cancel.h"
#include "ui/spin_buttons.h"
#include "ui/usable.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* SettingsUnread =
    "The module did not tell its settings, so they cannot be changed. Check that it "
    "is powered, then open this window again.";
constexpr SpinRange AddressRange = {1, 255}; // 0 can be typed, but not stepped to

QStringList BaudItems() {
    return {BaudNames.begin(), BaudNames.end()};
}

std::int32_t AddressIn(const QLineEdit& box) {
    const auto address = CappedNumber(Trim(box.text().toStdString()));
    if (!address)
        throw RuntimeFailure("Enter an address from 0 to 255.");
    return *address;
}

} // namespace

ConfigForm::ConfigForm(const char* name, kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), index_(session.SelectedModule) {
    setObjectName(name);
    setWindowTitle("Configuration");
}

void ConfigForm::AddLabelled(QFormLayout& rows, const char* label, QWidget& control, QLayout* around) {
    auto* text = new QLabel(label);
    text->setBuddy(&control);
    if (around)
        rows.addRow(text, around);
    else
        rows.addRow(text, &control);
}

QComboBox* ConfigForm::AddList(QFormLayout& rows, const char* name, const char* label,
                               const QStringList& items, int position) {
    auto* list = Named(new QComboBox, name, QString(label).remove('&').remove(':'));
    list->addItems(items);
    list->setCurrentIndex(position);
    AddLabelled(rows, label, *list);
    return list;
}

QComboBox* ConfigForm::AddPolarity(QFormLayout& rows, const char* name, const char* label, int polarity) {
    return AddList(rows, name, label, {"Not change", "Change!"}, polarity);
}

void ConfigForm::AddModuleAndAddress(QFormLayout& rows, const char* addressLabel) {
    auto* moduleName = Named(new QLabel(QString::fromStdString(Trim(Record().Model))), "ModuleName", {});
    rows.addRow("Module:", moduleName);
    addr_ = Named(new QLineEdit(QString::number(Record().Address)), "Addr", "Address, decimal");
    FilterKeys(*addr_, FilterDigitKey);
    auto* row = new QHBoxLayout;
    row->addWidget(addr_, 1);
    AddSpinButtons(*row, *addr_, "AddressSpin", AddressRange);
    AddLabelled(rows, addressLabel, *addr_, row);
    addressNote_ = AddNote(rows, "AddrNote");
    connect(addr_, &QLineEdit::textChanged, this, [this] { ShowAddressNote(); });
    ShowAddressNote();
}

void ConfigForm::ShowAddressNote() {
    addressNote_->Tell(QString::fromStdString(AddressNote(session_, index_, addr_->text().toStdString())));
}

Note* ConfigForm::AddNote(QFormLayout& rows, const char* name) {
    auto* note = new Note(name, *this);
    rows.addRow(note);
    return note;
}

void ConfigForm::ReturnTo(const std::optional<RefusedEntry>& refused) {
    if (!refused)
        return;
    auto* control = findChild<QWidget*>(QString::fromStdString(refused->Control));
    control->setFocus();
    if (auto* box = qobject_cast<QLineEdit*>(control))
        box->selectAll();
}

void ConfigForm::AddBaudRate(QFormLayout& rows) {
    baudRate_ = AddList(rows, "BaudRate", "&Baud rate:", BaudItems(), Record().BaudCode);
    LimitToInitialisation(*baudRate_);
}

void ConfigForm::AddChecksumCombo(QFormLayout& rows) {
    checksumCombo_ = AddList(rows, "ChecksumCombo", "&Checksum:", {"Disabled", "Enabled"}, Record().Checksum);
    LimitToInitialisation(*checksumCombo_);
}

void ConfigForm::AddChecksumBox(QFormLayout& rows, const char* text) {
    checksumBox_ = Named(new QCheckBox(text), "ChecksumBox", QString(text).remove('&'));
    checksumBox_->setChecked(Record().Checksum == 1);
    LimitToInitialisation(*checksumBox_);
    rows.addRow(QString(), checksumBox_);
}

void ConfigForm::LimitToInitialisation(QWidget& control) const {
    SetUsable(control, LinkCanChange(),
              "This can be changed only while the module is in its initialisation state. Switch it on in "
              "that state and search again.");
}

void ConfigForm::ReadEntry() {
    const BusyPointer busy;
    unread_ = true; // also when the port fails
    Guard(messages_, [this] { unread_ = !ReadEntryWell(session_, index_); });
}

void ConfigForm::Finish(QVBoxLayout& fields) {
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(&fields);
    layout->addStretch(1);
    layout->addWidget(OkAndCancel(*this, [this] { OKBtn_Click(); }));
    if (unread_) {
        auto* note = new Note("SettingsNote", *this);
        note->Tell(SettingsUnread);
        fields.addWidget(note);
        SetUsable(*findChild<QWidget*>("OKBtn"), false, SettingsUnread);
    }
    addr_->selectAll();
    addr_->setFocus();
    CenterForm(*this);
}

LinkSettings ConfigForm::LinkInFields() const {
    LinkSettings link = LinkSettingsOf(Record());
    link.Address = AddressIn(*addr_);
    // A rate that is not in the list stays as it is.
    if (baudRate_->currentIndex() >= 0)
        link.BaudCode = static_cast<std::int16_t>(baudRate_->currentIndex());
    if (checksumBox_)
        link.Checksum = checksumBox_->isChecked() ? 1 : 0;
    else if (checksumCombo_->currentIndex() >= 0)
        link.Checksum = static_cast<std::int16_t>(checksumCombo_->currentIndex());
    return link;
}

void ConfigForm::OKBtn_Click() {
    if (running_ || unread_)
        return;
    LinkSettings link;
    if (!Guard(messages_, [&] { link = LinkInFields(); })) {
        addr_->setFocus();
        return;
    }
    running_ = true;
    auto outcome =
        ConfigOutcome::Incomplete; // a port that fails closes the dialog, as a refusal by the module does
    {
        const BusyPointer busy;
        Guard(messages_, [&] { outcome = Apply(link); });
    }
    running_ = false;
    if (outcome != ConfigOutcome::Refused)
        accept();
    else
        ReturnTo(RefusedAddress(link));
}

void ConfigForm::reject() {
    if (running_)
        return;
    session_.ConfigResult = 2;
    QDialog::reject();
}

} // namespace kavro
