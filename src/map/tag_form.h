#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

#include <vector>

class QLineEdit;
class QPlainTextEdit;
class QTableWidget;

namespace kavro {

/// Edits tag and note of a module and of its channels. OK keeps them in the line file; a failure is told, and
/// what was typed stays.
class TagForm : public QDialog {
public:
    /// For entry `index`, which the line file has.
    TagForm(Session& session, Messages& messages, int index, QWidget* parent);

private:
    QWidget* BuildChannels(const ModuleTags& tags);
    void FillChannels(const ModuleTags& tags);
    ModuleTags Entered() const;
    void OKBtn_Click();

    Session& session_;
    Messages& messages_;
    std::int16_t address_;
    ModuleTags before_;         // as it is read from the untouched controls
    std::vector<int> channels_; // number of each row of the table
    QLineEdit* tag_ = nullptr;
    QPlainTextEdit* note_ = nullptr;
    QTableWidget* table_ = nullptr; // none for a module without channels
};

/// Lets the user edit the tags of entry `index` over `parent`. Where there can be none, as no line file is
/// open or it does not have the module, tells what to do instead.
void EditTags(Session& session, Messages& messages, int index, QWidget* parent);

} // namespace kavro
