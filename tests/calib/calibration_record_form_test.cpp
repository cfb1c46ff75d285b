#include "calib/calib_session.h"
#include "calib/keep_record_form.h"
#include "calib/record_box_form.h"
#include "calib/record_example.h"
#include "calib/record_html.h"
#include "link/json_reader.h"
#include "pdf/html_pdf.h"
#include "ports/replace_file.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QCheckBox>
#include <QDate>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace kavro {
namespace {

struct RecordForms : testing::Test, CalibSession {
    RecordForms() : CalibSession("8250", 5, 8) {
        Session.ReplaceFile = [this](const std::string& path, const std::string& content) {
            if (Full || (NoJson && path.ends_with(".json")))
                throw RuntimeFailure("The disk is full.");
            ReplaceFile(path, content);
        };
        Title = "TT-100_05_" + QDate::currentDate().toString(Qt::ISODate).toStdString();
        Name = Disk.Path(Title);
    }

    std::string Keep(std::vector<DialogDriver::Step> steps = {}, const std::string& folder = {}) {
        Session.Note.clear();
        DialogDriver driver(std::move(steps));
        KeepRecord(Session, Messages, folder.empty() ? Disk.Path() : folder, ExampleRecord(), nullptr);
        EXPECT_TRUE(driver.Finished());
        return Session.Note;
    }

    static DialogDriver::Step Press(const char* button) {
        return {"RecordQuestion", [button](QDialog& box) { Click(box, button); }};
    }

