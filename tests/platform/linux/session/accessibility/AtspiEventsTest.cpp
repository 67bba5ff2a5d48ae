// Registration for signals with the desktop's registry, while followers come and go and the
// registry hangs or ends.
#include "platform/linux/accessibility/AtspiEvents.h"

#include "AccessibilityTest.h"

namespace quorva {
namespace {

class AtspiEventsTest : public AccessibilityTest {
protected:
    /// Follows a name that no application has.
    [[nodiscard]] Subscription follow() {
        return events.follow(
            ":1.0", [](const AtspiEvent&) {}, [this] { ++followed; });
    }

    /// The number of registrations that the registry knows of.
    [[nodiscard]] gsize registrations() const {
        const GVariantPtr reply(g_dbus_connection_call_sync(
            bus.get(), atspi::registryName, atspi::registryPath, atspi::registryInterface,
            "GetRegisteredEvents", nullptr, G_VARIANT_TYPE("(a(ss))"), G_DBUS_CALL_FLAGS_NONE, -1,
            nullptr, nullptr));
        if (!reply)
            return 0;
        const GVariantPtr all(g_variant_get_child_value(reply.get(), 0));
        return g_variant_n_children(all.get());
    }

    void wait(Seconds time) {
        (void)comesTo([] { return false; }, time);
    }

    const std::string address = accessibilityBusAddress();
    const GObjectPtr<GDBusConnection> bus = joinBus(address);
    AtspiEvents events{joinBus(address), address};
    int followed = 0;
};

} // namespace

TEST_F(AtspiEventsTest, registersForThoseWhoComeAfterOneWhoLeftAtOnce) {
    ASSERT_EQ(registrations(), 0U); // which starts the registry
    follow().reset();
    wait(Seconds(0.3));
    EXPECT_EQ(followed, 0) << "the follower has left";
    auto subscription = follow();
    ASSERT_TRUE(comesTo([&] { return followed == 1; }));
    EXPECT_GT(registrations(), 10U);
    subscription.reset();
    EXPECT_TRUE(comesTo([&] { return registrations() == 0; }));
}

TEST_F(AtspiEventsTest, doesNotWaitForARegistryThatHangsAndRegistersLater) {
    ASSERT_EQ(registrations(), 0U); // which starts it
    const auto registry = ownerOf(atspi::registryName, address);
    ASSERT_GT(registry, 0);
    ASSERT_EQ(::kill(registry, SIGSTOP), 0);
    const auto subscription = follow();
    EXPECT_TRUE(comesTo([&] { return followed == 1; }, Seconds(3)));
    ASSERT_EQ(::kill(registry, SIGCONT), 0);
    EXPECT_TRUE(comesTo([&] { return registrations() > 10; }));
}

TEST_F(AtspiEventsTest, registersWithTheRegistryThatFollowsOneThatEnds) {
    const auto subscription = follow();
    ASSERT_TRUE(comesTo([&] { return followed == 1; }));
    const auto registry = ownerOf(atspi::registryName, address);
    ASSERT_GT(registry, 0);
    ASSERT_EQ(::kill(registry, SIGKILL), 0);
    ASSERT_TRUE(comesTo([&] {
        const auto present = ownerOf(atspi::registryName, address);
        return present != 0 && present != registry;
    }));
    ASSERT_EQ(registrations(), 0U);
    events.registerAnew();
    EXPECT_TRUE(comesTo([&] { return registrations() > 10; }));
}

} // namespace quorva
