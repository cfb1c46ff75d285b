#pragma once

#include "map/session.h"
#include "support/form_driver.h"

#include <QComboBox>
#include <QStringList>

namespace kavro {

/// Makes entries in a dialog and clicks OK; whether it stays open. Each entry is a control and its text,
/// "Addr=2;BaudRate=9600", or a control alone to be clicked.
inline bool StaysOpen(QDialog& form, const QString& entries) {
    form.show();
    for (const QString& entry : entries.split(';', Qt::SkipEmptyParts)) {
        const QString name = entry.section('=', 0, 0);
        auto& control = Find<QWidget>(form, name);
        if (entry.contains('='))
            control.setProperty(qobject_cast<QComboBox*>(&control) ? "currentText" : "text",
                                entry.section('=', 1));
        else
            Click(form, name);
    }
    Click(form, "OKBtn");
    return form.isVisible();
}

/// Opens a dialog for the selected module.
using Opener = std::unique_ptr<QDialog> (*)(Session& session, Messages& messages);

template <class Form>
std::unique_ptr<QDialog> Open(Session& session, Messages& messages) {
    return std::make_unique<Form>(session, messages);
}

} // namespace kavro