    TestFolder Disk;
    bool Full = false, NoJson = false;
    std::string Title, Name;
};

TEST_F(RecordForms, SavesBothFilesAndTheHistory) {
    Lines history;
    Session.Tags.Path = "line";
    Session.Tags.Modules[5].Model = "8250";
    Session.Tags.AppendHistory = [&](std::int16_t address, const std::string& model,
                                     const std::string& json) {
        if (!history.empty())
            throw RuntimeFailure("The disk is full.");
        history.push_back(std::to_string(address) + model + ReadJson(json).Member("operator")->Text);
    };
    EXPECT_EQ(Keep(), "Calibration record saved as " + Title + ".pdf and .json.");
    EXPECT_EQ(history, Lines{"58250J. Doe"});
    EXPECT_TRUE(Messages.Shown.empty());
    EXPECT_TRUE(Contains(Keep(), " " + Title + "-2.pdf"));
    EXPECT_TRUE(std::filesystem::exists(Name + "-2.json"));
    EXPECT_EQ(Messages.Shown.size(), 1U);
    Session.Tags.Modules[5].Model = "8260"; // another module stands there now
    Keep();
    EXPECT_EQ(Messages.Shown.size(), 1U);
}

TEST_F(RecordForms, AsksWhatToDoWhenItCannotBeSaved) {
    Session.Tags.Path = "line";
    Session.Tags.Modules[5].Model = "8250";
    Session.Tags.AppendHistory = [](auto...) { FAIL() << "discarded"; };
    NoJson = true;
    EXPECT_EQ(Keep({Press("DiscardBtn")}), "The record of the calibration was discarded.");
    EXPECT_FALSE(std::filesystem::exists(Name + ".pdf"));
    Full = true;
    EXPECT_EQ(Keep({Press("TryAgainBtn"), Press("DiscardBtn")}),
              "The record of the calibration was discarded.");
    NoJson = false;
    Session.Tags.Path.clear();
    EXPECT_TRUE(Contains(Keep({Press("TryAgainBtn"),
                               {"RecordQuestion",
                                [&](QDialog& box) {
                                    Full = false;
                                    box.reject(); // as the end of the program does
                                }}}),
                         "saved as " + Title + ".pdf"));
    const std::string file = Disk.Write("file", "x");
    std::filesystem::create_directory(Disk.Path("other"));
    EXPECT_TRUE(
        Contains(Keep({Press("OtherFolderBtn"),
                       {"FolderDialog", [&](QDialog& chooser) { chooser.reject(); }},
                       Press("OtherFolderBtn"),
                       {"FolderDialog",
                        [&](QDialog& chooser) {
                            Find<QLineEdit>(chooser, "fileNameEdit").setText(Disk.Path("other").c_str());
                            chooser.accept();
                        }}},
                      file),
                 "saved as TT-100_05_"));
    EXPECT_TRUE(std::filesystem::exists(Disk.Path("other/" + Title + ".json")));
}

// As when the system ends the program in the middle of a calibration.
TEST_F(RecordForms, AsksNobodyWhenTheProgramEnds) {
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", Disk.Path("home").c_str());
    Session.Ending = true;
    EXPECT_EQ(Keep(), "") << "only what went wrong is told";
    const std::string told = Keep({}, Disk.Write("file", "x"));
    EXPECT_TRUE(Contains(told, "home/TT-100_05_") && Contains(told, "cannot be saved")) << told;
    qputenv("HOME", home);
}

TEST(RecordPage, IsOneWhateverTheRecordHas) {
    CalibrationRecord record = ExampleRecord();
    record.Aborted = true;
    const auto fits = [&] {
        for (const RecordFit& fit : RecordFits)
            if (PdfPageOfHtml(RecordHtml(record, fit)))
                return fit.Characters;
        return std::size_t{0};
    };
    EXPECT_EQ(fits(), RecordFits[0].Characters);
    const std::string words(5000, 'W'); // without a blank to break a line at
    for (std::string* text : {&record.Tag, &record.Range, &record.LeftAs, &record.Entries.Operator,
                              &record.Entries.Instrument, &record.Entries.Note})
        *text = words;
    record.Entries.Note = std::string(500, '\n') + words;
    for (int i = 0; i < 200; ++i)
        record.Points.push_back({"20 mA", -123456.654321, "ohms", 123456.654321, 0.000001, "module", true});
    EXPECT_GT(fits(), 0U);
}

TEST_F(RecordForms, EntriesAreCheckedAndRemembered) {
    Session.DecimalSeparator = ",";
    Session.UserName = "J. Doe";
    Lines saved;
    Session.SavePreferences = [&](const Preferences& preferences) {
        saved.push_back(preferences.Record.Operator);
        throw RuntimeFailure("The disk is full.");
    };
    QWidget window;
    QVBoxLayout layout(&window);
    auto* box = new RecordBox(Session, Messages);
    layout.addWidget(box);
    window.show();
    bool ticked = false;
    box->Ticked = [&](bool wanted) { ticked = wanted; };
    EXPECT_TRUE(box->Accept() && !box->Wanted() && !Find<QWidget>(window, "RecordPanel").isVisible());
    Find<QCheckBox>(window, "KeepRecord").click();
    EXPECT_TRUE(ticked && box->Wanted());
    const auto set = [&](const char* name, const std::string& text) {
        Find<QLineEdit>(window, name).setText(text.c_str());
    };
    set("RecordFolder", Disk.Path());
    const std::tuple<const char*, std::string, std::string, bool> cases[] = {
        {"InstrumentDue", "31.3.2027", "2999-12-31", false},
        {"InstrumentDue", "2026-02-30", "2001-02-28", true}, // past: told, and taken
        {"Ambient", "warm", "-3,5", false},
        {"Ambient", "1000", "", false},
        {"Tolerance", "0", "0,25", false},
        {"Tolerance", "", "0.5", false},
        {"RecordFolder", Disk.Write("file", "x"), Disk.Path("new"), false},
        {"RecordFolder", "", Disk.Path(), false}};
    for (const auto& [name, wrong, right, told] : cases) {
        const auto& note = Find<QLabel>(window, QString(name) + "Note");
        set(name, wrong);
        EXPECT_FALSE(box->Accept()) << wrong;
        EXPECT_TRUE(note.isVisible() && window.focusWidget()->objectName() == name) << wrong;
        set(name, right);
        EXPECT_EQ(note.isVisible(), told) << right;
        EXPECT_TRUE(box->Accept()) << right;
    }
    EXPECT_FALSE(saved.empty());
    EXPECT_EQ(Messages.Shown.size(), saved.size()); // each told, and in nobody's way
    const RecordPreferences& record = Session.Preferences.Record;
    EXPECT_EQ(std::tuple(record.Operator, record.InstrumentDue, record.TolerancePercent, record.Folder),
              std::tuple(std::string("J. Doe"), std::string("2001-02-28"), 0.5, Disk.Path()));
    set("Ambient", "21,5");
    EXPECT_EQ(box->Entries().Ambient, "21.5");
}

} // namespace
} // namespace kavro
