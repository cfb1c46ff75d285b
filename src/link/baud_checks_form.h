#pragma once

#include <array>

class QCheckBox;
class QGridLayout;

namespace kavro {

/// Check boxes of the rates to search; index = baud code.
using BaudChecks = std::array<QCheckBox*, 8>;

/// Adds `BaudCheck_0` to `BaudCheck_7`, in code order, to columns of so many rows.
BaudChecks AddBaudChecks(QGridLayout& grid, int rows);

} // namespace kavro
