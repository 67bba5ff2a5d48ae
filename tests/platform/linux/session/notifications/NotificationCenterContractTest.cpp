// What every notification center promises, asked of the one in memory and of the one on the bus.
#include "platform/linux/notifications/DBusNotificationCenter.h"
#include "support/FakeNotificationCenter.h"
#include "support/PlayedNotificationServer.h"
#include "support/RecordingLog.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::Optional;
using State = NotificationService::State;

struct InMemory {
    FakeNotificationCenter center;

    template <typename Condition>
    [[nodiscard]] bool comesTo(Condition condition) {
        return condition();
    }
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const auto& request : center.delivered)
            titles.push_back(request.title);
        return titles;
    }
    void press(const std::string& title, const std::string& button) {
        const auto request =
            std::ranges::find(center.delivered, title, &NotificationRequest::title);
        const auto category = std::ranges::find(center.categories, request->categoryIdentifier,
                                                &NotificationCategory::identifier);
        const auto action =
            std::ranges::find(category->actions, button, &NotificationAction::title);
        center.press(action->identifier, std::string(request->identifier));
    }
    void endServer() { center.become({State::absent, false}); }
    void startServer() { center.become({State::present, true}); }
};

struct OnTheBus : TurningMainLoop {
    std::optional<PlayedNotificationServer> server{std::in_place};
    RecordingLog log;
    DBusNotificationCenter center{loop, log, joinSessionBus(), {.answer = Seconds(20)}};

    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const auto& [number, notification] : server->displayed)
            titles.push_back(notification.title);
        return titles;
    }
    void press(const std::string& title, const std::string& button) {
        for (const auto& [number, notification] : server->displayed)
            for (std::size_t index = 0; index < notification.buttons.size(); ++index)
                if (notification.title == title && notification.buttons[index] == button)
                    server->press(number, notification.keys[index]);
    }
    void endServer() { server.reset(); }
    void startServer() { server.emplace(); }
};

template <typename World>
class NotificationCenterContract : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(becomes(State::present)); }

    [[nodiscard]] NotificationCenter& center() { return world.center; }
    [[nodiscard]] bool becomes(State state) {
        return world.comesTo([&] { return center().service().state == state; });
    }
    [[nodiscard]] testing::AssertionResult shows(const std::vector<std::string>& titles) {
        const bool isShown = world.comesTo([&] {
            auto shown = world.titles();
            std::ranges::sort(shown);
            return shown == titles;
        });
        if (isShown)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << testing::PrintToString(world.titles());
    }
    void post(const std::string& identifier, const std::string& title) {
        center().post({.identifier = identifier, .title = title, .categoryIdentifier = "BOT"});
    }

    World world;
};
using Worlds = testing::Types<InMemory, OnTheBus>;
TYPED_TEST_SUITE(NotificationCenterContract, Worlds);

TYPED_TEST(NotificationCenterContract, showsReplacesAndTakesAwayByIdentifier) {
    this->post("a", "one");
    this->post("b", "two");
    EXPECT_TRUE(this->shows({"one", "two"}));
    this->post("a", "three");
    EXPECT_TRUE(this->shows({"three", "two"}));
    this->center().removeDelivered("b");
    this->center().removeDelivered("never posted");
    EXPECT_TRUE(this->shows({"three"}));
}

TYPED_TEST(NotificationCenterContract, reportsAPressToThoseWhoAreSubscribed) {
    std::vector<NotificationResponse> first;
    std::vector<NotificationResponse> second;
    auto subscription = this->center().onResponse([&](const auto& it) { first.push_back(it); });
    const auto other = this->center().onResponse([&](const auto& it) { second.push_back(it); });
    this->center().setCategories({{"BOT", {{"OBJECT", "Object"}, {"DISMISS", "Dismiss"}}}});
    this->post("a", "one");
    ASSERT_TRUE(this->shows({"one"}));
    this->world.press("one", "Object");
    ASSERT_TRUE(this->world.comesTo([&] { return second.size() == 1; }));
    subscription.reset();
    this->world.press("one", "Dismiss");
    ASSERT_TRUE(this->world.comesTo([&] { return second.size() == 2; }));
    EXPECT_THAT(first, ElementsAre(NotificationResponse{"OBJECT", "a"}));
    EXPECT_EQ(second[1], (NotificationResponse{"DISMISS", "a"}));
}

TYPED_TEST(NotificationCenterContract, answersOnceWhetherItMayPost) {
    std::vector<NotificationAuthorization> authorizations;
    std::vector<std::optional<std::string>> errors;
    const auto ask = [&] {
        this->center().fetchAuthorization([&](auto answer) { authorizations.push_back(answer); });
        this->center().requestAuthorization([&](auto error) { errors.push_back(error); });
    };
    ask();
    ASSERT_TRUE(this->world.comesTo([&] { return errors.size() == 1; }));
    this->world.endServer();
    ASSERT_TRUE(this->becomes(State::absent));
    ask();
    ASSERT_TRUE(this->world.comesTo([&] { return errors.size() == 2; }));
    this->world.startServer();
    ASSERT_TRUE(this->becomes(State::present));
    EXPECT_THAT(authorizations, ElementsAre(NotificationAuthorization::authorized,
                                            NotificationAuthorization::notDetermined));
    EXPECT_THAT(errors, ElementsAre(std::nullopt, Optional(testing::Not(testing::IsEmpty()))));
}

TYPED_TEST(NotificationCenterContract, showsWhatWaitedOnceAServerIsThere) {
    this->post("gone", "gone with its server");
    ASSERT_TRUE(this->shows({"gone with its server"}));
    this->world.endServer();
    ASSERT_TRUE(this->becomes(State::absent));
    this->post("a", "one");
    this->post("b", "two");
    this->post("a", "three");
    this->post("c", "four");
    this->center().removeDelivered("b");
    this->world.startServer();
    EXPECT_TRUE(this->shows({"four", "three"}));
}

TYPED_TEST(NotificationCenterContract, reportsEachChangeOfTheService) {
    int changes = 0;
    auto subscription = this->center().onServiceChange([&] { ++changes; });
    EXPECT_EQ(this->center().service(), (NotificationService{State::present, true}));
    this->world.endServer();
    ASSERT_TRUE(this->becomes(State::absent));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(this->center().service().hasActions);
    this->world.startServer();
    ASSERT_TRUE(this->becomes(State::present));
    EXPECT_EQ(changes, 2);
    subscription.reset();
    this->world.endServer();
    ASSERT_TRUE(this->becomes(State::absent));
    EXPECT_EQ(changes, 2);
}

} // namespace
} // namespace quorva
