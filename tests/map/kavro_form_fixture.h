#pragma once

#include "map/kavro_form.h"
#include "support/form_driver.h"

#include <QListWidget>

namespace kavro {

/// The main window on the demo line, with the dialogs of modules recorded.
class KavroFormTest : public testing::Test, protected SimulatedSession {
protected:
    KavroFormTest() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Openers.Module = [this](ModuleDialog dialog, QWidget*) {
            Opened.push_back(dialog);
            Session.ModuleTable[Session.SelectedModule].Address = 77;
            Session.ConfigResult = 1;
            Session.Note = "Calibrated.";
        };
        Openers.ReadMap = [](const std::string& path) {
            if (path.ends_with("broken"))
                throw RuntimeFailure("This is no map.");
            ModuleMap map;
            map.Count = path.ends_with("empty") ? 0 : 2;
            map.ChecksumsKnown = false;
            for (const int index : {0, 1})
                map.Table[index] = {.Address = static_cast<std::int16_t>(6 + 100 * index), .BaudCode = 3};
            return map;
        };
        Devices.Devices[1] = SimulatedLineDevice;
        Form = std::make_unique<KavroForm>(Session, Messages, Devices, Openers);
        Form->show();
    }

    QListWidget& List() { return Find<QListWidget>(*Form, "Device"); }

    void ExpectListIsShown() {
        Lines lines;
        for (int row = 0; row < List().count(); ++row)
            lines.push_back(List().item(row)->text().toStdString());
        EXPECT_EQ(lines, Session.Device);
        EXPECT_EQ(lines.size(), static_cast<std::size_t>(Session.ModuleCount));
    }

    // Search from the menu up to `highAddress`; `during` is called once when the scan window is up.
    void Search(
        const QString& highAddress, std::function<void(QDialog&)> during = [](QDialog&) {}) {
        const auto accept = [&](QDialog& dialog) {
            Find<QLineEdit>(dialog, "HiAddress").setText(highAddress);
            Click(dialog, "OKBtn");
        };
        DialogDriver driver({{"SearchForm", accept}, {"ScanForm", std::move(during)}});
        Trigger(*Form, "mnuSearch");
        EXPECT_TRUE(driver.Finished());
    }

    FakeDevices Devices;
    DialogOpeners Openers;
    std::vector<ModuleDialog> Opened;
    std::unique_ptr<KavroForm> Form;
};

} // namespace kavro
