#pragma once

#include "link/line.h"
#include "link/messages.h"
#include "link/port_config.h"
#include "link/port_devices.h"

#include <QDialog>

#include <array>
#include <vector>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLayout;
class QLineEdit;

namespace kavro {

class Note;

/// The COM Port dialog: which port is in use and which device it is, its settings, the baud rates to search
/// and the reply time-out.
class ComPortForm : public QDialog {
public:
    ComPortForm(Line& line, PortDevices& devices, Messages& messages, QWidget* parent);

private:
    struct DeviceChange {
        int Port = 0;
        std::string Before;
        std::string After;
    };

    QGroupBox* BuildPorts();
    QGroupBox* BuildParity();
    QGroupBox* BuildBaudChecks();
    QLayout* BuildValues();
    void Fill();
    void FillDevices(QComboBox& box, int port, const std::vector<DetectedDevice>& detected);
    void ShowRateNote();
    PortChoice ReadChoice() const;
    std::vector<DeviceChange> ChangedDevices() const;
    bool Check(QLineEdit& box, std::int16_t (*number)(const std::string& text));
    bool CheckEntries();
    void Apply(PortChoice& choice);
    void OKBtn_Click();

    Line& line_;
    PortDevices& devices_;
    Messages& messages_;
    QButtonGroup* comOption_ = nullptr;    // id = port number
    QButtonGroup* parityOption_ = nullptr; // id = parity code
    std::array<QComboBox*, PortTotal> comDevice_{};
    std::array<QCheckBox*, 8> baudCheck_{}; // index = baud code
    QLineEdit* dataBits_ = nullptr;
    QComboBox* stopBits_ = nullptr;
    QLineEdit* timeout_ = nullptr;
    Note* rateNote_ = nullptr;
};

} // namespace kavro
