#include "monitor/trend_view_form.h"

#include "link/runtime_failure.h"
#include "support/form_driver.h"

#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTimer>
#include <QWheelEvent>

namespace kavro {
namespace {

constexpr std::int64_t Second = 1000, Minute = 60 * Second, Hour = 60 * Minute;
constexpr std::int64_t Now = 1'772'460'300'000;

/// Keeps what it is asked, and answers when the test says so.
class AskedHistory : public TrendHistory {
public:
    void Ask(std::vector<HistoryQuestion> questions,
             std::function<void(std::vector<HistoryAnswer>)> done) override {
        ++Times;
        Questions = std::move(questions);
        Done = std::move(done);
    }

    int Times = 0;
    std::vector<HistoryQuestion> Questions;
    std::function<void(std::vector<HistoryAnswer>)> Done;
};

/// Half an hour of a value at one a second, as large as the minutes that have passed.
class TrendViewTest : public testing::Test {
protected:
    TrendViewTest() {
        for (std::int64_t at = Now - 30 * Minute; at <= Now; at += Second)
            Memory.Add(at, 0, {{"0", "1", static_cast<double>((at - Now) / Minute) + 30, "V"}});
        View.SetLines({{.Name = "A", .Unit = "V", .Key = {1, "0"}, .Thresholds = {5.0, 25.0}}});
        View.SetNow({Now, 0});
        View.resize(700, 300);
        View.show();
        Paint();
    }

    void Paint() { View.grab(); }

    void Press(int key, Qt::KeyboardModifiers modifiers = {}) {
        PressKey(View, key, modifiers);
        Paint();
    }

    void Settle() {
        auto* timer = View.findChild<QTimer*>("HistorySettled");
        ASSERT_TRUE(timer && timer->isActive());
        timer->setInterval(0);
        while (timer->isActive())
            QApplication::processEvents();
    }

    Trend Memory;
    AskedHistory History;
    TrendView View{Memory, ","};
};

TEST_F(TrendViewTest, ZoomsAndMovesByKeysWheelAndDragging) {
    int told = 0;
    View.SpanChanged = [&] { ++told; };
    const auto state = [&] {
        return std::to_string(View.SpanMs() / Second) + (View.Following() ? " live" : " past");
    };
    const auto mouse = [&](QEvent::Type type, double x) {
        QMouseEvent event(type, {x, 150}, View.mapToGlobal(QPointF(x, 150)), Qt::LeftButton, Qt::LeftButton,
                          {});
        QApplication::sendEvent(&View, &event);
    };
    const auto wheel = [&](double x, int turned) {
        QWheelEvent event({x, 150}, View.mapToGlobal(QPointF(x, 150)), {}, {0, turned}, {}, {}, {}, false);
        QApplication::sendEvent(&View, &event);
    };
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[&] { Press(Qt::Key_Plus); }, "480 live"},
        {[&] { Press(Qt::Key_Minus); }, "600 live"},
        {[&] { Press(Qt::Key_Left); }, "600 past"},
        {[&] { Press(Qt::Key_End); }, "600 live"},
        {[&] { wheel(300, 120); }, "480 past"},
        {[&] { Press(Qt::Key_PageDown); }, "480 live"},
        {[&] { mouse(QEvent::MouseButtonPress, 200); }, "480 live"},
        {[&] {
             mouse(QEvent::MouseMove, 300);
             mouse(QEvent::MouseButtonRelease, 300);
         },
         "480 past"},
        {[&] { mouse(QEvent::MouseButtonDblClick, 300); }, "1800 live"},
        {[&] { Press(Qt::Key_Home); }, "1800 live"},
        {[&] {
             View.SetSpan(10);
             Press(Qt::Key_Home);
         },
         "600 past"}};
    for (const auto& [step, expected] : steps) {
        step();
        EXPECT_EQ(state(), expected);
    }
    EXPECT_EQ(told, 4);
    EXPECT_TRUE(View.accessibleDescription().contains("Not live"))
        << View.accessibleDescription().toStdString();
    const std::string data = View.Data();
    EXPECT_EQ(data.substr(0, data.find('\n')), "time,A least [V],A most [V]");
    EXPECT_NEAR(static_cast<double>(std::ranges::count(data, '\n')), 602, 5)
        << "a second is wider than a pixel";
}

TEST_F(TrendViewTest, ACursorReadsTheValueOfItsMoment) {
    Press(Qt::Key_C);
    const auto text = [&] { return View.accessibleDescription().toStdString(); };
    EXPECT_EQ(text().substr(2, 1) + text().substr(8), ":: A 25 V") << "five minutes ago";
    for (int step = 0; step < 13; ++step)
        Press(Qt::Key_Left, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_NE(text().find("A 23 V"), std::string::npos) << text();
    Press(Qt::Key_C);
    EXPECT_EQ(text(), "A");
    View.SetSpan(24 * 60); // the half hour is a few pixels
    Paint();
    QMouseEvent move(QEvent::MouseMove, {680, 150}, {680, 150}, Qt::NoButton, {}, {});
    QApplication::sendEvent(&View, &move);
    EXPECT_NE(text().find(" .. "), std::string::npos) << text();
    EXPECT_EQ(View.Picture().size(), View.size() * 2);
}

TEST_F(TrendViewTest, AsksTheHistoryOnceItStandsStillForWhatTheMemoryLacks) {
    View.SetHistory(&History);
    Paint();
    EXPECT_FALSE(View.findChild<QTimer*>("HistorySettled")->isActive()) << "the memory has it all";
    View.SetSpan(10);
    for (int page = 0; page < 3; ++page)
        Press(Qt::Key_PageUp);
    Settle();
    ASSERT_EQ(History.Times, 1);
    ASSERT_EQ(History.Questions.size(), 1U);
    const HistoryQuestion asked = History.Questions[0];
    EXPECT_EQ(asked.Address, 1);
    EXPECT_EQ(asked.ToMs, Now - 30 * Minute) << "where the memory begins";
    EXPECT_EQ(asked.FromMs % asked.ColumnMs, 0);
    EXPECT_LE(asked.FromMs, Now - 45 * Minute);
    const std::int64_t at = ColumnStart(Now - 35 * Minute, asked.ColumnMs);
    const auto done = std::exchange(History.Done, nullptr);
    done({{{{at, at, at, 7, 7, 7, 7, false}}, ""}});
    Paint();
    EXPECT_NE(View.Data().find(",7,7\n"), std::string::npos) << View.Data();
    Press(Qt::Key_Right);
    EXPECT_FALSE(View.findChild<QTimer*>("HistorySettled")->isActive()) << "it was asked for a bit more";
    Press(Qt::Key_Plus);
    Press(Qt::Key_Home);
    Press(Qt::Key_PageUp);
    Press(Qt::Key_PageUp);
    Settle();
    History.Done({{{}, "The history cannot be read."}});
    Paint();
    EXPECT_TRUE(View.accessibleDescription().contains("The history cannot be read."));
    View.SetHistory(nullptr);
    History.Done({{{}, "Too late."}});
    EXPECT_FALSE(View.accessibleDescription().contains("late"));
}

} // namespace
} // namespace kavro
