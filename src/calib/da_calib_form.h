#pragma once

#include "calib/calib_form.h"
#include "calib/da_calibration.h"

class QLineEdit;

namespace kavro {

/// Calibrates an analog output module, and gives it its own configuration back before the dialog closes. When
/// that is not possible the user is asked: try again, leave without restoring, or stay.
class DaCalibForm : public CalibForm {
public:
    DaCalibForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    QWidget& ShowView() override;
    bool Leave() override;
    CalibrationWatch& Watch() override { return calibration_.Watch(); }
    ReadingView Readings() const override { return calibration_.Readings(); }
    void Poll() override { calibration_.Poll(); }
    CalibrationRecord Record() const override { return calibration_.Record(); }

private:
    bool GiveBack(const std::function<void()>& restore);
    void AddMeter();
    QPushButton* TrimButton(const char* name, const char* caption, void (DaCalibration::*trim)());

    DaCalibration calibration_;
    QWidget* trim_ = nullptr;
    QLineEdit* meter_ = nullptr;
    QWidget* meterRow_ = nullptr;
};

} // namespace kavro
