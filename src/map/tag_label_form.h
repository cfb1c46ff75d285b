#pragma once

#include "map/module_tags.h"
#include "ui/tinted_label.h"

#include <QColor>
#include <QPalette>
#include <QString>

namespace kavro {

/// A tag as it is shown; "(note)" where there is a note alone.
QString ShownTag(const TagAndNote& tag);

/// Tag and note as a tooltip, and a last line of `more`; empty when there is nothing to tell.
QString TagTip(const TagAndNote& tag, const QString& more = {});

/// What tags are written in on a background of this role.
QColor TagColor(const QPalette& palette, QPalette::ColorRole background);

/// Shows a tag beside what it belongs to; tag and note in its tooltip.
class TagLabel : public TintedLabel {
public:
    /// `columns`: of text that it shows at most.
    TagLabel(const QString& name, int columns);

    void Show(const TagAndNote& tag);

private:
    int columns_;
};

} // namespace kavro
