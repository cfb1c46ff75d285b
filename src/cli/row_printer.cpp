#include "cli/row_printer.h"

#include "cli/cli_text.h"

#include <utility>

namespace kavro {

void RowPrinter::Print(const std::string& row) {
    if (json_)
        Write((std::exchange(begun_, true) ? ",\n  " : "[\n  ") + row);
    else
        Write(row);
}

void RowPrinter::Close() {
    if (json_)
        Write(begun_ ? "\n]\n" : "[]\n");
}

void RowPrinter::Write(const std::string& text) {
    if (!abandoned_)
        abandoned_ = !PrintOut(text);
}

} // namespace kavro
