// popover-bench: the time from the press on the tray icon until the popover is painted, the first
// time and later; the speed of scrolling sixty rows; and the memory that the windows use and leave
// behind. Prints figures without judging them.
#include "support/Stage.h"

#include <fmt/format.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QQuickItem>
#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace quorva;
using namespace std::chrono_literals;

constexpr char popover[] = "MenuBarView";

/// The private memory of this program; the system reclaims pages of libraries when it needs them.
double ownMegabytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word)
        if (word == "RssAnon:")
            status >> kilobytes;
    return kilobytes / 1000;
}

/// Waits until the window has been painted again; returns how long that took.
double millisecondsToPaint(Stage& stage, const std::function<void()>& change) {
    QElapsedTimer timer;
    timer.start();
    change();
    auto* const window = stage.ui.window(popover);
    bool isPainted = false;
    const auto connection = QObject::connect(window, &QQuickWindow::frameSwapped, window,
                                             [&isPainted] { isPainted = true; });
    window->update();
    while (!isPainted && timer.elapsed() < 5000) {
        stage.computer.loop.runPosted();
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
    }
    QObject::disconnect(connection);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

QQuickItem* scrollArea(QQuickItem* item) {
    if (item->inherits("QQuickFlickable"))
        return item;
    for (auto* const child : item->childItems())
        if (auto* const found = scrollArea(child))
            return found;
    return nullptr;
}

double slowestScrollStep(Stage& stage) {
    auto* const area = scrollArea(stage.ui.window(popover)->contentItem());
    std::vector<double> steps;
    for (int at = 0; at < 120; ++at)
        steps.push_back(
            millisecondsToPaint(stage, [&] { area->setProperty("contentY", 20 * at); }));
    return *std::max_element(steps.begin(), steps.end());
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    Stage stage;
    stage.permit(true, true);
    const double idle = ownMegabytes();
    const auto open = [&] { stage.ui.openPopover(); };
    fmt::print("popover, first time:  {:6.1f} ms until painted\n",
               millisecondsToPaint(stage, open));
    std::vector<double> later;
    for (int each = 0; each < 10; ++each) {
        stage.ui.closePopover();
        stage.settle();
        later.push_back(millisecondsToPaint(stage, open));
    }
    fmt::print("popover, then:        {:6.1f} ms, the slowest of ten\n",
               *std::max_element(later.begin(), later.end()));
    for (int each = 0; each < 60; ++each)
        stage.showInMeeting("Acme " + std::to_string(each) + " Notetaker");
    fmt::print("sixty rows appear:    {:6.1f} ms\n",
               millisecondsToPaint(stage, [&] { stage.settle(); }));
    fmt::print("scrolling sixty rows: {:6.1f} ms a frame, the slowest of 120\n",
               slowestScrollStep(stage));
    const double shown = ownMegabytes();
    stage.ui.closePopover();
    stage.settle();
    stage.computer.loop.advance(61s);
    fmt::print("memory of its own: {:.1f} MB before, {:.1f} MB with the popover, {:.1f} MB a "
               "minute after\n",
               idle, shown, ownMegabytes());
    return 0;
}
