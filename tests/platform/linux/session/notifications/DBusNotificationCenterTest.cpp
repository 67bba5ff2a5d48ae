// Notifications as a server on the bus sees them. The tests play the servers, well or badly.
#include "platform/linux/notifications/DBusNotificationCenter.h"

#include "support/PlayedNotificationServer.h"
#include "support/RecordingLog.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <optional>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using State = NotificationService::State;

NotificationRequest request(const std::string& identifier, const std::string& title = "A bot") {
    return {.identifier = identifier, .title = title, .categoryIdentifier = "BOT"};
}

class DBusNotificationCenterTest : public testing::Test, protected TurningMainLoop {
protected:
    void start(DBusNotificationCenter::Limits limits = {.answer = Seconds(20)}) {
        center.emplace(loop, log, joinSessionBus(), limits);
        center->setCategories({{"BOT", {{"OBJECT", "Object…"}, {"DISMISS", "Dismiss"}}}});
        subscription = center->onResponse([this](const NotificationResponse& response) {
            responses.emplace_back(response.actionIdentifier, response.requestIdentifier);
        });
    }
    [[nodiscard]] bool becomes(State state) {
        return comesTo([&] { return center->service().state == state; });
    }
    /// Whether the server is asked to show `count` notifications in all.
    [[nodiscard]] bool shows(const PlayedNotificationServer& server, std::size_t count) {
        return comesTo([&] { return server.shown.size() == count; });
    }

    RecordingLog log;
    std::optional<DBusNotificationCenter> center;
    std::vector<std::pair<std::string, std::string>> responses;
    Subscription subscription;
};

} // namespace

TEST_F(DBusNotificationCenterTest, replacesByIdentifierEvenIfTheServerInventsNumbers) {
    PlayedNotificationServer server;
    server.inventsNumbers = true;
    start();
    center->post(request("a", "one"));
    center->post(request("b", "two"));
    ASSERT_TRUE(shows(server, 2));
    center->post(request("a", "three"));
    ASSERT_TRUE(shows(server, 3));
    center->post(request("a", "four"));
    ASSERT_TRUE(shows(server, 4));
    EXPECT_EQ(server.shown[2].replaces, 1U);
    EXPECT_EQ(server.shown[3].replaces, 3U) << "the number that came back for \"three\"";

    center->removeDelivered("b");
    ASSERT_TRUE(comesTo([&] { return !server.closed.empty(); }));
    server.tellClosed(4);
    server.tellClosed(77);
    center->post(request("c"));
    center->post(request("d"));
    ASSERT_TRUE(shows(server, 6)); // so the answer about c, which follows the signals, has come
    center->removeDelivered("a");  // closed by the user: there is nothing to take away
    center->post(request("a"));
    ASSERT_TRUE(shows(server, 7));
    EXPECT_EQ(server.shown[6].replaces, 0U);
    EXPECT_THAT(server.closed, ElementsAre(2U));
}

TEST_F(DBusNotificationCenterTest, reportsAPressEvenAfterTheServerRestarted) {
    std::string key;
    {
        PlayedNotificationServer server;
        start();
        center->post(request("a"));
        ASSERT_TRUE(shows(server, 1));
        ASSERT_EQ(server.shown[0].keys.size(), 2U);
        EXPECT_THAT(server.shown[0].buttons, ElementsAre("Object…", "Dismiss"));
        key = server.shown[0].keys[0];
        server.press(1, server.shown[0].keys[1]);
        ASSERT_TRUE(comesTo([&] { return responses.size() == 1; }));
    }
    ASSERT_TRUE(becomes(State::absent));

    PlayedNotificationServer next;
    ASSERT_TRUE(becomes(State::present));
    next.press(1, "OBJECT");     // of another program
    next.press(1, "OBJECT#0-1"); // of an earlier run
    next.press(612, key);
    ASSERT_TRUE(comesTo([&] { return responses.size() == 2; }));
    EXPECT_THAT(responses, ElementsAre(Pair("DISMISS", "a"), Pair("OBJECT", "a")));

    center->post(request("a"));
    ASSERT_TRUE(shows(next, 1));
    EXPECT_EQ(next.shown[0].replaces, 0U) << "not a number of the previous server";
}

TEST_F(DBusNotificationCenterTest, ignoresSignalsFromOthers) {
    PlayedNotificationServer server;
    start();
    center->post(request("a"));
    ASSERT_TRUE(shows(server, 1));
    const auto stranger = joinSessionBus();
    const auto& keys = server.shown[0].keys;
    g_dbus_connection_emit_signal(stranger.get(), nullptr, "/org/freedesktop/Notifications",
                                  "org.freedesktop.Notifications", "ActionInvoked",
                                  g_variant_new("(us)", 1U, keys[0].c_str()), nullptr);
    ASSERT_TRUE(g_dbus_connection_flush_sync(stranger.get(), nullptr, nullptr));
    server.press(1, keys[1]); // comes after the stranger's
    ASSERT_TRUE(comesTo([&] { return !responses.empty(); }));
    EXPECT_THAT(responses, ElementsAre(Pair("DISMISS", "a")));
}

