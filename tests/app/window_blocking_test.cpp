#include "app/window_blocking.h"

#include "app/message_boxes.h"
#include "map/kavro_form.h"
#include "support/form_driver.h"
#include "traffic/traffic_form.h"

#include <QWindow>

namespace kavro {
namespace {

// Whether the user can do nothing with a window just now.
struct Blocking : QObject {
    explicit Blocking(QWidget& window) { window.windowHandle()->installEventFilter(this); }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        Now = event->type() == QEvent::WindowBlocked || (Now && event->type() != QEvent::WindowUnblocked);
        return false;
    }
    bool Now = false;
};

// Dialogs and messages block the main window and each other, but never the traffic window, nor hang on it.
TEST(WindowBlocking, LeavesTheTrafficWindowUsable) {
    BlockOwnWindowsOnly(*qApp);
    SimulatedSession test;
    FakeDevices devices;
    MessageBoxes boxes;
    TrafficLog log;
    KavroForm main(test.Session, boxes, devices, {});
    TrafficForm traffic(test.Session, devices, log, [] { return true; });
    main.show();
    traffic.BringUp();
    const Blocking mainState(main), trafficState(traffic);
    std::unique_ptr<Blocking> aboutState;
    const auto first = [&](QDialog& about) {
        aboutState = std::make_unique<Blocking>(about);
        EXPECT_TRUE(mainState.Now);
        EXPECT_FALSE(trafficState.Now);
        traffic.activateWindow();
        boxes.Show("Over the dialog.");
        EXPECT_FALSE(aboutState->Now);
        Click(traffic, "RecordBtn"); // its file dialog blocks it alone
        EXPECT_TRUE(trafficState.Now);
        EXPECT_FALSE(aboutState->Now);
        boxes.Show("Over the dialog, too.");
        about.accept();
    };
    const auto message = [&](QDialog& box) {
        EXPECT_EQ(box.parentWidget()->objectName(), "AboutForm");
        EXPECT_TRUE(aboutState->Now);
        EXPECT_TRUE(mainState.Now);
        EXPECT_EQ(trafficState.Now, traffic.findChild<QDialog*>("SaveDialog") != nullptr);
        box.accept();
    };
    DialogDriver driver({{"AboutForm", first}, {"", message}, {"", message}});
    Trigger(main, "mnuAbout");
    EXPECT_TRUE(driver.Finished());
    EXPECT_FALSE(mainState.Now);
    traffic.close();
    EXPECT_FALSE(trafficState.Now); // its file dialog went with it
}

} // namespace
} // namespace kavro
