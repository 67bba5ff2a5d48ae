// The contract of every main loop, tested with the virtual one and with GLib's.
#include "platform/linux/glib/GLibMainLoop.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <thread>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct VirtualLoop {
    VirtualMainLoop loop;
    void runFor(Seconds duration) { loop.advance(duration); }
};

struct RealLoop {
    GLibMainLoop loop;
    void runFor(Seconds duration) {
        const auto end = loop.after(duration, [this] { loop.quit(); });
        loop.run();
    }
};

template <typename Loop>
class MainLoopContract : public testing::Test {
protected:
    Loop under;
    MainLoop& loop = under.loop;
    std::vector<std::string> ran;

    Task note(std::string name) {
        return [this, name = std::move(name)] { ran.push_back(name); };
    }
};
using Loops = testing::Types<VirtualLoop, RealLoop>;
TYPED_TEST_SUITE(MainLoopContract, Loops);

TYPED_TEST(MainLoopContract, runsPostedTasksLaterAndInOrder) {
    this->loop.post([this] {
        this->ran.emplace_back("a");
        this->loop.post(this->note("c"));
    });
    this->loop.post(this->note("b"));
    EXPECT_THAT(this->ran, testing::IsEmpty());
    this->under.runFor(20ms);
    EXPECT_THAT(this->ran, ElementsAre("a", "b", "c"));
}

TYPED_TEST(MainLoopContract, runsTimersWhenTheyAreDueUnlessTheyWereDropped) {
    const auto before = this->loop.now();
    const auto late = this->loop.after(60ms, this->note("late"));
    const auto soon = this->loop.after(10ms, this->note("soon"));
    auto never = this->loop.after(20ms, this->note("never"));
    never.reset();
    Timer once;
    once = this->loop.after(30ms, [&] {
        this->ran.emplace_back("drops itself");
        once.reset();
    });
    this->under.runFor(200ms);
    EXPECT_THAT(this->ran, ElementsAre("soon", "drops itself", "late"));
    EXPECT_GE(this->loop.now() - before, 190ms);
}

TYPED_TEST(MainLoopContract, repeatsUntilTheTimerIsDroppedFromWithin) {
    Timer timer;
    timer = this->loop.every(5ms, [&] {
        this->ran.emplace_back("tick");
        if (this->ran.size() == 3)
            timer.reset();
    });
    this->under.runFor(300ms);
    EXPECT_THAT(this->ran, testing::SizeIs(3));
}

TYPED_TEST(MainLoopContract, takesTasksFromOtherThreads) {
    std::thread other([this] { this->loop.post(this->note("from afar")); });
    other.join();
    this->under.runFor(20ms);
    EXPECT_THAT(this->ran, ElementsAre("from afar"));
}

TEST(GLibMainLoop, turnsSignalsIntoTasks) {
    GLibMainLoop loop;
    int received = 0;
    const auto subscription = GLibMainLoop::onSignal(SIGUSR1, [&] {
        ++received;
        loop.quit();
    });
    const auto deadline = loop.after(10s, [&] { loop.quit(); });
    std::raise(SIGUSR1);
    loop.run();
    EXPECT_EQ(received, 1);
}

} // namespace
} // namespace quorva
