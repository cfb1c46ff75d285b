#include "traffic/traffic_export.h"

#include "traffic/time_slice.h"

#include <utility>

namespace kavro {

namespace {

constexpr std::size_t BytesARow = 192; // more than most take

} // namespace

TrafficExport::TrafficExport(const TrafficLog& log, TrafficExportPlan plan)
    : log_(log), plan_(std::move(plan)) {
    Content.reserve(plan_.Rows.size() * BytesARow); // growing takes too long for one step
    if (plan_.File == TrafficFile::Text)
        Content = TrafficTextHead();
    else if (plan_.File == TrafficFile::Csv)
        Content = TrafficCsvHead();
}

bool TrafficExport::Advance(int milliseconds) {
    for (TimeSlice slice(milliseconds); next_ < plan_.Rows.size() && !slice.Over(); ++next_)
        if (plan_.Rows[next_] >= log_.First())
            Write(plan_.Rows[next_]);
    return next_ == plan_.Rows.size();
}

double TrafficExport::Share() const {
    return plan_.Rows.empty() ? 1 : static_cast<double>(next_) / static_cast<double>(plan_.Rows.size());
}

// A recording has one head: of the port of its first row.
void TrafficExport::Begin(const TrafficRow& row) {
    if (plan_.File == TrafficFile::Recording)
        Content = RecordingHeadLine({.Utc = row.Utc, .Port = row.Port, .Device = plan_.Device(row.Port)});
}

void TrafficExport::Write(std::int64_t number) {
    const TrafficView view{log_, plan_.Known, plan_.Style};
    const TrafficRow row = log_.Row(number);
    if (written_++ == 0)
        Begin(row);
    switch (plan_.File) {
    case TrafficFile::Text:
        Content += TrafficTextLine(view, number);
        break;
    case TrafficFile::Csv:
        Content += TrafficCsvLine(view, number);
        break;
    case TrafficFile::Recording:
        Content += RecordingLine(TrafficOf(row), row.Echo && !std::exchange(echoTold_, true));
        break;
    }
}

} // namespace kavro
