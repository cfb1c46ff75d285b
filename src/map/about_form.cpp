#include "map/about_form.h"

#include "map/product.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace kavro {

AboutForm::AboutForm(QWidget* parent) : QDialog(parent) {
    setObjectName("AboutForm");
    const QString name = ProductName;
    setWindowTitle("About " + name + " Administration Utility");
    auto* icon = new QLabel;
    icon->setPixmap(QApplication::windowIcon().pixmap(64));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    Named(buttons->button(QDialogButtonBox::Ok), "OKBtn", "OK");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QGridLayout(this);
    layout->addWidget(icon, 0, 0, 3, 1);
    layout->addWidget(Named(new QLabel(name + " Administration Utility for 32-bit Windows"), "Label1", {}), 0,
                      1);
    layout->addWidget(Named(new QLabel(QString(" Version ") + ProductVersion), "Label2", {}), 1, 1);
    layout->addWidget(Named(new QLabel(" " + name), "Label3", {}), 2, 1);
    layout->addWidget(buttons, 3, 0, 1, 2);
    CenterForm(*this);
}

} // namespace kavro
