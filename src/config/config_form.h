#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLayout;
class QLineEdit;
class QVBoxLayout;

namespace kavro {

class Note;

/// What the configuration dialogs share: the module's name, address, baud rate and checksum, OK and Cancel. A
/// dialog adds its own fields between these and turns them into settings in `Apply`.
///
/// OK runs once at a time, under the busy pointer, and closes the dialog, whatever the module answers, unless
/// a setting is refused before anything is sent. The dialog cannot be closed meanwhile.
class ConfigForm : public QDialog {
public:
    /// Cancel, Escape and the close button: `ConfigResult` becomes 2 and nothing is sent.
    void reject() override;

protected:
    /// A dialog for the selected module.
    ConfigForm(const char* name, kavro::Session& session, kavro::Messages& messages, QWidget* parent);

    /// Sends what the fields say; called by OK with the fields of every module read.
    virtual ConfigOutcome Apply(const LinkSettings& link) = 0;

    kavro::Session& Session() const { return session_; }
    kavro::Messages& Messages() const { return messages_; }
    /// The entry being configured.
    int Index() const { return index_; }
    const ModuleRecord& Record() const { return session_.ModuleTable[index_]; }
    /// Whether baud rate and checksum can be changed: only of a module in its initialisation state.
    bool LinkCanChange() const { return index_ == session_.ScanIndex; }

    /// Rows `ModuleName` and `Addr` with `AddressSpin`; `addressLabel` as it stands before the address.
    void AddModuleAndAddress(QFormLayout& rows, const char* addressLabel);
    /// Row `BaudRate`, at the entry's baud code.
    void AddBaudRate(QFormLayout& rows);
    /// Row `ChecksumCombo`, or the box `ChecksumBox` with `text`, at the entry's setting.
    void AddChecksumCombo(QFormLayout& rows);
    void AddChecksumBox(QFormLayout& rows, const char* text);
    /// A row with a list of `items` at `position`; nothing is selected when there is no such item.
    static QComboBox* AddList(QFormLayout& rows, const char* name, const char* label,
                              const QStringList& items, int position);
    /// A row with the list of a polarity: 0 as it is, 1 inverted.
    static QComboBox* AddPolarity(QFormLayout& rows, const char* name, const char* label, int polarity);
    /// A row with `control` behind `label`, whose Alt letter leads to it; with the layout `around` it when it
    /// has company.
    static void AddLabelled(QFormLayout& rows, const char* label, QWidget& control,
                            QLayout* around = nullptr);
    /// A line below the row before, which says what an entry will lead to.
    Note* AddNote(QFormLayout& rows, const char* name);
    /// Leads the user back to an entry that was refused.
    void ReturnTo(const std::optional<RefusedEntry>& refused);
    /// Disables a control of the link when it cannot be changed, with the reason.
    void LimitToInitialisation(QWidget& control) const;
    /// Reads the entry again, believing only what is read well, before its fields are shown. When that fails,
    /// `SettingsNote` says so and OK is not usable.
    void ReadEntry();
    /// Adds OK and Cancel below `fields` and places the dialog.
    void Finish(QVBoxLayout& fields);

private:
    void OKBtn_Click();
    LinkSettings LinkInFields() const;
    void ShowAddressNote();

    kavro::Session& session_;
    kavro::Messages& messages_;
    const int index_;
    QLineEdit* addr_ = nullptr;
    Note* addressNote_ = nullptr;
    QComboBox* baudRate_ = nullptr;
    QComboBox* checksumCombo_ = nullptr; // one of the two
    QCheckBox* checksumBox_ = nullptr;
    bool unread_ = false;  // `ReadEntry` failed
    bool running_ = false; // while the commands of OK run
};

} // namespace kavro
