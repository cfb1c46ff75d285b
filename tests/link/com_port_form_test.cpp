#include "link/com_port_form.h"

#include "support/form_driver.h"
#include "support/test_session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace kavro {
namespace {

struct Dialog {
    Dialog() {
        EnableBaudCodes(Test.Session, {3, 6});
        Test.Session.Line.SettingsOf(1).DataBits = 8;
        Devices.Devices[1] = "/dev/ttyUSB7";
        Devices.Present = {{"/dev/ttyUSB0", "485 adapter", "Maker", "A1", true}};
    }

    ComPortForm& Open() {
        Form = std::make_unique<ComPortForm>(Test.Session.Line, Devices, Test.Messages, nullptr);
        Form->show();
        return *Form;
    }

    ScriptedSession Test;
    FakeDevices Devices;
    std::unique_ptr<ComPortForm> Form;
};

const auto Complete = std::make_pair(std::string("COM Port configuration complete."), std::string());

TEST(ComPortForm, ShowsAndAppliesTheSettings) {
    Dialog dialog;
    ComPortForm& form = dialog.Open();
    EXPECT_TRUE(Find<QRadioButton>(form, "ComOption_1").isChecked());
    EXPECT_TRUE(Find<QRadioButton>(form, "ParityOption_0").isChecked());
    EXPECT_TRUE(Find<QCheckBox>(form, "BaudCheck_6").isChecked());
    EXPECT_EQ(Find<QCheckBox>(form, "BaudCheck_6").text(), "115200");
    EXPECT_EQ(Find<QLineEdit>(form, "Timeout").text(), "100");
    EXPECT_EQ(Find<QComboBox>(form, "ComDevice_1").currentText(), "/dev/ttyUSB7");

    Click(form, "ComOption_2");
    Click(form, "ParityOption_2");
    Click(form, "BaudCheck_3");
    Find<QComboBox>(form, "StopBits").setCurrentIndex(2);
    auto& dataBits = Find<QLineEdit>(form, "DataBits");
    for (int click = 0; click < 6; ++click)
        Click(form, "DataBitSpin_Down");
    EXPECT_EQ(dataBits.text(), "4");
    auto& timeout = Find<QLineEdit>(form, "Timeout");
    timeout.clear();
    Type(timeout, "2e5 0");
    Click(form, "OKBtn");

    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(dialog.Test.Messages.Shown, (std::vector{Complete}));
    // The new port is opened before the old one is closed; the lowest rate checked is applied.
    EXPECT_EQ(dialog.Test.Log, (Lines{"COM2 open", "COM1 close", "COM2 state 115200,n,8,1"}));
    const Line& line = dialog.Test.Session.Line;
    EXPECT_EQ(line.CurrentPort, 2);
    EXPECT_EQ(line.ReplyTimeout, 250);
    EXPECT_EQ(line.LongReplyTimeout, 1250);
    EXPECT_EQ(line.SettingsOf(2).Parity, 2);
    EXPECT_EQ(line.SettingsOf(2).DataBits, 4);
    EXPECT_EQ(line.SettingsOf(2).StopBits, 2);
    EXPECT_EQ(dialog.Devices.Saves, 0);
}

TEST(ComPortForm, CancelChangesNothing) {
    Dialog dialog;
    ComPortForm& form = dialog.Open();
    Click(form, "ComOption_3");
    Click(form, "BaudCheck_0");
    Find<QLineEdit>(form, "Timeout").setText("500");
    Find<QComboBox>(form, "ComDevice_3").setEditText("/dev/other");
    Click(form, "CancelBtn");
    EXPECT_TRUE(dialog.Test.Log.empty());
    EXPECT_EQ(dialog.Test.Session.Line.CurrentPort, 1);
    EXPECT_EQ(dialog.Test.Session.Line.ReplyTimeout, 100);
    EXPECT_EQ(dialog.Test.Session.Line.SettingsOf(1).BaudEnabled[0], 0);
    EXPECT_EQ(dialog.Devices.Device(3), "/dev/none3");
}

TEST(ComPortForm, ChoosesDevices) {
    Dialog dialog;
    ComPortForm& form = dialog.Open();
    auto& first = Find<QComboBox>(form, "ComDevice_1");
    EXPECT_EQ(first.itemText(0), "/dev/ttyUSB0  (485 adapter, Maker, A1)");
    first.setCurrentIndex(0);
    Find<QComboBox>(form, "ComDevice_2").setCurrentText("Simulated line");
    Find<QComboBox>(form, "ComDevice_3").setEditText("  /dev/serial/by-id/x ");
    Click(form, "OKBtn");
    EXPECT_EQ(dialog.Test.Messages.Shown, (std::vector{Complete}));
    EXPECT_EQ(dialog.Devices.Device(1), "/dev/ttyUSB0");
    EXPECT_EQ(dialog.Devices.Device(2), "demo");
    EXPECT_EQ(dialog.Devices.Device(3), "/dev/serial/by-id/x");
    EXPECT_EQ(dialog.Devices.Saves, 1);
}

// A failure is told once, closes the dialog and leaves port, devices and time-outs as they were.
TEST(ComPortForm, FailureLeavesEverythingAsItWas) {
    const std::function<void(Dialog&, ComPortForm&)> failures[] = {
        [](Dialog& dialog, ComPortForm& form) {
            dialog.Test.Port(2).FailOpen = true;
            Click(form, "ComOption_2");
        },
        [](Dialog& dialog, ComPortForm& form) {
            dialog.Devices.Refused = "/dev/gone";
            Find<QComboBox>(form, "ComDevice_2").setEditText("/dev/gone");
            Click(form, "ComOption_2");
        },
        [](Dialog&, ComPortForm& form) { Find<QLineEdit>(form, "Timeout").clear(); },
        [](Dialog&, ComPortForm& form) { Find<QLineEdit>(form, "Timeout").setText("6554"); },
        [](Dialog&, ComPortForm& form) { Find<QLineEdit>(form, "DataBits").setText("99999"); },
    };
    for (const auto& fail : failures) {
        Dialog dialog;
        ComPortForm& form = dialog.Open();
        Find<QComboBox>(form, "ComDevice_1").setEditText("/dev/new");
        fail(dialog, form);
        Click(form, "OKBtn");
        ASSERT_EQ(dialog.Test.Messages.Shown.size(), 1u);
        EXPECT_EQ(dialog.Test.Messages.Shown[0].second, "Error");
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(dialog.Test.Session.Line.CurrentPort, 1);
        EXPECT_EQ(dialog.Test.Session.Line.ReplyTimeout, 100);
        EXPECT_EQ(dialog.Test.Session.Line.LongReplyTimeout, 400);
        EXPECT_EQ(dialog.Devices.Device(1), "/dev/ttyUSB7");
        EXPECT_TRUE(dialog.Test.Port(1).PortOpen());
    }
}

TEST(ComPortForm, ServesAPortNumberThatDoesNotExist) {
    Dialog dialog;
    dialog.Test.Session.Line.CurrentPort = 0;
    dialog.Test.Session.Line.CommPort(1).PortOpen(false);
    ComPortForm& form = dialog.Open();
    Click(form, "OKBtn");
    EXPECT_TRUE(form.isVisible());
    Click(form, "ComOption_4");
    Find<QLineEdit>(form, "Timeout").setText("99");
    Click(form, "OKBtn");
    EXPECT_EQ(dialog.Test.Session.Line.CurrentPort, 4);
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"Please choose a COM port.", "Error"},
        {"TimeOut Value must greater than or equal to 100.", ""},
        Complete};
    EXPECT_EQ(dialog.Test.Messages.Shown, expected);
    EXPECT_EQ(dialog.Test.Session.Line.ReplyTimeout, 100);
    EXPECT_EQ(dialog.Test.Session.Line.LongReplyTimeout, 500);
}

} // namespace
} // namespace kavro
