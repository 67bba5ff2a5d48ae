// Notifications that a real server shows on a private screen: dunst under Xvfb. grep(1) plays its
// menu of buttons, and picks one.
#include "platform/linux/notifications/DBusNotificationCenter.h"
#include "support/PlayedNotificationServer.h"
#include "support/PrivateSound.h"
#include "support/RecordingLog.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace quorva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using State = NotificationService::State;

/// A display in memory. Sets DISPLAY to its number.
class PrivateScreen {
public:
    PrivateScreen() {
        auto* const output = g_subprocess_get_stdout_pipe(process.get());
        std::string number;
        char digit = '\0';
        while (g_input_stream_read(output, &digit, 1, nullptr, nullptr) == 1 && digit != '\n')
            number += digit;
        ::setenv("DISPLAY", (":" + number).c_str(), 1);
    }

private:
    StartedProgram process{
        {"Xvfb", "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "800x600x24"},
        static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_PIPE |
                                      G_SUBPROCESS_FLAGS_STDERR_SILENCE)};
};

class DunstTest : public testing::Test, protected TurningMainLoop {
protected:
    DunstTest() { std::ofstream(configuration) << "[global]\ndmenu = /usr/bin/grep -m1 Object\n"; }

    void startServer() {
        server.emplace(std::initializer_list<const char*>{"dunst", "-conf", configuration.c_str()});
    }

    [[nodiscard]] bool becomes(State state) {
        return comesTo([&] { return center.service().state == state; });
    }

    /// Runs dunstctl(1) while the main loop turns, and returns what it prints.
    std::string control(std::initializer_list<const char*> words) {
        std::vector<const gchar*> arguments{"dunstctl"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        arguments.push_back(nullptr);
        const GObjectPtr<GSubprocess> program(
            g_subprocess_newv(arguments.data(), G_SUBPROCESS_FLAGS_STDOUT_PIPE, nullptr));
        std::optional<std::string> said;
        g_subprocess_communicate_utf8_async(
            program.get(), nullptr, nullptr,
            [](GObject* source, GAsyncResult* result, gpointer told) {
                gchar* output = nullptr;
                g_subprocess_communicate_utf8_finish(G_SUBPROCESS(source), result, &output, nullptr,
                                                     nullptr);
                const GCharsPtr owned(output);
                static_cast<std::optional<std::string>*>(told)->emplace(output ? output : "");
            },
            &said);
        EXPECT_TRUE(comesTo([&] { return said.has_value(); }));
        return said.value_or("");
    }
    [[nodiscard]] bool displays(const char* count) {
        return comesTo([&] { return control({"count", "displayed"}) == count; });
    }

    const std::string configuration = std::string(std::getenv("HOME")) + "/dunstrc";
    PrivateScreen screen;
    std::optional<StartedProgram> server;
    RecordingLog log;
    DBusNotificationCenter center{loop, log, joinSessionBus()};
    std::vector<NotificationResponse> responses;
    Subscription subscription = center.onResponse(
        [this](const NotificationResponse& response) { responses.push_back(response); });
};

} // namespace

TEST_F(DunstTest, showsReplacesAndTakesAwayAlsoAfterARestart) {
    startServer();
    center.setCategories({{"BOT", {{"OBJECT", "Object"}, {"DISMISS", "Dismiss"}}}});
    ASSERT_TRUE(becomes(State::present));
    EXPECT_TRUE(center.service().hasActions);
    NotificationRequest request{.identifier = "bot",
                                .title = "first",
                                .body = "<i>a & b",
                                .urgency = NotificationUrgency::critical,
                                .categoryIdentifier = "BOT"};
    center.post(request);
    ASSERT_TRUE(displays("1\n"));
    request.title = "second";
    center.post(request);
    center.post(
        {.identifier = "other", .title = "other", .urgency = NotificationUrgency::critical});
    ASSERT_TRUE(displays("2\n"));
    center.removeDelivered("other");
    ASSERT_TRUE(displays("1\n"));
    (void)control({"action", "0"});
    ASSERT_TRUE(comesTo([&] { return !responses.empty(); }));
    EXPECT_THAT(responses, ElementsAre(NotificationResponse{"OBJECT", "bot"}));
    (void)control({"close-all"});
    const auto history = control({"history"});
    EXPECT_THAT(history, HasSubstr("second"));
    EXPECT_THAT(history, testing::Not(HasSubstr("first")));
    EXPECT_THAT(history, HasSubstr("&lt;i&gt;a &amp; b"));

    server.reset();
    ASSERT_TRUE(becomes(State::absent));
    startServer();
    ASSERT_TRUE(becomes(State::present));
    center.post(request);
    ASSERT_TRUE(displays("1\n"));
    (void)control({"action", "0"});
    EXPECT_TRUE(comesTo([&] { return responses.size() == 2; }));
}

} // namespace quorva
