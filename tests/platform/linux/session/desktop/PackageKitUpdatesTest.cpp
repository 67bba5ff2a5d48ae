// Asking for updates of a package service that is played on the session's bus.
#include "platform/linux/desktop/PackageKitUpdates.h"

#include "support/PlayedNotificationServer.h"
#include "support/TurningMainLoop.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <vector>

namespace quorva {
namespace {

using Kind = UpdateAnswer::Kind;
using testing::HasSubstr;

constexpr const char* description = R"(<node>
    <interface name="org.freedesktop.PackageKit">
        <method name="CreateTransaction"><arg type="o" direction="out"/></method>
    </interface>
    <interface name="org.freedesktop.PackageKit.Transaction">
        <method name="Resolve">
            <arg type="t" direction="in"/><arg type="as" direction="in"/>
        </method>
        <method name="GetUpdates"><arg type="t" direction="in"/></method>
    </interface></node>)";

/// Answers each method with the packages that the test gives it, or not at all.
class PlayedPackageService {
public:
    PlayedPackageService() {
        const std::unique_ptr<GDBusNodeInfo, Release<g_dbus_node_info_unref>> node(
            g_dbus_node_info_new_for_xml(description, nullptr));
        offer("/org/freedesktop/PackageKit", node->interfaces[0]);
        offer("/1_aa", node->interfaces[1]);
        offer("/2_bb", node->interfaces[1]);
        ownName(bus.get(), "org.freedesktop.PackageKit");
    }
    ~PlayedPackageService() { g_dbus_connection_close_sync(bus.get(), nullptr, nullptr); }

    std::map<std::string, std::vector<std::string>> packages; ///< by method
    std::string error;
    bool isHanging = false;
    int transactions = 0;

private:
    void offer(const char* path, GDBusInterfaceInfo* interface) {
        static const GDBusInterfaceVTable methods{
            [](GDBusConnection*, const gchar*, const gchar* at, const gchar*, const gchar* method,
               GVariant*, GDBusMethodInvocation* invocation, gpointer self) {
                static_cast<PlayedPackageService*>(self)->receive(at, method, invocation);
            },
            nullptr,
            nullptr,
            {}};
        g_dbus_connection_register_object(bus.get(), path, interface, &methods, this, nullptr,
                                          nullptr);
    }
    void receive(const char* path, const std::string& method, GDBusMethodInvocation* invocation) {
        if (method == "CreateTransaction") {
            const auto* const created = ++transactions % 2 == 1 ? "/1_aa" : "/2_bb";
            return g_dbus_method_invocation_return_value(invocation, g_variant_new("(o)", created));
        }
        g_dbus_method_invocation_return_value(invocation, nullptr);
        if (isHanging)
            return;
        for (const auto& package : packages[method])
            emit(path, "Package", g_variant_new("(uss)", 5U, package.c_str(), "summary"));
        if (!error.empty())
            emit(path, "ErrorCode", g_variant_new("(us)", 2U, error.c_str()));
        emit(path, "Finished", g_variant_new("(uu)", error.empty() ? 1U : 2U, 3U));
    }
    void emit(const char* path, const char* signal, GVariant* parameters) {
        g_dbus_connection_emit_signal(bus.get(), nullptr, path,
                                      "org.freedesktop.PackageKit.Transaction", signal, parameters,
                                      nullptr);
    }

    GObjectPtr<GDBusConnection> bus = joinSessionBus();
};

class PackageKitUpdatesTest : public testing::Test, protected TurningMainLoop {
protected:
    UpdateAnswer check(Seconds timeout = Seconds(20)) {
        PackageKitUpdates updates(
            loop,
            [this](const PackageKitUpdates::BusOpened& done) {
                ++openings;
                auto bus = joinSessionBus();
                done(bus);
            },
            timeout);
        std::optional<UpdateAnswer> answer;
        const auto subscription =
            updates.checkForUpdates([&](const UpdateAnswer& given) { answer = given; });
        EXPECT_TRUE(comesTo([&] { return answer.has_value(); }));
        return answer.value_or(UpdateAnswer{});
    }

    int openings = 0;
};

} // namespace

TEST_F(PackageKitUpdatesTest, tellsWhatThePackageServiceKnows) {
    PlayedPackageService service;
    EXPECT_THAT(check().reason, HasSubstr("not installed by this computer's package service"));

    service.packages["Resolve"] = {"quorva;1.0-1;amd64;installed:debian"};
    service.packages["GetUpdates"] = {"quorva-data;9.0;all;debian", "firefox;1;amd64;debian"};
    EXPECT_EQ(check(), UpdateAnswer{.kind = Kind::upToDate});

    service.packages["GetUpdates"].emplace_back("quorva;1.1-1;amd64;debian");
    EXPECT_EQ(check(), (UpdateAnswer{.kind = Kind::available, .version = "1.1-1"}));
    EXPECT_EQ(openings, 3);
}

TEST_F(PackageKitUpdatesTest, saysWhyNothingIsKnown) {
    EXPECT_THAT(check().reason, HasSubstr("no package service"));
    PlayedPackageService service;
    service.error = "the cache is broken";
    EXPECT_EQ(check().reason, "The package service failed: the cache is broken");
    service.isHanging = true;
    EXPECT_THAT(check(Seconds(0.2)).reason, HasSubstr("did not answer in time"));

    PackageKitUpdates updates(loop, [](const PackageKitUpdates::BusOpened& done) {
        GObjectPtr<GDBusConnection> none;
        done(none);
    });
    UpdateAnswer answer;
    const auto subscription =
        updates.checkForUpdates([&](const UpdateAnswer& given) { answer = given; });
    EXPECT_THAT(answer.reason, HasSubstr("system bus"));
}

} // namespace quorva
