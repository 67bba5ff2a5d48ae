#include "base/Published.h"

#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// The only one who may change its field.
struct Counter {
    Published<int, Counter> field{1};
    void set(int next) { field = next; }
};

TEST(Published, tellsThePresentValueThenEachNextOneBeforeItChanges) {
    Counter counter;
    std::vector<int> told;
    int heldWhenTold = 0;
    int changes = 0;
    auto subscription = counter.field.observe([&](int next) {
        told.push_back(next);
        heldWhenTold = counter.field;
    });
    const auto changing = counter.field.observeChanges([&] { ++changes; });
    counter.set(2);
    EXPECT_EQ(heldWhenTold, 1);
    counter.set(2);
    subscription.reset();
    counter.set(3);
    EXPECT_THAT(told, ElementsAre(1, 2, 2));
    EXPECT_EQ(changes, 2) << "an equal value is not a change";
}

TEST(Published, deliversOnTheLoopUntilTheSubscriptionEnds) {
    VirtualMainLoop loop;
    std::vector<int> told;
    Subscription subscription;
    {
        Counter counter;
        subscription = counter.field.observeOn(loop, [&](int next) { told.push_back(next); });
        counter.set(2);
        EXPECT_THAT(told, testing::IsEmpty());
        loop.runPosted();
        EXPECT_THAT(told, ElementsAre(1, 2));
        counter.set(3);
        subscription.reset();
        counter.set(4);
        loop.runPosted();
        subscription = counter.field.observeOn(loop, [&](int next) { told.push_back(next); });
    }
    loop.runPosted();
    EXPECT_THAT(told, ElementsAre(1, 2, 4)) << "told of what was posted while it was subscribed";
}

TEST(CallbackList, allowsSubscribingAndEndingWhileItCalls) {
    CallbackList<> list;
    std::vector<std::string> calls;
    Subscription second;
    Subscription third;
    Subscription first = list.add([&] {
        calls.emplace_back("first");
        first.reset();
        second.reset();
        third = list.add([&] { calls.emplace_back("third"); });
    });
    second = list.add([&] { calls.emplace_back("second"); });
    list.call();
    list.call();
    EXPECT_THAT(calls, ElementsAre("first", "third"));
}

} // namespace
} // namespace quorva
