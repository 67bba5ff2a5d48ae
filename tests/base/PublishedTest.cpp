#include "base/Published.h"

#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(Published, tellsThePresentValueThenEachNextOneBeforeItChanges) {
    Published<int> field(1);
    std::vector<int> told;
    int heldWhenTold = 0;
    auto subscription = field.observe([&](int next) {
        told.push_back(next);
        heldWhenTold = field;
    });
    field = 2;
    EXPECT_EQ(heldWhenTold, 1);
    field = 2;
    subscription.reset();
    field = 3;
    EXPECT_THAT(told, ElementsAre(1, 2, 2));
}

TEST(Published, deliversOnTheLoopUntilTheSubscriptionEnds) {
    VirtualMainLoop loop;
    std::vector<int> told;
    Subscription subscription;
    {
        Published<int> field(1);
        subscription = field.observeOn(loop, [&](int next) { told.push_back(next); });
        field = 2;
        EXPECT_THAT(told, testing::IsEmpty());
        loop.runPosted();
        EXPECT_THAT(told, ElementsAre(1, 2));
        field = 3;
        subscription.reset();
        field = 4;
        loop.runPosted();
        subscription = field.observeOn(loop, [&](int next) { told.push_back(next); });
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
