#include "link/baud_checks_form.h"

#include "link/baud.h"
#include "ui/named.h"

#include <QCheckBox>
#include <QGridLayout>

namespace kavro {

BaudChecks AddBaudChecks(QGridLayout& grid, int rows) {
    BaudChecks checks{};
    for (int code = 0; code < BaudCodeCount; ++code) {
        const QString name = BaudNames[static_cast<std::size_t>(code)];
        auto* check =
            Named(new QCheckBox(name), QString("BaudCheck_%1").arg(code), "Search at " + name + " baud");
        checks[static_cast<std::size_t>(code)] = check;
        grid.addWidget(check, code % rows, code / rows);
    }
    return checks;
}

} // namespace kavro
