#include "project/report_form.h"

#include "pdf/html_pdf.h"
#include "ports/replace_file.h"
#include "support/form_driver.h"
#include "support/full_disk.h"

#include <QMessageBox>

namespace kavro {
namespace {

constexpr const char* File = R"({"format": "kavro-line", "version": 1, "name": "Hall", "modules": [
  {"address": 5, "model": "8250", "settings": {"baud": 9600}}]})";

TEST(PdfOfHtml, KeepsPartsTogetherAndNumbersPages) {
    std::string html = "<html><head><title>Hall</title></head><body><h1>One</h1>";
    for (int part = 0; part < 5; ++part) {
        html += "<h2>Part</h2>";
        for (int line = 0; line < 30; ++line) // two parts fit neither on a page
            html += "<p>line</p>";
    }
    const std::string pdf = PdfOfHtml(html + "</body></html>");
    EXPECT_TRUE(pdf.starts_with("%PDF"));
    EXPECT_NE(pdf.find("/Count 5"), std::string::npos);
}

TEST(ReportForm, SavesBothKindsAndTellsWhatWentWrong) {
    SimulatedSession test;
    test.Session.ReplaceFile = ReplaceFile;
    FullDisk disk;
    const std::string file = disk.Write("hall.kavro.json", File);
    ReportForm form(test.Session, test.Messages, {.Path = file, .Port = "COM1: x", .Person = "J. Doe"},
                    nullptr);
    form.show();
    const auto save = [&](const char* button, const std::string& name) {
        std::vector<DialogDriver::Step> steps = {
            {"SaveDialog", [&](QDialog& dialog) {
                 Find<QLineEdit>(dialog, "fileNameEdit").setText(disk.Path(name).c_str());
                 dialog.accept();
             }}};
        if (!disk.Read(name).empty())
            steps.push_back({"", [](QDialog& replace) {
                                 static_cast<QMessageBox&>(replace).button(QMessageBox::Yes)->click();
                             }});
        DialogDriver driver(steps);
        Click(form, button);
        return disk.Read(name);
    };
    EXPECT_TRUE(Contains(save("SaveHtmlBtn", "a.html"), "J. Doe"));
    EXPECT_TRUE(Contains(Find<QLabel>(form, "Saved").text().toStdString(), "a.html"));
    const std::string pdf = save("SavePdfBtn", "a.pdf");
    EXPECT_NE(pdf.find("/Count 3"), std::string::npos);
    EXPECT_TRUE(test.Messages.Shown.empty());
    disk.Fill();
    EXPECT_TRUE(save("SavePdfBtn", "a.pdf") == pdf) << "never half a file";
    disk.MakeRoom();
    Find<QLineEdit>(form, "LineCheck").setText(file.c_str());
    Click(form, "SaveHtmlBtn");
    ASSERT_EQ(test.Messages.Shown.size(), 2U);
    EXPECT_TRUE(Contains(test.Messages.Shown[0].first, disk.Reason()));
    EXPECT_TRUE(Contains(test.Messages.Shown[1].first, "this is no line check"));
    EXPECT_TRUE(form.isVisible());
}

} // namespace
} // namespace kavro
