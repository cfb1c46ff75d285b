#include "ui/readable_color.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double EasyToRead = 4.6;
constexpr int MixSteps = 40;

// Light that a screen gives off, 0 to 1, as the eye weighs the three colours.
double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QColor Mixed(const QColor& from, const QColor& to, float share) {
    const auto mix = [share](float first, float second) { return first + share * (second - first); };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

} // namespace

double ContrastRatio(const QColor& first, const QColor& second) {
    const auto [dark, light] = std::minmax({Luminance(first), Luminance(second)});
    return (light + 0.05) / (dark + 0.05);
}

QColor Readable(const QColor& color, const QColor& background) {
    if (ContrastRatio(Qt::black, background) >= ContrastRatio(Qt::white, background))
        return color;
    QColor readable = color;
    for (int step = 1; step <= MixSteps && ContrastRatio(readable, background) < EasyToRead; ++step)
        readable = Mixed(color, Qt::white, static_cast<float>(step) / MixSteps);
    return readable;
}

} // namespace kavro
