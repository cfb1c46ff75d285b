#include "support/form_driver.h"
#include "terminal/batch_file.h"
#include "terminal/disp_batch_form.h"
#include "terminal/repeat_cmd_form.h"
#include "terminal/repeat_form.h"
#include "terminal/test_folder.h"

#include <QPlainTextEdit>

namespace kavro {
namespace {

TEST(RepeatForms, CheckTheNumber) {
    ScriptedSession test;
    const auto check = [&](QDialog& form, const std::int16_t& result) {
        auto& times = Find<QLineEdit>(form, "RepeatTimes");
        const auto accepts = [&](const char* text) {
            form.show();
            times.setText(text);
            Click(form, "OKBtn");
            return !form.isVisible();
        };
        for (const char* wrong : {"", " ", "32768", "-1", "x"})
            EXPECT_FALSE(accepts(wrong)) << wrong;
        for (const char* right : {"0", "32767"})
            EXPECT_TRUE(accepts(right) && std::to_string(result) == right) << right;
        times.setText("2");
        for (const auto& [button, text] :
             {std::pair("TimesSpin_Down", "1"), {"TimesSpin_Down", "1"}, {"TimesSpin_Up", "2"}}) {
            Click(form, button);
            EXPECT_EQ(times.text(), text);
        }
        test.Session.RepeatCommandCount = 5;
        form.show();
        form.close(); // as Cancel
        EXPECT_EQ(test.Session.RepeatCommandCount, 0);
    };
    test.Session.RepeatCommandText = FixedText("$012", RepeatCommandWidth);
    RepeatCmdForm command(test.Session, test.Messages, nullptr);
    EXPECT_EQ(Find<QLineEdit>(command, "RepeatCmd").text(), "$012");
    check(command, test.Session.RepeatCommandCount);
    RepeatForm batch(test.Session, test.Messages, nullptr);
    check(batch, test.Session.BatchRepeatCount);
    EXPECT_EQ(test.Session.BatchRepeatCount, 32767); // Cancel does not touch it
    EXPECT_EQ(test.Messages.Shown.size(), 10u);
}

TEST(DispBatchForm, ShowsEveryLine) {
    const TestFolder folder;
    RecordedMessages messages;
    constexpr int Count = 100000;
    std::string text = "\x80\n\n";
    for (int i = 2; i < Count; ++i)
        text += "$" + std::to_string(i) + "\r\n";
    BatchFile file;
    file.Open(folder.Write("large", text));
    DispBatchForm form(file, messages, nullptr);
    auto& content = Find<QPlainTextEdit>(form, "BatchContent");
    QApplication::processEvents();
    EXPECT_TRUE(content.toPlainText().startsWith("<80>\n\n$2\n")); // at once
    EXPECT_FALSE(file.AtEnd());                                    // the rest comes while the form is used
    while (!file.AtEnd())
        QApplication::processEvents();
    QApplication::processEvents();
    EXPECT_EQ(content.document()->blockCount(), Count + 1);
    EXPECT_TRUE(content.toPlainText().endsWith("\n$99999\n"));
}

} // namespace
} // namespace kavro
