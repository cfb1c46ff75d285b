#include "app/message_boxes.h"

#include "app/top_window.h"
#include "map/product.h"

#include <QApplication>
#include <QMessageBox>

namespace kavro {

void MessageBoxes::Show(const std::string& text, const std::string& title) {
    QMessageBox box(TopWindow());
    // Plain text, so that nothing a module or a path contains is taken for markup.
    box.setTextFormat(Qt::PlainText);
    box.setIcon(title.empty() ? QMessageBox::Information : QMessageBox::Warning);
    box.setWindowTitle(QString::fromStdString(title.empty() ? ApplicationTitle : title));
    box.setText(QString::fromStdString(text));
    box.setStandardButtons(QMessageBox::Ok);
    QApplication::setOverrideCursor(Qt::ArrowCursor); // the user is asked, even while commands run
    box.exec();
    QApplication::restoreOverrideCursor();
}

} // namespace kavro
