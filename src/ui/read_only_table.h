#pragma once

#include <QStringList>

class QTableWidget;

namespace kavro {

/// Makes a table of rows to be looked at and chosen, one at a time: with these headings, without numbers of
/// rows. Tab goes on to the next control.
void ShowReadOnly(QTableWidget& table, const QStringList& headings);

} // namespace kavro
