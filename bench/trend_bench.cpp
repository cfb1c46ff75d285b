// The trend of a week of a hundred values at one reading a second, with spikes: what its memory takes, what
// the columns of all of them cost, and drawing them, against drawing each reading of a single value.

#include "bench/figures.h"
#include "monitor/trend_style_form.h"
#include "monitor/trend_view_form.h"

#include <QApplication>
#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <cstdio>

namespace kavro {

namespace {

constexpr std::int64_t SecondMs = 1000;
constexpr std::int64_t MinuteMs = 60 * SecondMs;
constexpr std::int64_t WeekMs = LongestTrendMinutes * MinuteMs;
constexpr std::int64_t Start = 1'772'460'309'000;
constexpr std::int64_t End = Start + WeekMs;
constexpr int Modules = 13;
constexpr std::size_t Curves = 100;
constexpr int Rounds = 9;
constexpr int SpikeEach = 7919; // seconds

// A slow wave with a little noise, and now and then a single reading far off.
double ValueAt(std::int64_t second, int curve) {
    const double noise = static_cast<double>((second * 7919 + curve * 104'729) % 1000) / 10'000;
    const double wave = std::sin(static_cast<double>(second) / 20'000 + curve) * 4;
    return (second + curve * 61) % SpikeEach == 0 ? 9 : wave + noise;
}

void Fill(Trend& trend) {
    std::vector<ChannelValue> values(MostValues);
    for (std::int64_t second = 0; second < WeekMs / SecondMs; ++second)
        for (int index = 0; index < Modules; ++index) {
            for (std::size_t place = 0; place < MostValues; ++place)
                values[place].Number =
                    ValueAt(second, index * static_cast<int>(MostValues) + static_cast<int>(place));
            trend.Add(Start + second * SecondMs, index, values);
        }
}

std::vector<TrendLine> Lines(std::size_t count) {
    std::vector<TrendLine> lines;
    for (std::size_t number = 0; number < count; ++number)
        lines.push_back({.Name = QString("%1 ch %2").arg(number / MostValues + 1).arg(number % MostValues),
                         .Unit = "V",
                         .Style = static_cast<int>(number),
                         .Key = {},
                         .Index = static_cast<int>(number / MostValues),
                         .Place = number % MostValues,
                         .Thresholds = {}});
    return lines;
}

template <typename Work>
double MedianMs(Work work) {
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
        work();
        times.push_back((Seconds(CLOCK_PROCESS_CPUTIME_ID) - start) * 1000);
    }
    return Median(times);
}

double DrawMs(TrendView& view, QSize size) {
    view.resize(size);
    QImage image(size, QImage::Format_RGB32);
    return MedianMs([&] {
        view.SetNow({End, 0}); // so that all is made anew
        view.render(&image);
    });
}

// Each reading of one value, without a memory of columns.
double NaiveMs(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPolygonF points;
    for (std::int64_t second = 0; second < WeekMs / SecondMs; ++second)
        points << QPointF(static_cast<double>(second * SecondMs) / WeekMs * size.width(),
                          (10 - ValueAt(second, 0)) / 20 * size.height());
    const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(TrendPen(0, QPalette()));
    painter.drawPolyline(points);
    painter.end();
    return (Seconds(CLOCK_PROCESS_CPUTIME_ID) - start) * 1000;
}

void Run() {
    Trend trend;
    const double start = Seconds(CLOCK_PROCESS_CPUTIME_ID);
    Fill(trend);
    const double filled = Seconds(CLOCK_PROCESS_CPUTIME_ID) - start;
    constexpr double mib = 1024.0 * 1024.0;
    constexpr double readings = Modules * MostValues * (WeekMs / SecondMs);
    std::printf(
        "trend: %zu values, a week at one a second; %.3f microseconds a reading; %.2f MiB a value, %.0f "
        "MiB for 256\n",
        Curves, filled * 1e6 / readings, static_cast<double>(trend.Bytes()) / mib / (Modules * MostValues),
        static_cast<double>(trend.Bytes()) / mib / (Modules * MostValues) * 256);
    std::size_t columns = 0;
    const double asked = MedianMs([&] {
        columns = 0;
        for (std::size_t number = 0; number < Curves; ++number)
            columns += trend
                           .Columns(static_cast<int>(number / MostValues), number % MostValues, Start, End,
                                    5 * MinuteMs)
                           .size();
    });
    std::printf("  %-46s %8.2f ms (%zu)\n", "columns of all, of five minutes", asked, columns);
    TrendView view(trend, ".");
    std::printf("  %-46s %10s %10s %6s\n", "drawn, processor ms", "1600x900", "3840x2160", "goal");
    const auto row = [](const char* what, double small, double large, const char* goal) {
        std::printf("  %-46s %10.1f %10.1f %6s\n", what, small, large, goal);
    };
    const QSize small(1600, 900), large(3840, 2160);
    row("each reading of one value, a week", NaiveMs(small), NaiveMs(large), "");
    const auto both = [&](const char* what, std::size_t count, int minutes, const char* goal) {
        view.SetLines(Lines(count));
        view.SetNow({End, 0});
        view.SetSpan(minutes);
        const double first = DrawMs(view, small);
        row(what, first, DrawMs(view, large), goal);
    };
    both("one value, a week", 1, LongestTrendMinutes, "");
    both("100 values, a week", Curves, LongestTrendMinutes, "100");
    both("100 values, a day", Curves, 24 * 60, "");
    both("100 values, 10 minutes", Curves, UsualTrendMinutes, "");
    both("8 values, a week", 8, LongestTrendMinutes, "");
}

} // namespace

} // namespace kavro

int main(int count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, arguments);
    kavro::Run();
}
