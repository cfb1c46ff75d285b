#pragma once

#include <QStringList>

#include <cstdint>
#include <span>
#include <string_view>

class QComboBox;

namespace kavro {

/// Trimmed names of ranges and of data formats, for the lists of a dialog.
QStringList RangeItems(std::span<const std::int16_t> codes);
QStringList FormatItems(std::span<const std::int16_t> codes);

/// Position of the first item equal to the trimmed name of a range; -1 when there is none.
int RangePosition(const QStringList& items, std::int16_t code);

/// Position of a code among the `codes` of a list; -1 when it is not there.
int CodePosition(std::span<const std::int16_t> codes, std::int16_t code);

/// Code of the range selected in `list`, by its name: of two ranges of one name the first.
std::int16_t SelectedRange(const QComboBox& list, std::string_view model);

/// Code selected in `list`, whose items stand for `codes`; `otherwise` when none is.
std::int16_t SelectedCode(const QComboBox& list, std::span<const std::int16_t> codes, std::int16_t otherwise);

} // namespace kavro
