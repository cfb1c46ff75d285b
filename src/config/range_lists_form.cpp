#include "config/range_lists_form.h"

#include "link/codes.h"
#include "link/model_choices.h"
#include "link/text.h"

#include <QComboBox>

#include <algorithm>

namespace kavro {

namespace {

QStringList Items(std::span<const std::int16_t> codes, std::string (*name)(std::int16_t)) {
    QStringList items;
    for (const std::int16_t code : codes)
        items << QString::fromStdString(Trim(name(code)));
    return items;
}

} // namespace

QStringList RangeItems(std::span<const std::int16_t> codes) {
    return Items(codes, RangeName);
}

QStringList FormatItems(std::span<const std::int16_t> codes) {
    return Items(codes, FormatName);
}

int RangePosition(const QStringList& items, std::int16_t code) {
    return static_cast<int>(items.indexOf(QString::fromStdString(Trim(RangeName(code)))));
}

int CodePosition(std::span<const std::int16_t> codes, std::int16_t code) {
    const auto found = std::ranges::find(codes, code);
    return found == codes.end() ? -1 : static_cast<int>(found - codes.begin());
}

std::int16_t SelectedRange(const QComboBox& list, std::string_view model) {
    return RangeCodeNamed(model, list.currentText().toStdString());
}

std::int16_t SelectedCode(const QComboBox& list, std::span<const std::int16_t> codes,
                          std::int16_t otherwise) {
    const int position = list.currentIndex();
    return position < 0 ? otherwise : codes[static_cast<std::size_t>(position)];
}

} // namespace kavro
