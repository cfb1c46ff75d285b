#pragma once

#include <functional>

class QDialog;
class QDialogButtonBox;

namespace kavro {

/// The buttons `OKBtn` and `CancelBtn` of a dialog. OK calls `ok`, which closes the dialog or leaves it open;
/// Cancel rejects the dialog. An Enter that is held down does neither: it was meant for what opened the
/// dialog.
QDialogButtonBox* OkAndCancel(QDialog& dialog, std::function<void()> ok);

} // namespace kavro
