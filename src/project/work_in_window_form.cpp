#include "project/work_in_window_form.h"

#include "map/module_access.h"
#include "map/product.h"

#include <QCoreApplication>

namespace kavro {

namespace {

constexpr ProgramWords Words = {ProductName, "Operation > Terminal", "Network > Search"};

} // namespace

void WorkInWindow::LetWindowsLive(KeptList& list) const {
    list.Swap();
    QCoreApplication::processEvents();
    list.Swap();
    if (stopping_)
        throw Interruption();
}

WorkEnd WorkInWindow::Run(kavro::Messages& told, const decltype(LineWork::Progress)& progress,
                          const std::function<void(const LineWork& work)>& work) {
    if (running_)
        return WorkEnd::Stopped;
    running_ = true;
    stopping_ = false;
    WorkEnd end = WorkEnd::Failed;
    Guard(messages_, [&] {
        OpenPort(session_.Line);
        LineWorkScope scope(session_);
        const BeforeEachCommand live(session_.Line, [&](const std::string&) { LetWindowsLive(scope.List); });
        try {
            work({session_, {told, Words}, progress});
            end = WorkEnd::Done;
        } catch (const Interruption&) {
            end = WorkEnd::Stopped;
        }
    });
    running_ = false;
    return end;
}

} // namespace kavro
