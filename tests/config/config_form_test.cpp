#include "config/ad_config_form.h"
#include "config/da_config_form.h"
#include "config/dio_config_form.h"
#include "config/module_on_line.h"
#include "config/n46_config_form.h"
#include "support/form_driver.h"

#include <QAbstractButton>
#include <QComboBox>

namespace kavro {
namespace {

QComboBox& List(QObject& form, const char* name) {
    return Find<QComboBox>(form, name);
}

TEST(AdConfigForm, ShowsAndSends) {
    // Of two ranges of one name the first is selected; code 07 has no name.
    ModuleOnLine twice({.Model = "8260  ", .InputRange = 0x0A});
    AdConfigForm unchanged(twice.Session, twice.Messages);
    EXPECT_EQ(List(unchanged, "InputRange").findText(""), -1);
    Click(unchanged, "OKBtn");
    EXPECT_EQ(twice.Sent, (Lines{"$016", "%0101040600", "$015FF"}));

    ModuleOnLine test({.Model = "8230  ", .DataFormat = 3, .InputRange = 0x2A});
    AdConfigForm form(test.Session, test.Messages);
    EXPECT_EQ(List(form, "InputRange").currentText(), "Cu, 0~60 ohms");
    EXPECT_EQ(List(form, "DataFormat").currentText(), "Ohms");
    for (int channel = 0; channel < 8; ++channel) {
        const auto& enable = Find<QAbstractButton>(form, QString("ChannelEnable_%1").arg(channel));
        EXPECT_EQ(enable.isChecked(), channel < 3);
        EXPECT_EQ(enable.isEnabled(), channel < 3);
        EXPECT_EQ(enable.toolTip().isEmpty(), channel < 3);
    }
    Click(form, "ChannelDisable_1");
    List(form, "DataFormat").setCurrentIndex(0);
    Click(form, "OKBtn");
    EXPECT_EQ(test.Sent, (Lines{"$016", "%01012A0600", "$01505"}));
    EXPECT_EQ(form.result(), QDialog::Accepted);
}

TEST(DaConfigForm, PolarityOfThe8320Only) {
    ModuleOnLine current({.Model = "8310  ", .DataFormat = 2, .InputRange = 0x31, .Digital = {1}});
    ModuleOnLine voltage({.Model = "8320  ", .InputRange = 0x33});
    DaConfigForm without(current.Session, current.Messages), with(voltage.Session, voltage.Messages);
    without.show();
    with.show();
    EXPECT_FALSE(List(without, "InputPolarity").isVisible());
    EXPECT_TRUE(List(with, "InputPolarity").isVisible());
    EXPECT_LT(without.height(), with.height());
    EXPECT_EQ(List(without, "OutputRange").currentText(), "4 to 20mA");
    EXPECT_EQ(List(without, "DataFormat").currentText(), "Two's complement");
    Click(without, "OKBtn");
    EXPECT_EQ(current.Sent, Lines{});
    List(with, "InputPolarity").setCurrentIndex(1);
    Click(with, "OKBtn");
    EXPECT_EQ(voltage.Sent, Lines{"~01CP01"});
    EXPECT_EQ(voltage.Messages.Shown, ShownMessages{});
}

TEST(DioConfigForm, LinkOfAModuleInItsInitialisationStateOnly) {
    ModuleOnLine test({.Model = "8410  ", .Digital = {2}});
    for (const bool initialising : {false, true}) {
        test.Session.ScanIndex = initialising ? 0 : -1;
        test.Module.Settings.Initialisation = initialising;
        DioConfigForm form(test.Session, test.Messages);
        for (const char* name : {"BaudRate", "ChecksumBox"}) {
            EXPECT_EQ(Find<QWidget>(form, name).isEnabled(), initialising);
            EXPECT_EQ(Find<QWidget>(form, name).toolTip().isEmpty(), initialising);
        }
        EXPECT_EQ(List(form, "OutputPolarity").currentIndex(), 1);
        Find<QAbstractButton>(form, "ChecksumBox").setChecked(initialising);
        List(form, "InputPolarity").setCurrentIndex(1);
        Click(form, "OKBtn");
    }
    EXPECT_EQ(test.Sent, (Lines{"~01CP11", "%0001400640"}));
}

TEST(N46ConfigForm, ShowsAndSends) {
    ModuleOnLine test({.Model = "8460  "});
    ASSERT_EQ(test.Session.Line.Exchange("$01S03", 0, 3, 400), true);
    N46ConfigForm form(test.Session, test.Messages);
    for (int port = 0; port < 4; ++port)
        EXPECT_EQ(Find<QAbstractButton>(form, QString("PortInput_%1").arg(port)).isChecked(), port >= 2);
    Click(form, "PortInput_0");
    Click(form, "PortOutput_3");
    test.Sent.clear();
    Click(form, "OKBtn");
    EXPECT_EQ(test.Sent, Lines{"$01S0A"});
}

TEST(ConfigForm, AddressAndCancel) {
    ModuleOnLine test({.Model = "8410  "});
    DioConfigForm form(test.Session, test.Messages);
    auto& address = Find<QLineEdit>(form, "Addr");
    const std::tuple<const char*, const char*, const char*> steps[] = {{"255", "_Up", "255"},
                                                                       {"254", "_Up", "255"},
                                                                       {"2", "_Down", "1"},
                                                                       {"1", "_Down", "1"},
                                                                       {"0", "_Up", "1"}};
    for (const auto& [before, button, after] : steps) {
        address.setText(before);
        Click(form, QString("AddressSpin") + button);
        EXPECT_EQ(address.text(), after);
    }
    address.clear();
    Type(address, "x-");
    form.show();
    for (const char* text : {"", "256", "99999999999"}) {
        address.setText(text);
        Click(form, "OKBtn");
    }
    const std::string tooHigh = "Address can not exceed 255.";
    EXPECT_EQ(test.Messages.Shown,
              (ShownMessages{
                  {"Enter an address from 0 to 255.", "Error"}, {tooHigh, "Error"}, {tooHigh, "Error"}}));
    EXPECT_TRUE(form.isVisible());
    test.Session.ConfigResult = 1;
    Click(form, "CancelBtn");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(test.Session.ConfigResult, 2);
    EXPECT_EQ(test.Sent, Lines{});
}

/// Messages that let the user act on the dialog while they are up.
struct ImpatientMessages : RecordedMessages {
    void Show(const std::string& text, const std::string& title) override {
        RecordedMessages::Show(text, title);
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        Click(*Form, "OKBtn");
        Click(*Form, "CancelBtn");
    }
    QDialog* Form = nullptr;
};

TEST(ConfigForm, NothingRunsTwiceAndALostPortIsOneMessage) {
    for (const bool lost : {false, true}) {
        ModuleOnLine test({.Model = "8410  "});
        ImpatientMessages messages;
        DioConfigForm form(test.Session, messages);
        messages.Form = &form;
        test.UnplugAt = lost ? 2 : 0;
        Find<QLineEdit>(form, "Addr").setText("2");
        List(form, "InputPolarity").setCurrentIndex(1);
        Click(form, "OKBtn");
        EXPECT_EQ(test.Sent, (Lines{"%0102400600", "~02CP01"}));
        ASSERT_EQ(messages.Shown.size(), lost ? 2U : 1U);
        EXPECT_EQ(messages.Shown.front(), CompleteMessage);
        EXPECT_EQ(form.result(), QDialog::Accepted);
        EXPECT_EQ(test.Session.ConfigResult, 1);
        EXPECT_EQ(test.Record.Digital.Polarity, lost ? 0 : 1);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
}

} // namespace
} // namespace kavro
