#include "monitor/threshold_color_form.h"

#include "ui/readable_color.h"

#include <array>

namespace kavro {

namespace {

// Red and blue, which every kind of eye tells apart; on a light background.
constexpr std::array<QRgb, 3> OnLight = {0x000000, 0x0B57A8, 0xB3261E};

} // namespace

QColor ThresholdColor(Side side, const QPalette& palette) {
    if (side == Side::Within)
        return palette.color(QPalette::Text);
    const QColor color(OnLight[static_cast<std::size_t>(side)]);
    // Every second row of a table has a background of its own.
    return Readable(Readable(color, palette.color(QPalette::Base)), palette.color(QPalette::AlternateBase));
}

} // namespace kavro
