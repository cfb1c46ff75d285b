#pragma once

#include "map/module_tags.h"

#include <QColor>
#include <QGroupBox>

#include <string>
#include <vector>

class QLabel;

namespace kavro {

class TagLabel;
class TintedLabel;

/// What follows a text that is stale, and its colour before it is made readable.
inline constexpr const char* StaleMark = " (stale)";
inline constexpr QRgb StaleTint = 0x808080;

/// Rows of a channel's caption, reading and unit: `Label3`, `Reading` and `FormatText`, each with its row
/// behind the name, and `OpenMark`, which is empty or says that the sensor is open.
class ReadingRows : public QGroupBox {
public:
    /// `captions`: one row each.
    ReadingRows(const QString& title, const QStringList& captions);

    /// Makes a reading red, as it is while it is read.
    void BeginReading(int row);
    /// Shows a reading and its unit.
    void ShowReading(int row, const std::string& text, const std::string& unit);
    /// Says beside a reading whether the module finds the channel's sensor open.
    void ShowOpen(int row, bool open);
    /// Shows that nothing is known of a channel yet.
    void ShowUnread(int row);
    /// Shows that a channel is switched off in the module.
    void ShowDisabled(int row);
    /// Leaves a row empty, with its caption grey.
    void ShowMissing(int row);
    /// Shows the tags of the first rows beside the readings.
    void ShowTags(const std::vector<TagAndNote>& tags);
    /// Marks the readings that were shown as stale, until the next ones.
    void ShowStale();

private:
    struct Row {
        TintedLabel* Caption = nullptr;
        TintedLabel* Reading = nullptr;
        TintedLabel* Unit = nullptr;
        QLabel* Open = nullptr;
        bool Live = false;
        TagLabel* Tag = nullptr; // once there are tags
    };

    Row& At(int row) { return rows_[static_cast<std::size_t>(row)]; }

    std::vector<Row> rows_;
};

} // namespace kavro
