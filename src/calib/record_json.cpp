#include "calib/record_json.h"

#include "link/json_object.h"
#include "link/json_text.h"
#include "link/number_text.h"
#include "map/product.h"

namespace kavro {

namespace {

constexpr const char* Format = "kavro-calibration";
constexpr int Version = 1;

std::string NumberJson(const std::optional<double>& number) {
    return number ? ShortestText(*number) : "null";
}

std::string SwitchJson(const std::optional<bool>& on) {
    return !on ? "null" : *on ? "true" : "false";
}

std::string MeasuredJson(const CalibrationRecord& record, const CalibrationPoint& point,
                         const std::optional<double>& measured) {
    if (!measured)
        return "null";
    const auto error = ErrorOf(point, measured);
    JsonObject object(-1);
    object.Add("value", NumberJson(measured));
    object.Add("error", NumberJson(error));
    object.Add("percent", NumberJson(PercentOfFullScale(record, point, error)));
    return object.Text();
}

std::string PointJson(const CalibrationRecord& record, const CalibrationPoint& point) {
    JsonObject object(-1);
    object.Add("what", JsonText(point.What));
    object.Add("signal", NumberJson(point.Signal));
    object.Add("unit", JsonText(point.Unit));
    object.Add("source", JsonText(point.Source));
    object.Add("as_found", MeasuredJson(record, point, point.AsFound));
    object.Add("as_left", MeasuredJson(record, point, point.AsLeft));
    object.Add("stored", SwitchJson(point.Stored));
    object.Add("result", JsonText(ShownResult(ResultOf(record, point))));
    return object.Text();
}

void AddEntries(JsonObject& object, const CalibrationEntries& entries) {
    object.Add("operator", JsonText(entries.Operator));
    object.Add("instrument", JsonText(entries.Instrument));
    object.Add("instrument_due", JsonText(entries.InstrumentDue));
    object.Add("ambient", NumberJson(PlainNumber(entries.Ambient)));
    object.Add("note", JsonText(entries.Note));
    object.Add("tolerance_percent", NumberJson(entries.TolerancePercent));
}

} // namespace

std::string RecordJson(const CalibrationRecord& record, int depth) {
    std::vector<std::string> points;
    for (const CalibrationPoint& point : record.Points)
        points.push_back(PointJson(record, point));
    JsonObject object(depth);
    object.Add("format", JsonText(Format));
    object.Add("version", std::to_string(Version));
    object.Add("program", JsonText(ProductVersion));
    object.Add("address", std::to_string(record.Address));
    object.Add("model", JsonText(record.Model));
    object.Add("firmware", JsonText(record.Firmware));
    object.Add("tag", JsonText(record.Tag));
    object.Add("range", JsonText(record.Range));
    object.Add("full_scale", record.FullScale > 0 ? NumberJson(record.FullScale) : "null");
    object.Add("unit", JsonText(record.Unit));
    AddEntries(object, record.Entries);
    object.Add("started", JsonText(record.Started));
    object.Add("ended", JsonText(record.Ended));
    object.Add("points", JsonList(points, depth < 0 ? depth : depth + 1));
    object.Add("result", JsonText(ShownResult(ResultOf(record))));
    object.Add("left_as", JsonText(record.LeftAs));
    return object.Text();
}

} // namespace kavro
