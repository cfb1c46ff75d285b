#include "app/module_dialogs.h"

#include "config/ad_config_form.h"

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

constexpr DialogEntry Dialogs[] = {
    {ModuleDialog::AdConfigForm, Open<AdConfigForm>},
};

} // namespace

void OpenModuleDialog(ModuleDialog dialog, Session& session, Messages& messages, QWidget* parent) {
    for (const DialogEntry& entry : Dialogs)
        if (entry.Dialog == dialog)
            entry.Open(session, messages, parent);
}

} // namespace kavro
