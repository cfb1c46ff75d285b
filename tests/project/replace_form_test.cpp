#include "project/replace_form.h"

#include "project/open_line_file.h"
#include "sim/module_factory.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QTableWidget>

namespace kavro {
namespace {

// A line file of two modules, of which the second is dead, and a new one in its initialisation state.
struct Cabinet : SimulatedSession {
    Cabinet() : New(Line.Add(MakeModule(FactorySettings("8410")))) {
        Line.Add(MakeModule("8250", 2));
        New.PowerUp(PowerOn::Initialising);
        Session.ModuleCount = 0;
        Session.Tags.Path = Folder.Write("a", R"({"format":"kavro-line","version":1,"modules":[
            {"address":2,"model":"8250","settings":{"baud":9600,"checksum":false}},
            {"address":5,"model":"8410","settings":{"baud":19200,"checksum":true,"input-polarity":"inverted"}}]})");
        Form = std::make_unique<ReplaceForm>(Session, Messages, nullptr);
        Form->show();
        Line.Log = [this](const LineEvent& event) {
            if (Act && event.Command.starts_with(At))
                std::exchange(Act, {})();
        };
        Await([this] { return Find<QTableWidget>(*Form, "Modules").selectedItems().size() > 0; });
    }

    // Lets the form live until something holds.
    void Await(const std::function<bool()>& holds) {
        QElapsedTimer since;
        for (since.start(); since.elapsed() < 10000 && !holds();)
            QApplication::processEvents();
        EXPECT_TRUE(holds());
    }

    std::string Text(const char* label) { return Find<QLabel>(*Form, label).text().toStdString(); }

    // Through the steps up to that one.
    void GoTo(int step) {
        for (int next = Text("StepNo")[5] - '0' + 1; next <= step; ++next) {
            Await([this] { return Find<QWidget>(*Form, "NextBtn").isEnabled(); });
            Click(*Form, "NextBtn");
            Await([&] { return Contains(Text("StepNo"), "Step " + std::to_string(next)); });
        }
    }

    const TestFolder Folder;
    SimulatedModule& New;
    std::string At = "none";
    std::function<void()> Act;
    std::unique_ptr<ReplaceForm> Form;
};

TEST(ReplaceForm, GuidesToAModuleInItsPlace) {
    Cabinet test;
    test.GoTo(3);
    EXPECT_EQ(Find<QTableWidget>(*test.Form, "Settings").rowCount(), 4);
    test.GoTo(4);
    test.Await([&] { return bool(Contains(test.Text("Status"), "still in its initialisation state")); });
    test.Line.Unplug();
    for (int looks = 0; looks < 2; ++looks) {
        Find<QTimer>(*test.Form, "LookTimer").start(0);
        test.Await([&] { return Find<QTimer>(*test.Form, "LookTimer").interval() > 0; });
    }
    EXPECT_EQ(test.Messages.Shown.size(), 1U) << "told once";
    test.Line.Plug();
    test.New.PowerUp();
    Find<QTimer>(*test.Form, "LookTimer").start(0);
    test.Await([&] { return bool(Contains(test.Text("StepNo"), "Step 5")); });
    EXPECT_TRUE(Contains(test.Text("GuideText"), "Every setting is as in the file. The calibration"));
    EXPECT_EQ(test.Session.ModuleCount, 1);
    EXPECT_TRUE(Contains(test.Session.Device.at(0), "19200"));
}

TEST(ReplaceForm, IsLeftAtEachStepWithTheStateTold) {
    const std::tuple<int, const char*, const char*> cases[] = {
        {1, "", ""}, {2, "", ""}, {3, "", ""}, {3, "~00CP", "may have some"}, {4, "", "has every setting"}};
    for (const auto& [step, during, note] : cases) {
        Cabinet test;
        test.GoTo(step);
        test.At = during;
        if (*during) {
            test.Act = [&] {
                test.Form->close();
                EXPECT_TRUE(test.Form->isVisible()) << "until the work has ended";
            };
            Click(*test.Form, "NextBtn");
        } else {
            test.Form->close();
        }
        test.Await([&] { return !test.Form->isVisible(); });
        EXPECT_TRUE(Contains(test.Session.Note, note));
        EXPECT_EQ(test.Session.Note.empty(), *note == '\0') << step;
        EXPECT_EQ(test.New.Settings.Address, step == 4 ? 5 : 1);
    }
}

} // namespace
} // namespace kavro
