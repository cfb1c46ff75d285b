#include "map/exit_form.h"

#include "map/product.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

ExitForm::ExitForm(QWidget* parent) : QDialog(parent) {
    setObjectName("ExitForm");
    setWindowTitle("Exit");
    auto* question =
        Named(new QLabel(QString("Do you really want to exit %1 Administration utility?").arg(ProductName)),
              "Label1", {});
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Yes | QDialogButtonBox::No);
    Named(buttons->button(QDialogButtonBox::Yes), "YesBtn", "Yes");
    Named(buttons->button(QDialogButtonBox::No), "NoBtn", "No");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(question);
    layout->addWidget(buttons);
    CenterForm(*this);
}

} // namespace kavro
