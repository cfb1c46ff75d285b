#pragma once

#include "calib/calibration_record.h"
#include "link/messages.h"
#include "map/session.h"
#include "ui/note.h"

#include <QWidget>

#include <functional>
#include <optional>

class QCheckBox;
class QGridLayout;
class QLineEdit;
class QPlainTextEdit;

namespace kavro {

/// "Keep a record" and, while that is ticked, what the engineer enters for it; with what the last record had.
class RecordBox : public QWidget {
public:
    RecordBox(Session& session, Messages& messages, QWidget* parent = nullptr);

    /// Told whenever the box is ticked or no longer so.
    std::function<void(bool wanted)> Ticked = [](bool) {};

    bool Wanted() const;
    CalibrationEntries Entries() const;
    /// Where the record goes, UTF-8.
    std::string Folder() const;

    /// Before the guide goes on: remembers the entries for next time. False when one of them cannot be used,
    /// which is told beside it; it has the focus then. Always true when no record is wanted.
    bool Accept();

private:
    struct Entry {
        QLineEdit* Line = nullptr;
        Note* Told = nullptr;
    };

    Entry AddEntry(const char* name, const QString& label, const std::string& text,
                   const QString& behind = {});
    void AddNote();
    void AddFolder();
    QString WrongDue() const;
    QString WrongAmbient() const;
    QString WrongTolerance() const;
    QString WrongFolder() const;
    std::optional<double> NumberIn(const Entry& entry) const;
    void TellOfDue() const;
    void Remember();

    Session& session_;
    Messages& messages_;
    QCheckBox* keep_ = nullptr;
    QWidget* panel_ = nullptr;
    QGridLayout* rows_ = nullptr;
    Entry operator_, instrument_, due_, ambient_, tolerance_, folder_;
    QPlainTextEdit* note_ = nullptr;
};

} // namespace kavro
