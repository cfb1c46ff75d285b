#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

class QLineEdit;

namespace kavro {

/// Asks for the address range of a search and shows what will be searched. Leaves `SearchAccepted` and
/// `SearchHighAddress` in the session.
class SearchForm : public QDialog {
public:
    SearchForm(Session& session, Messages& messages, QWidget* parent);

    void reject() override; // Cancel, Escape and the close button

private:
    void OKBtn_Click();

    Session& session_;
    Messages& messages_;
    QLineEdit* hiAddress_ = nullptr;
};

} // namespace kavro