TEST_F(DBusNotificationCenterTest, leavesOneCallWithAServerThatHangs) {
    PlayedNotificationServer server;
    start({.answer = Seconds(0.2)});
    ASSERT_TRUE(becomes(State::present));
    server.isHanging = true;
    server.calls = 0;
    center->post(request("first"));
    ASSERT_TRUE(becomes(State::silent));
    for (int count = 0; count < 120; ++count)
        center->post(request("bot " + std::to_string(count / 2), std::to_string(count)));
    NotificationAuthorization authorization{};
    center->fetchAuthorization([&](auto answer) { authorization = answer; });
    EXPECT_EQ(authorization, NotificationAuthorization::notDetermined);
    std::optional<std::string> fault;
    center->requestAuthorization([&](auto answer) { fault = answer; });
    EXPECT_THAT(fault, testing::Optional(testing::HasSubstr("does not answer")));
    EXPECT_EQ(server.calls, 1);

    server.answerAll();
    ASSERT_TRUE(becomes(State::present));
    ASSERT_TRUE(shows(server, 51));
    EXPECT_EQ(server.shown[0].title, "A bot") << "was not sent again";
    EXPECT_EQ(server.shown[1].title, "21") << "the 50 newest";
    EXPECT_EQ(server.shown[50].title, "119");
    EXPECT_EQ(log.count("does not answer"), 1U);
}

TEST_F(DBusNotificationCenterTest, keepsWhatIsNewsForTheNextServer) {
    start({.answer = Seconds(20), .newsworthy = Seconds(0.5)});
    ASSERT_TRUE(becomes(State::absent));
    center->post(request("old"));
    const auto posted = loop.now();
    ASSERT_TRUE(comesTo([&] { return loop.now() - posted > Seconds(0.6); }));
    center->post(request("new", "still news"));
    PlayedNotificationServer server({"body"});
    ASSERT_TRUE(becomes(State::present));
    ASSERT_TRUE(shows(server, 1));
    EXPECT_EQ(server.shown[0].title, "still news");
    EXPECT_THAT(server.shown[0].keys, IsEmpty()) << "a server without buttons";
    EXPECT_FALSE(center->service().hasActions);
}

TEST_F(DBusNotificationCenterTest, showsAgainWhatAServerDidNotAnswerBeforeItEnded) {
    std::optional<PlayedNotificationServer> server;
    server.emplace();
    start();
    ASSERT_TRUE(becomes(State::present));
    server->isHanging = true;
    server->calls = 0;
    center->post(request("a", "one"));
    ASSERT_TRUE(comesTo([&] { return server->calls == 1; }));
    center->post(request("b", "two"));
    server.reset();
    server.emplace();
    ASSERT_TRUE(shows(*server, 2));
    EXPECT_EQ(server->shown[0].title, "one");
    EXPECT_EQ(server->shown[1].title, "two");
}

TEST_F(DBusNotificationCenterTest, goesOnAfterARefusal) {
    PlayedNotificationServer server;
    server.refuses = true;
    start();
    center->post(request("a"));
    ASSERT_TRUE(comesTo([&] { return log.count("too many") == 1; }));
    EXPECT_EQ(center->service().state, State::present);
    server.refuses = false;
    center->post(request("b"));
    ASSERT_TRUE(shows(server, 1));
}

TEST_F(DBusNotificationCenterTest, retriesWhenTheBusHadNoRoom) {
    PlayedNotificationServer server;
    start({.answer = Seconds(0.3)});
    ASSERT_TRUE(becomes(State::present));
    server.isBusy = true;
    center->post(request("a", "one"));
    ASSERT_TRUE(comesTo([&] { return log.count("A notification waits: ") == 1; }));
    center->post(request("b", "two"));
    server.isBusy = false;
    ASSERT_TRUE(shows(server, 2));
    EXPECT_EQ(server.shown[0].title, "one");
    EXPECT_EQ(server.shown[1].title, "two");
}

TEST_F(DBusNotificationCenterTest, passesOnTheTokenOfItsOwnNotificationsOnly) {
    ::unsetenv("XDG_ACTIVATION_TOKEN");
    PlayedNotificationServer server;
    start();
    center->post(request("a"));
    ASSERT_TRUE(shows(server, 1));
    const auto tokenAfterPress = [&](std::uint32_t number) {
        responses.clear();
        server.sendToken(number, "token");
        server.press(1, server.shown[0].keys[0]);
        EXPECT_TRUE(comesTo([&] { return !responses.empty(); }));
        const char* const token = std::getenv("XDG_ACTIVATION_TOKEN");
        return std::string(token != nullptr ? token : "none");
    };
    EXPECT_EQ(tokenAfterPress(99), "none") << "another program's notification";
    EXPECT_EQ(tokenAfterPress(1), "token");
    ::unsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(DBusNotificationCenterTest, reportsThatThereIsNoBus) {
    center.emplace(loop, log, nullptr);
    std::optional<NotificationAuthorization> authorization;
    center->fetchAuthorization([&](auto answer) { authorization = answer; });
    EXPECT_EQ(authorization, NotificationAuthorization::notDetermined);
    EXPECT_EQ(center->service().state, State::absent);
    center->post(request("a"));
    center->removeDelivered("a");
}

} // namespace quorva
