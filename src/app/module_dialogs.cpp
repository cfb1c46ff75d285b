#include "app/module_dialogs.h"

#include "calib/ad_calib_form.h"
#include "calib/da_calib_form.h"
#include "config/ad_config_form.h"
#include "config/ctr_config_form.h"
#include "config/da_config_form.h"
#include "config/dio_config_form.h"
#include "config/multi_config_form.h"
#include "config/n46_config_form.h"
#include "config/n8610_config_form.h"
#include "diag/ad_diag_form.h"
#include "diag/ctr_diag_form.h"
#include "diag/da_diag_form.h"
#include "diag/dio_diag_form.h"
#include "diag/drive_question_form.h"
#include "diag/freq_diag_form.h"
#include "diag/multi_diag_form.h"
#include "diag/n32_diag_form.h"
#include "diag/n46_diag_form.h"

namespace kavro {

namespace {

struct DialogEntry {
    ModuleDialog Dialog;
    void (*Open)(Session& session, Messages& messages, QWidget* parent);
};

template <class Form>
void Open(Session& session, Messages& messages, QWidget* parent) {
    Form(session, messages, parent).exec();
}

// A window that drives outputs of its own accord may have to ask for it first.
template <class Form, DrivingWindow Window>
void OpenDriving(Session& session, Messages& messages, QWidget* parent) {
    if (MayDrive(session, Window, parent))
        Open<Form>(session, messages, parent);
}

constexpr DialogEntry Dialogs[] = {
    {ModuleDialog::AdConfigForm, Open<AdConfigForm>},
    {ModuleDialog::DaConfigForm, Open<DaConfigForm>},
    {ModuleDialog::DioConfigForm, Open<DioConfigForm>},
    {ModuleDialog::N46ConfigForm, Open<N46ConfigForm>},
    {ModuleDialog::AdCalibForm, Open<AdCalibForm>},
    {ModuleDialog::DaCalibForm, OpenDriving<DaCalibForm, DrivingWindow::Calibration>},
    {ModuleDialog::CtrConfigForm, Open<CtrConfigForm>},
    {ModuleDialog::MultiConfigForm, Open<MultiConfigForm>},
    {ModuleDialog::N8610ConfigForm, Open<N8610ConfigForm>},
    {ModuleDialog::AdDiagForm, Open<AdDiagForm>},
    {ModuleDialog::DaDiagForm, OpenDriving<DaDiagForm, DrivingWindow::Diagnostic>},
    {ModuleDialog::N32DiagForm, OpenDriving<N32DiagForm, DrivingWindow::Diagnostic>},
    {ModuleDialog::DioDiagForm, Open<DioDiagForm>},
    {ModuleDialog::N46DiagForm, Open<N46DiagForm>},
    {ModuleDialog::CtrDiagForm, Open<CtrDiagForm>},
    {ModuleDialog::FreqDiagForm, Open<FreqDiagForm>},
    {ModuleDialog::MultiDiagForm, Open<MultiDiagForm>},
};

} // namespace

void OpenModuleDialog(ModuleDialog dialog, Session& session, Messages& messages, QWidget* parent) {
    for (const DialogEntry& entry : Dialogs)
        if (entry.Dialog == dialog)
            entry.Open(session, messages, parent);
}

} // namespace kavro
