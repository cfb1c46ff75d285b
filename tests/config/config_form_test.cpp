#include "config/module_on_line.h"

namespace kavro {
namespace {

QComboBox& List(QObject& form, const char* name) {
    return Find<QComboBox>(form, name);
}

TEST(AdConfigForm, OffersWhatTheModelHas) {
    // Of two ranges of one name the first is selected; code 07 has no name.
    ModuleOnLine twice({.Model = "8260  ", .InputRange = 0x0A});
    AdConfigForm unchanged(twice.Session, twice.Messages);
    EXPECT_EQ(List(unchanged, "InputRange").findText(""), -1);
    StaysOpen(unchanged, "");
    EXPECT_EQ(twice.Sent, (Lines{"$016", "%0101040600", "$015FF"}));

    ModuleOnLine test({.Model = "8230  ", .DataFormat = 3, .InputRange = 0x2A});
    AdConfigForm form(test.Session, test.Messages);
    EXPECT_EQ(List(form, "InputRange").currentText(), "Cu, 0~60 ohms");
    EXPECT_EQ(List(form, "DataFormat").currentText(), "Ohms");
    for (int channel = 0; channel < 8; ++channel) {
        const QString name = QString("ChannelEnable_%1").arg(channel);
        EXPECT_EQ(Find<QAbstractButton>(form, name).isChecked(), channel < 3);
        ExpectUsable(form, {name}, channel < 3);
    }
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
    StaysOpen(without, "");
    EXPECT_EQ(current.Sent, Lines{});
}

TEST(ConfigForm, LinkOfAModuleInItsInitialisationStateOnly) {
    ModuleOnLine test({.Model = "8410  "}), converter({.Model = "8610  "});
    for (const bool initialising : {false, true}) {
        for (ModuleOnLine* each : {&test, &converter}) {
            each->Session.ScanIndex = initialising ? 0 : -1;
            each->Module.Settings.Initialisation = initialising;
        }
        DioConfigForm form(test.Session, test.Messages);
        N8610ConfigForm other(converter.Session, converter.Messages);
        ExpectUsable(form, {"BaudRate", "ChecksumBox"}, initialising);
        ExpectUsable(other, {"BaudRate", "SecondBaudRate", "ChecksumCombo"}, initialising);
        Find<QAbstractButton>(form, "ChecksumBox").setChecked(initialising);
        StaysOpen(form, "");
    }
    EXPECT_EQ(test.Sent, Lines{"%0001400640"});
}

TEST(N46ConfigForm, ShowsTheDirections) {
    ModuleOnLine test({.Model = "8460  "});
    ASSERT_EQ(test.Session.Line.Exchange("$01S03", 0, 3, 400), true);
    N46ConfigForm form(test.Session, test.Messages);
    for (int port = 0; port < 4; ++port)
        EXPECT_EQ(Find<QAbstractButton>(form, QString("PortInput_%1").arg(port)).isChecked(), port >= 2);
}

TEST(CtrConfigForm, LayoutFollowsTheType) {
    ModuleOnLine test({.Model = "8510  ", .InputRange = 81});
    CtrConfigForm form(test.Session, test.Messages);
    for (const bool counts : {true, false}) {
        List(form, "TypeCode").setCurrentIndex(counts ? 0 : 1);
        ExpectUsable(form, {"FreqGateTime"}, !counts);
        ExpectUsable(form, {"GateMode", "MaxValue_1", "AlarmValue_0"}, counts);
    }
    EXPECT_FALSE(StaysOpen(form, "DigitalFilter=Enabled;MinAtHigh=7"));
    EXPECT_EQ(test.Sent, Lines{});
}

TEST(MultiConfigForm, LimitsFollowTheRange) {
    // Of the two ranges of this name it is the second.
    ModuleOnLine test({.Model = "8210  ", .HighAlarm = 1, .AlarmMode = 2, .InputRange = 0x0A});
    test.Session.DecimalSeparator = ",";
    MultiConfigForm form(test.Session, test.Messages);
    EXPECT_FALSE(StaysOpen(form, ""));
    EXPECT_EQ(test.Sent, Lines{});
    Type(Find<QLineEdit>(form, "LowAlarm"), "x.");
    EXPECT_EQ(Find<QLineEdit>(form, "LowAlarm").text(), "+0,0000.");
    EXPECT_TRUE(StaysOpen(form, "LowAlarm=-1.5"));
    EXPECT_EQ(form.focusWidget()->objectName(), "LowAlarm");
    EXPECT_FALSE(StaysOpen(form, "AlarmMode=Disabled;InputRange=+/- 15mV"));
    EXPECT_EQ(Find<QLabel>(form, "LowAlarmUnit").text(), "mV");
    EXPECT_EQ(test.Sent, (Lines{"%0101000600", "@01DA", "@01PL-01.500", "@01PH+01.000"}));
}

const ModuleRecord Counter = {
    .Model = "8510  ",
    .InputRange = 80,
    .Checksum = 1,
    .Counter = {.GateMode = 2, .MaxValue = {100, 100}, .MinAtHigh = 10, .TtlAtHigh = 20}};
const ModuleRecord TenVolts = {
    .Model = "8220  ", .HighAlarm = 8.5F, .LowAlarm = -1.5F, .InputRange = 8, .Checksum = 1};

struct EntryCase {
    ModuleRecord Record;
    const char* Entries;
    Lines Sent;
    bool Accepted = true; // else the module refuses some of it
};

const EntryCase EntryCases[] = {
    {Counter, "CounterStatus_1=Start", {"$01511"}},
    {Counter, "MaxValue_0=4294967295;MaxValue_1=255", {"$0130FFFFFFFF", "$0131000000FF"}},
    {Counter, "MaxValue_0=2147483648.9;MaxValue_1=100.9", {"$013080000000"}},
    {Counter, "InitialValue_0=12.9;InitialValue_1=-1", {"@01P00000000C", "@01P1FFFFFFFF"}},
    {Counter, "TTLAtHigh=2,4;TTLAtLow=0.8", {"$011H24", "$011L08"}},
    {Counter, "TTLAtHigh=1.96;TTLAtLow=0.96", {"$011L10"}},
    {Counter, "MinAtHigh=10.9 us;MinAtLow=5", {"$010L0005"}},
    {Counter, "MinAtHigh=us;MinAtLow=12345", {"$010H00us", "$010L12345"}, false},
    {Counter, "TypeCode=Frequency;FreqGateTime=1 second", {"%0101510644"}},
    {Counter, "TypeCode=Frequency;DigitalFilter=Enabled;MaxValue_0=1e300", {"%0101510640"}},
    {Counter, "Addr=18;InputMode=Photo Isolated", {"%0112500640", "$12B1"}},
    {TenVolts, "LowAlarm=-1,5004", {}},
    {TenVolts, "LowAlarm= -1,5006 ;HighAlarm=10", {"@01PL-01.501", "@01PH+10.000"}},
    {TenVolts, "Addr=2;AlarmMode=Momentary", {"%0102080640", "@02EA1"}},
    {TenVolts, "InputRange=+/- 150mV", {"%01010C0640", "@01PL-001.50", "@01PH+008.50"}},
    {ConverterWith(0x3FE0), "DataBits=8", {"%010100663FE3"}},
    {ConverterWith(0x7FE3), "DataBits=6;StopBits=2", {"%010100667FE5"}},
    {ConverterWith(0x0013), "Interface=RS-485", {"%010100668013"}}, // the second code for no parity stays
    {ConverterWith(0x0013), "Parity=Odd", {"%01010066000B"}},
    {ConverterWith(0x0013), "Parity=Even", {"%01010066001B"}},
    {ConverterWith(0xFFFF), "Parity=None;Interface=RS-422", {"%010100667FE7"}}};

TEST(ConfigForm, EntriesAsBytes) {
    for (const EntryCase& test : EntryCases) {
        SCOPED_TRACE(test.Entries);
        ModuleOnLine module(test.Record);
        module.Session.DecimalSeparator = ",";
        EXPECT_FALSE(StaysOpen(*OpenFor(module), test.Entries));
        EXPECT_EQ(module.Sent, test.Sent);
        EXPECT_EQ(module.Session.ConfigResult, test.Sent.empty() || !test.Accepted ? 2 : 1);
        module.Sent.clear();
        StaysOpen(*OpenFor(module), test.Entries);
        EXPECT_EQ(module.Sent.empty(), test.Accepted) << "what was accepted is in the entry";
    }
}

// Nothing is sent, and after the message the focus is in the field that was refused.
TEST(ConfigForm, ImpossibleEntriesAreRefused) {
    const std::pair<ModuleRecord, QStringList> cases[] = {
        {Counter,
         {"Addr=300", "MaxValue_0=4294967296", "MaxValue_1=4294967296", "InitialValue_0=-2147483649",
          "InitialValue_1=1e30", "AlarmValue_0=1e300", "AlarmValue_1=-3e9", "MinAtHigh=32768",
          "MinAtLow=7\r%0109500600", "MinAtLow=-40000", "TTLAtHigh=4000", "TTLAtLow=4e30"}},
        {TenVolts,
         {"LowAlarm=10,001", "LowAlarm=-11", "LowAlarm=", "LowAlarm=-", "LowAlarm=,", "LowAlarm=1,5 V",
          "LowAlarm=--1", "LowAlarm=1,2,3", "LowAlarm=inf", "LowAlarm=nan", "LowAlarm=1e0"}}};
    for (const auto& [record, entries] : cases)
        for (const QString& entry : entries) {
            SCOPED_TRACE(entry.toStdString());
            ModuleOnLine test(record);
            test.Session.DecimalSeparator = ",";
            const auto form = OpenFor(test);
            Find<QWidget>(*form, "CancelBtn").setFocus();
            EXPECT_TRUE(StaysOpen(*form, entry));
            const QString control = entry.section('=', 0, 0);
            EXPECT_EQ(form->focusWidget()->objectName(), control);
            const auto& box = Find<QLineEdit>(*form, control);
            EXPECT_EQ(box.selectedText(), box.text());
            EXPECT_EQ(std::tuple(test.Sent, test.Session.ConfigResult), std::tuple(Lines{}, 2));
            ASSERT_EQ(test.Messages.Shown.size(), 1U);
            if (control == "LowAlarm") {
                EXPECT_EQ(test.Messages.Shown[0].first,
                          "The low alarm limit must be a number from -10 to +10 V.");
            }
        }
}

TEST(ConfigForm, InitialisationStateIsSpokenToAt00) {
    ModuleOnLine counter(Counter), converter(ConverterWith(3));
    for (ModuleOnLine* each : {&counter, &converter}) {
        each->Session.ScanIndex = 0;
        each->Module.Settings.Initialisation = true;
    }
    CtrConfigForm form(counter.Session, counter.Messages);
    EXPECT_FALSE(StaysOpen(form, "Addr=5;BaudRate=115200;ChecksumCombo=Disabled;MaxValue_0=7.9"));
    EXPECT_EQ(counter.Sent, (Lines{"%0005500900", "$003000000007"}));
    EXPECT_EQ(LinkSettingsOf(counter.Record), (LinkSettings{5, 6, 0}));
    EXPECT_EQ(counter.Record.Counter.MaxValue[0], 7.9) << "kept as it was entered";
    N8610ConfigForm other(converter.Session, converter.Messages);
    EXPECT_FALSE(StaysOpen(other, "Addr=9;BaudRate=57600;SecondBaudRate=115200;ChecksumCombo=Enabled"));
    EXPECT_EQ(converter.Sent, Lines{"%0009009A4003"});
}

TEST(MultiConfigForm, LimitsOfARefusedRangeAreNotSent) {
    ModuleOnLine test(TenVolts);
    test.Module.CommandFaults = [](std::string_view command) { return Faults{.Refuse = command[0] == '%'}; };
    MultiConfigForm form(test.Session, test.Messages);
    EXPECT_FALSE(StaysOpen(form, "InputRange=+/- 150mV;LowAlarm=-2;HighAlarm=100"));
    EXPECT_EQ(test.Sent, (Lines{"%01010C0640", "@01PL-02.000"}));
    EXPECT_EQ(test.Messages.Shown, (ShownMessages{{ConfigFailedText, "Error"},
                                                  {"High alarm limit configuration failed.", "Error"},
                                                  CompleteMessage}));
    EXPECT_EQ(test.Record.HighAlarm, 8.5F);
}

// What an entry will lead to is said beside it while it is made, and nothing is sent or shown for it.
TEST(ConfigForm, NotesBesideTheFields) {
    const std::tuple<ModuleRecord, const char*, const char*, const char*, const char*> cases[] = {
        {TenVolts, "Addr", "7", "8", "AddrNote"},
        {TenVolts, "LowAlarm", "8,6", "8.5", "LimitsNote"},
        {TenVolts, "HighAlarm", "-1,6", "", "LimitsNote"},
        {Counter, "MaxValue_1", "1,000", "1000", "MaxValueNote_1"},
        {Counter, "AlarmValue_0", "12abc", "12", "AlarmValueNote_0"},
        {Counter, "MinAtLow", "5,5", "55", "MinAtLowNote"},
        {Counter, "TTLAtLow", "0,55", "0,5", "TTLAtLowNote"}};
    for (const auto& [record, control, wrongText, rightText, noteName] : cases) {
        SCOPED_TRACE(control);
        ModuleOnLine module(record);
        module.Session.DecimalSeparator = ",";
        module.Session.ModuleCount = 2;
        module.Session.ModuleTable[1].Address = 7;
        const auto form = OpenFor(module);
        form->show();
        QApplication::processEvents();
        const auto& note = Find<QLabel>(*form, noteName);
        auto& box = Find<QLineEdit>(*form, control);
        for (const bool wrong : {false, true, false}) {
            if (wrong || note.isVisible())
                box.setText(wrong ? wrongText : rightText);
            EXPECT_EQ(note.isVisible(), wrong);
        }
        box.setText(wrongText);
        if (auto* type = form->findChild<QComboBox*>("TypeCode")) {
            type->setCurrentIndex(1); // none of these is sent then
            EXPECT_FALSE(note.isVisible());
        }
        EXPECT_EQ(std::tuple(module.Sent, module.Messages.Shown), std::tuple(Lines{}, ShownMessages{}));
    }
}

TEST(ConfigForm, SaysWhatCouldNotBeRead) {
    const std::tuple<const char*, const char*, const char*> forms[] = {
        {"8250  ", "ChannelsNote", "ChannelDisable_0"}, {"8460  ", "PortsNote", "PortInput_3"}};
    for (const auto& [model, note, harmless] : forms)
        for (const bool silent : {false, true}) {
            ModuleOnLine test({.Model = model});
            test.Session.Line.Exchange("$01S00", 0, 3, 400); // the ports are outputs
            test.Module.OwnFaults.Silent = silent;
            const auto form = OpenFor(test);
            form->show();
            EXPECT_EQ(Find<QLabel>(*form, note).isVisible(), silent) << model;
            EXPECT_EQ(Find<QAbstractButton>(*form, harmless).isChecked(), silent) << model;
            EXPECT_EQ(test.Messages.Shown, ShownMessages{});
        }
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
    for (const char* entry : {"", "Addr=256", "Addr=99999999999", "Addr=99999999999999999999999"})
        EXPECT_TRUE(StaysOpen(form, entry));
    EXPECT_EQ(form.focusWidget()->objectName(), "Addr");
    const std::pair<std::string, std::string> tooHigh = {"Address can not exceed 255.", "Error"};
    EXPECT_EQ(test.Messages.Shown,
              (ShownMessages{{"Enter an address from 0 to 255.", "Error"}, tooHigh, tooHigh, tooHigh}));
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

TEST(ConfigForm, NothingRunsTwice) {
    ModuleOnLine test({.Model = "8410  "});
    ImpatientMessages messages;
    DioConfigForm form(test.Session, messages);
    messages.Form = &form;
    EXPECT_FALSE(StaysOpen(form, "Addr=2;InputPolarity=Change!"));
    EXPECT_EQ(test.Sent, (Lines{"%0102400600", "~02CP01"}));
    EXPECT_EQ(messages.Shown, ShownMessages{CompleteMessage});
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_EQ(test.Session.ConfigResult, 1);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

} // namespace
} // namespace kavro
