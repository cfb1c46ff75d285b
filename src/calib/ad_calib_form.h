#pragma once

#include "calib/ad_calibration.h"
#include "calib/calib_form.h"

class QLineEdit;

namespace kavro {

/// Calibrates an analog input module: offset, span and, where the model has one, the cold-junction sensor.
class AdCalibForm : public CalibForm {
public:
    AdCalibForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    QWidget& ShowView() override;
    CalibrationWatch& Watch() override { return calibration_.Watch(); }
    ReadingView Readings() const override { return calibration_.Readings(); }
    CalibrationRecord Record() const override { return calibration_.Record(); }

private:
    QWidget* BuildChoices();
    QWidget* BuildColdJunction();
    QPushButton* Choice(const char* name, const char* caption, void (AdCalibration::*choose)());

    AdCalibration calibration_;
    QWidget* choices_ = nullptr;
    QPushButton* offset_ = nullptr;
    QPushButton* coldJunction_ = nullptr;
    QLabel* reading_ = nullptr;
    QWidget* coldJunctionPanel_ = nullptr;
    QLabel* temperature_ = nullptr;
    QLabel* temperatureUnit_ = nullptr;
    QLineEdit* cjcInput_ = nullptr;
};

} // namespace kavro
