#include "map/tag_label_form.h"

#include "ui/named.h"
#include "ui/readable_color.h"

#include <QGuiApplication>
#include <QStringList>

namespace kavro {

QString ShownTag(const TagAndNote& tag) {
    return tag.Tag.empty() && !tag.Note.empty() ? QString("(note)") : QString::fromStdString(tag.Tag);
}

QString TagTip(const TagAndNote& tag, const QString& more) {
    QStringList lines = {QString::fromStdString(tag.Tag), QString::fromStdString(tag.Note), more};
    lines.removeAll(QString());
    // As markup, so that long notes wrap and nothing in them is taken for markup.
    return lines.isEmpty() ? QString() : Qt::convertFromPlainText(lines.join('\n'), Qt::WhiteSpaceNormal);
}

QColor TagColor(const QPalette& palette, QPalette::ColorRole background) {
    return Readable(palette.color(QPalette::Link), palette.color(background));
}

TagLabel::TagLabel(const QString& name, int columns) : columns_(columns) {
    Named(this, name, {});
    SetTint(QGuiApplication::palette().color(QPalette::Link));
}

void TagLabel::Show(const TagAndNote& tag) {
    const QString text = ShownTag(tag);
    const int room = fontMetrics().averageCharWidth() * columns_;
    setText(fontMetrics().elidedText(text, Qt::ElideRight, room));
    setAccessibleName(text);
    setToolTip(TagTip(tag));
}

} // namespace kavro
