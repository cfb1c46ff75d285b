#include "ui/ok_cancel.h"

#include "ui/named.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace kavro {

QDialogButtonBox* OkAndCancel(QDialog& dialog, std::function<void()> ok) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    Named(buttons->button(QDialogButtonBox::Ok), "OKBtn", "OK");
    Named(buttons->button(QDialogButtonBox::Cancel), "CancelBtn", "Cancel")->setText("Cancel");
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, std::move(ok));
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    return buttons;
}

} // namespace kavro
