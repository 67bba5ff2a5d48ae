// The worker thread: the order of tasks, a full queue, and both ways to end.
#include "base/SerialQueue.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace quorva {
namespace {

using Clock = std::chrono::steady_clock;

TEST(SerialQueue, runsInOrderWhatItAcceptedBeforeItEnds) {
    std::vector<int> ran;
    {
        std::promise<void> gate;
        SerialQueue queue(2);
        std::promise<void> begun;
        ASSERT_TRUE(queue.post([&] {
            begun.set_value();
            gate.get_future().wait();
        }));
        begun.get_future().wait();
        EXPECT_TRUE(queue.post([&] { ran.push_back(1); }));
        EXPECT_TRUE(queue.post([&] { ran.push_back(2); }));
        EXPECT_FALSE(queue.post([&] { ran.push_back(3); })) << "it is full";
        gate.set_value();
        queue.drain();
        EXPECT_EQ(ran.size(), 2U);
        EXPECT_TRUE(queue.post([&] { ran.push_back(4); }));
    }
    EXPECT_THAT(ran, testing::ElementsAre(1, 2, 4));
}

TEST(SerialQueue, leavesATaskThatHangsAndDropsThoseBehindIt) {
    const auto gate = std::make_shared<std::promise<void>>();
    auto token = std::make_shared<int>();
    const std::weak_ptr<int> held = token;
    const auto ran = std::make_shared<std::atomic<bool>>(false);
    const auto start = Clock::now();
    {
        SerialQueue queue(SerialQueue::unlimited, Seconds(0.05));
        ASSERT_TRUE(queue.post([gate, opened = gate->get_future().share()] { opened.wait(); }));
        ASSERT_TRUE(queue.post([ran, token] { *ran = true; }));
    }
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(10));
    gate->set_value();
    token.reset();
    while (!held.expired() && Clock::now() - start < std::chrono::seconds(20))
        std::this_thread::yield();
    EXPECT_TRUE(held.expired()) << "what was dropped is destroyed";
    EXPECT_FALSE(*ran);
}

} // namespace
} // namespace quorva
