#include "link/com_port_form.h"

#include "support/form_driver.h"

namespace kavro {
namespace {

class ComPortFormTest : public testing::Test, protected ScriptedSession {
protected:
    ComPortFormTest() {
        EnableBaudCodes(Session, {3, 6});
        TestLine.SettingsOf(1).DataBits = 8;
        Devices.Devices[1] = "/dev/ttyUSB7";
        Devices.Present = {{"/dev/ttyUSB0", "485 adapter", "Maker", "A1", true}};
    }

    ComPortForm& Open() {
        Form = std::make_unique<ComPortForm>(TestLine, Devices, Messages, nullptr);
        Form->show();
        return *Form;
    }

    QString Text(const char* name) { return Find<QLineEdit>(*Form, name).text(); }
    QComboBox& Device(int port) { return Find<QComboBox>(*Form, QString("ComDevice_%1").arg(port)); }
    void Enter(const char* name, const char* text) { Find<QLineEdit>(*Form, name).setText(text); }

    Line& TestLine = Session.Line;
    FakeDevices Devices;
    std::unique_ptr<ComPortForm> Form;
    const ShownMessages Complete = {{"COM Port configuration complete.", ""}};
};

TEST_F(ComPortFormTest, ShowsAndAppliesTheSettings) {
    ComPortForm& form = Open();
    for (const char* control : {"ComOption_1", "ParityOption_0", "BaudCheck_6"})
        EXPECT_TRUE(Find<QAbstractButton>(form, control).isChecked());
    EXPECT_EQ(Find<QAbstractButton>(form, "BaudCheck_6").text(), "115200");
    EXPECT_EQ(Text("Timeout"), "100");
    EXPECT_EQ(Device(1).currentText(), "/dev/ttyUSB7");

    for (const char* control : {"ComOption_2", "ParityOption_2", "BaudCheck_3", "BaudCheck_7"})
        Click(form, control);
    Find<QComboBox>(form, "StopBits").setCurrentIndex(2);
    for (int click = 0; click < 6; ++click)
        Click(form, "DataBitSpin_Down");
    EXPECT_EQ(Text("DataBits"), "4");
    Enter("Timeout", "");
    Type(Find<QLineEdit>(form, "Timeout"), "2e5 0");
    Click(form, "OKBtn");
    EXPECT_EQ(Messages.Shown, Complete);
    // The new port is opened before the old one is closed; the lowest rate checked is applied.
    EXPECT_EQ(Log, (Lines{"COM2 open", "COM1 close", "COM2 state 115200,n,8,1"}));
    EXPECT_EQ(TestLine.CurrentPort, 2);
    EXPECT_EQ(std::tuple(TestLine.ReplyTimeout, TestLine.LongReplyTimeout), std::tuple(250, 1250));
    const PortSettingsRecord& settings = TestLine.SettingsOf(2);
    EXPECT_EQ(settings.BaudEnabled, (std::array<std::int16_t, 9>{0, 0, 0, 0, 0, 0, 1, 1, 0}));
    EXPECT_EQ(std::tuple(settings.Parity, settings.DataBits, settings.StopBits), std::tuple(2, 4, 2));
    EXPECT_EQ(Devices.Saves, 0);
}

TEST_F(ComPortFormTest, ChoosesDevices) {
    Open();
    EXPECT_EQ(Device(1).itemText(0), "/dev/ttyUSB0  (485 adapter, Maker, A1)");
    Device(1).setCurrentIndex(0);
    Device(2).setCurrentText("Simulated line");
    Device(3).setEditText("  /dev/serial/by-id/x ");
    Click(*Form, "OKBtn");
    EXPECT_EQ(Messages.Shown, Complete);
    EXPECT_EQ(Devices.Devices,
              (std::map<int, std::string>{{1, "/dev/ttyUSB0"}, {2, "demo"}, {3, "/dev/serial/by-id/x"}}));
    EXPECT_EQ(Devices.Saves, 1);
}

TEST_F(ComPortFormTest, OffersAndChecksNetworkAddresses) {
    Devices.Chosen = {"rfc2217://plant:4001"};
    Open();
    const auto& note = Find<QLabel>(*Form, "RateNote");
    EXPECT_GE(Device(8).findText("rfc2217://plant:4001"), 0);
    Device(2).setEditText("tcp://plant:4001");
    EXPECT_TRUE(note.text().isEmpty()) << "of another port";
    Click(*Form, "ComOption_2");
    EXPECT_TRUE(note.text().contains("keeps the rate"));
    Device(2).setCurrentText("rfc2217://plant:4001");
    EXPECT_TRUE(note.text().isEmpty());
    Device(3).setEditText("tcp://plant");
    Click(*Form, "OKBtn");
    EXPECT_TRUE(Contains(Messages.Shown.at(0).first, "names no port"));
    EXPECT_TRUE(Form->isVisible() && Devices.Devices.size() == 1);
}

// A failure is told once; as Cancel does it closes the dialog and leaves port, devices and settings as they
// were.
TEST_F(ComPortFormTest, FailureAndCancelLeaveEverythingAsItWas) {
    const std::function<void()> failures[] = {[this] { Port(2).FailOpen = true; },
                                              [this] { Port(2).FailSettings = true; },
                                              [this] { Devices.Refused = "/dev/gone"; },
                                              {}};
    for (const auto& fail : failures) {
        Messages.Shown.clear();
        Port(2).FailOpen = Port(2).FailSettings = false;
        Open();
        Device(1).setEditText("/dev/new");
        Device(2).setEditText("/dev/gone");
        for (const char* control : {"ComOption_2", "BaudCheck_0"})
            Click(*Form, control);
        Enter("Timeout", "500");
        if (fail)
            fail();
        Click(*Form, fail ? "OKBtn" : "CancelBtn");
        ASSERT_EQ(Messages.Shown.size(), fail ? 1U : 0U);
        EXPECT_TRUE(!fail || Messages.Shown[0].second == "Error");
        EXPECT_FALSE(Form->isVisible());
        EXPECT_EQ(std::tuple(TestLine.CurrentPort, TestLine.ReplyTimeout, TestLine.LongReplyTimeout),
                  std::tuple(1, 100, 400));
        EXPECT_EQ(TestLine.SettingsOf(1).BaudEnabled[0], 0);
        EXPECT_EQ(Devices.Device(1), "/dev/ttyUSB7");
        EXPECT_TRUE(Port(1).PortOpen() && !Port(2).PortOpen());
    }
}

// What cannot be applied is told with its limits, and every entry stays for the next OK.
TEST_F(ComPortFormTest, ImpossibleEntriesLoseNothing) {
    TestLine.FileTimeout = 500; // of a start without the adapter
    Open();
    EXPECT_EQ(Text("Timeout"), "500");
    Device(2).setEditText("/dev/new");
    Click(*Form, "ComOption_2");
    Click(*Form, "BaudCheck_0");
    const std::string timeout = "TimeOut must be a number from 100 to 6553, in milliseconds.";
    const std::string dataBits = "Data bits must be a number from 4 to 8.";
    const std::tuple<const char*, const char*, std::string> entries[] = {
        {"Timeout", "", timeout},     {"Timeout", "6554", timeout}, {"Timeout", "9999999999", timeout},
        {"Timeout", "5 00", timeout}, {"DataBits", "", dataBits},   {"DataBits", "99999", dataBits}};
    for (const auto& [control, text, message] : entries) {
        Messages.Shown.clear();
        const QString before = Text(control);
        Enter(control, text);
        Click(*Form, "OKBtn");
        EXPECT_EQ(Messages.Shown, (ShownMessages{{message, "Error"}})) << text;
        EXPECT_TRUE(Form->isVisible());
        EXPECT_EQ(Form->focusWidget()->objectName(), control);
        Enter(control, before.toUtf8());
    }
    EXPECT_EQ(std::tuple(Log, TestLine.CurrentPort, TestLine.ChosenTimeout()), std::tuple(Lines{}, 1, 500));
    Enter("Timeout", "6553");
    Click(*Form, "OKBtn");
    EXPECT_EQ(std::tuple(TestLine.CurrentPort, TestLine.LongReplyTimeout), std::tuple(2, 32765));
    EXPECT_EQ(TestLine.ChosenTimeout(), 6553);
    EXPECT_EQ(TestLine.SettingsOf(2).BaudEnabled[0], 1);
    EXPECT_EQ(Devices.Devices[2], "/dev/new");
}

TEST_F(ComPortFormTest, SaysWhatDoesNotLast) {
    ComPortForm& form = Open();
    for (const char* control : {"ComOption_", "ComDevice_"})
        for (int port = 1; port <= PortTotal; ++port)
            EXPECT_EQ(Find<QWidget>(form, control + QString::number(port)).toolTip().contains("COM1 to COM4"),
                      port > 4);
    for (const char* control : {"ParityOption_0", "ParityOption_2", "DataBits", "StopBits"})
        EXPECT_TRUE(Find<QWidget>(form, control).toolTip().contains("n,8,1")) << control;
}

TEST_F(ComPortFormTest, ServesAPortNumberThatDoesNotExist) {
    TestLine.CurrentPort = 0;
    Open();
    EXPECT_EQ(Text("DataBits"), "8");
    EXPECT_TRUE(Find<QAbstractButton>(*Form, "BaudCheck_3").isChecked());
    Click(*Form, "OKBtn");
    EXPECT_TRUE(Form->isVisible());
    Click(*Form, "ComOption_4");
    Enter("Timeout", "99");
    Click(*Form, "OKBtn");
    EXPECT_EQ(TestLine.CurrentPort, 4);
    EXPECT_EQ(Messages.Shown, (ShownMessages{{"Please choose a COM port.", "Error"},
                                             {"TimeOut Value must greater than or equal to 100.", ""},
                                             Complete[0]}));
    EXPECT_EQ(std::tuple(TestLine.ReplyTimeout, TestLine.LongReplyTimeout), std::tuple(100, 500));
}

} // namespace
} // namespace kavro
