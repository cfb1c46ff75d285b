#pragma once

#include "link/messages.h"
#include "map/module_dispatch.h"
#include "map/session.h"

class QWidget;

namespace kavro {

/// Shows the dialog that serves the selected module, modally over `parent`; returns when it has closed.
void OpenModuleDialog(ModuleDialog dialog, Session& session, Messages& messages, QWidget* parent);

} // namespace kavro
