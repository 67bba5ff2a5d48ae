// Who is the session's instance, and how a later one reaches it.
#include "platform/linux/desktop/ApplicationInstance.h"

#include "support/PlayedNotificationServer.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

namespace quorva {
namespace {

using testing::ElementsAre;
using Kind = ApplicationInstance::Claim::Kind;

constexpr const char* name = "com.veltran.QuorvaApp";

class ApplicationInstanceTest : public testing::Test, protected TurningMainLoop {
protected:
    ApplicationInstance::Claim claim() {
        return ApplicationInstance::claim(
            joinSessionBus(),
            {.onActivate =
                 [this](const Activation& activation) { activations.push_back(activation); },
             .onLost = [this] { ++losses; }});
    }
    /// As a second program of its own, while this one's main loop turns.
    ApplicationInstance::Claim claimElsewhere() {
        ApplicationInstance::Claim result;
        std::atomic<bool> isDone = false;
        std::thread other([&] {
            result = ApplicationInstance::claim(joinSessionBus(), {});
            isDone = true;
        });
        EXPECT_TRUE(comesTo([&] { return isDone.load(); }));
        other.join();
        return result;
    }
    static void call(GDBusConnection* bus, const char* method, GVariant* parameters) {
        g_dbus_connection_call(bus, name, "/com/veltran/QuorvaApp", "org.freedesktop.Application",
                               method, parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                               nullptr, nullptr);
    }

    std::vector<Activation> activations;
    int losses = 0;
};

} // namespace

TEST_F(ApplicationInstanceTest, activatesTheFirstFromTheSecond) {
    const auto first = claim();
    ASSERT_EQ(first.kind, Kind::first);
    ::setenv("XDG_ACTIVATION_TOKEN", "token-1", 1);
    const auto second = claimElsewhere();
    EXPECT_EQ(second.kind, Kind::second);
    EXPECT_TRUE(second.hasAnswered);
    EXPECT_EQ(second.instance, nullptr);

    const auto other = joinSessionBus();
    call(other.get(), "ActivateAction",
         g_variant_new_parsed("('settings', @av [], {'desktop-startup-id': <'id-2'>})"));
    call(other.get(), "Open", g_variant_new_parsed("(['file:///tmp'], @a{sv} {})"));
    ASSERT_TRUE(comesTo([&] { return activations.size() == 3; }));
    EXPECT_THAT(activations, ElementsAre(Activation{"", "token-1"}, Activation{"settings", "id-2"},
                                         Activation{"", ""}));
    EXPECT_EQ(losses, 0);
}

TEST_F(ApplicationInstanceTest, isFirstAfterTheFirstHasEnded) {
    auto first = claim();
    ASSERT_EQ(first.kind, Kind::first);
    first.instance.reset();
    auto next = claim();
    EXPECT_EQ(next.kind, Kind::first);
}

TEST_F(ApplicationInstanceTest, waitsNoLongerThanItSaysForAnInstanceThatHangs) {
    const auto hung = joinSessionBus();
    g_dbus_connection_add_filter(
        hung.get(),
        [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
           gpointer) -> GDBusMessage* {
            if (isIncoming != FALSE &&
                g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
                g_object_unref(message);
                return nullptr;
            }
            return message;
        },
        nullptr, nullptr);
    ownName(hung.get(), name);
    const auto start = std::chrono::steady_clock::now();
    const auto second = claim();
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(second.kind, Kind::second);
    EXPECT_FALSE(second.hasAnswered);
    EXPECT_FALSE(second.reason.empty());
    EXPECT_GE(waited, std::chrono::milliseconds(650));
    EXPECT_LT(waited, std::chrono::seconds(10));
}

TEST_F(ApplicationInstanceTest, tellsThatTheBusIsGone) {
    auto bus = joinSessionBus();
    auto* const connection = bus.get();
    const auto first = ApplicationInstance::claim(std::move(bus), {.onLost = [this] { ++losses; }});
    ASSERT_EQ(first.kind, Kind::first);
    g_dbus_connection_close(connection, nullptr, nullptr, nullptr);
    ASSERT_TRUE(comesTo([&] { return losses > 0; }));
    EXPECT_EQ(losses, 1);
}

TEST_F(ApplicationInstanceTest, saysWhyThereIsNoBus) {
    EXPECT_EQ(ApplicationInstance::claim(nullptr, {}).kind, Kind::noBus);
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/at/all", 1);
    std::string reason;
    EXPECT_EQ(ApplicationInstance::openSessionBus(reason), nullptr);
    EXPECT_THAT(reason, testing::StartsWith("The session bus can't be reached: "));
}

} // namespace quorva
