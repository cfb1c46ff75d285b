#pragma once

#include "link/baud_checks_form.h"
#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLayout;
class QLineEdit;

namespace kavro {

class Note;

/// Asks for the address range, the baud rates and the way of a search, and shows how long it will take.
/// Leaves `SearchAccepted`, and when it is accepted `SearchHighAddress`, the rates of the port in use and
/// `Preferences`, in the session.
class SearchForm : public QDialog {
public:
    /// `rateIsFixed`: the device of the port keeps its own baud rate.
    SearchForm(Session& session, Messages& messages, QWidget* parent, bool rateIsFixed = false);

    void reject() override; // Cancel, Escape and the close button

private:
    QGroupBox* BuildBaudChecks();
    QLayout* BuildAnswerWithin();
    void Fill();
    void ShowChoice();
    bool Fast() const;
    std::array<std::int16_t, 9> Rates() const;
    std::optional<std::int16_t> Highest() const;
    std::optional<std::int16_t> AnswerWithin() const;
    std::string TimeTaken() const;
    bool CheckEntries();
    void Keep(const Preferences& preferences);
    void OKBtn_Click();

    Session& session_;
    Messages& messages_;
    bool rateIsFixed_;
    QLabel* baudRate_ = nullptr;
    BaudChecks baudCheck_{};
    Note* rateNote_ = nullptr;
    QLineEdit* hiAddress_ = nullptr;
    QCheckBox* fastSearch_ = nullptr;
    QWidget* answerRow_ = nullptr;
    QLineEdit* answerWithin_ = nullptr;
    QLabel* searchTime_ = nullptr;
};

} // namespace kavro
