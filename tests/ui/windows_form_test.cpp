#include "app/dark_outline_style.h"
#include "app/module_dialogs.h"
#include "app/window_focus.h"
#include "link/com_port_form.h"
#include "map/kavro_form.h"
#include "map/search.h"
#include "map/search_form.h"
#include "monitor/monitor_form.h"
#include "support/form_driver.h"
#include "terminal/terminal_form.h"
#include "ui/ok_cancel.h"
#include "ui/print_lines.h"
#include "ui/readable_color.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace kavro {
namespace {

// Looks at each window that comes up, and closes it.
class WindowLook {
public:
    WindowLook() {
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            if (auto* dialog = QApplication::activeModalWidget()) {
                Look(*dialog);
                dialog->close();
            }
        });
        timer_.start(1);
    }

    void Look(QWidget& window) {
        SCOPED_TRACE(window.objectName().toStdString());
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents); // its layout
        const QRect screen = window.screen()->availableGeometry();
        EXPECT_TRUE(screen.contains(window.geometry())) << window.width() << "x" << window.height();
        ++Seen;
        const auto* area = window.findChild<QScrollArea*>("ScrollArea");
        if (area) {
            ++Scrolled;
            const QSize content = area->widget()->size();
            EXPECT_EQ(content.expandedTo(area->widget()->minimumSizeHint()), content) << "squeezed";
        }
        const QWidget* focus = window.focusWidget();
        EXPECT_TRUE(focus && !focus->visibleRegion().isEmpty()) << "the focus is out of sight";
    }

    int Seen = 0;
    int Scrolled = 0;

private:
    QTimer timer_;
};

// On the 800 x 800 pixels of the tests' screen most windows are too large with the largest of these fonts.
TEST(Windows, FitTheScreenOrScroll) {
    ForgetExit();
    const QFont usual = QApplication::font();
    for (const double scale : {1.0, 3.0}) {
        SCOPED_TRACE(scale);
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * scale);
        QApplication::setFont(font);
        SimulatedSession test(DemoLine());
        EnableBaudCodes(test.Session, {3});
        test.Session.SearchHighAddress = 24;
        NetworkSearch(test.Session, {}).Run();
        FakeDevices devices;
        WindowLook look;
        KavroForm form(test.Session, test.Messages, devices, {});
        form.show();
        look.Look(form);
        ComPortForm(test.Session.Line, devices, test.Messages, &form).exec();
        SearchForm(test.Session, test.Messages, &form).exec();
        TerminalForm(test.Session, test.Messages, &form).exec();
        MonitorForm(test.Session, test.Messages, &form).exec();
        for (int index = 0; index < test.Session.ModuleCount; ++index) {
            test.Session.SelectedModule = static_cast<std::int16_t>(index);
            for (const auto operation :
                 {Operation::Configuration, Operation::Diagnostic, Operation::Calibration})
                OpenModuleDialog(DispatchModule(test.Session, operation).Dialog, test.Session, test.Messages,
                                 &form);
        }
        EXPECT_GT(look.Seen, 40);
        EXPECT_EQ(look.Scrolled > 10, scale == 3.0) << look.Scrolled;
    }
    QApplication::setFont(usual);
}

TEST(Windows, TheWindowBelowGetsTheFocusBack) {
    ForgetExit();
    KeepWindowFocus(*qApp);
    QDialog below;
    below.setObjectName("below");
    below.show();
    {
        QDialog dialog(&below);
        dialog.setObjectName("dialog");
        const auto act = [](QDialog& parent) {
            {
                QMessageBox box(&parent);
                QTimer::singleShot(0, &box, &QDialog::accept);
                box.exec();
            }
            QApplication::processEvents();
            EXPECT_EQ(QApplication::activeWindow(), &parent);
            parent.accept();
        };
        DialogDriver driver({{"dialog", act}});
        dialog.exec();
        EXPECT_TRUE(driver.Finished());
    }
    QApplication::processEvents();
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activeWindow(), &below);
}

// A click that is still under way when OK has closed its dialog.
TEST(Windows, OKRunsOnceInADialogThatItCloses) {
    QDialog dialog;
    int runs = 0;
    auto* buttons = OkAndCancel(dialog, [&] {
        ++runs;
        dialog.accept();
    });
    dialog.show();
    for (int click = 0; click < 2; ++click)
        buttons->button(QDialogButtonBox::Ok)->click();
    EXPECT_EQ(runs, 1);
}

// The strongest contrast to the window's colour within a picture of the control.
double SeenContrast(QWidget& control, const QRect& part) {
    const QImage picture = control.grab(part).toImage();
    double best = 1;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            best = std::max(
                best, ContrastRatio(picture.pixelColor(x, y), control.palette().color(QPalette::Window)));
    return best;
}

TEST(Windows, ControlsAreSeenInDarkColours) {
    DarkOutlineStyle style;
    const QPalette usual = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(45, 45, 48), QColor(45, 45, 48)));
    QRadioButton option;
    option.setStyle(&style);
    option.resize(option.sizeHint());
    EXPECT_GT(SeenContrast(option, option.rect()), 3);
    QScrollBar bar(Qt::Horizontal);
    bar.setStyle(&style);
    bar.resize(300, bar.sizeHint().height());
    bar.setValue(50);
    EXPECT_GT(SeenContrast(bar, bar.rect().adjusted(30, 0, -30, 0)), 3);
    QApplication::setPalette(usual);
}

TEST(PrintedPages, KeepTheLinesInOrderBetweenHeadAndPageNumber) {
    Printout printout{.Title = "Title", .Details = "COM1", .Heading = "Heading"};
    for (const auto& [count, pages] : {std::pair(0, 1), {1, 1}, {13, 1}, {14, 2}, {27, 3}}) {
        while (printout.Lines.size() < count)
            printout.Lines << QString("line %1").arg(printout.Lines.size());
        const auto printed = PrintedPages(printout, 20);
        EXPECT_EQ(printed.size(), pages);
        QStringList lines;
        for (qsizetype page = 0; page < printed.size(); ++page) {
            const QStringList& rows = printed[page];
            EXPECT_EQ(rows.size(), 20);
            EXPECT_EQ(rows.mid(0, 4), (QStringList{"Title", "COM1", "", "Heading"}));
            EXPECT_EQ(rows.last(), QString("Page %1 of %2").arg(page + 1).arg(pages));
            lines << rows.filter("line ");
        }
        EXPECT_EQ(lines, printout.Lines);
    }
    EXPECT_EQ(PrintedPages(printout, 3).size(), printout.Lines.size()) << "paper without room: a line a page";
}

} // namespace
} // namespace kavro
