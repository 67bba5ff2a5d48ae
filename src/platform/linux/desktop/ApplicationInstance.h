// One Quorva in a session: the first one owns the bus name `applicationId` and is activated
// when the program is started again (interface org.freedesktop.Application of the Desktop Entry
// Specification 1.5, "D-Bus Activation").
#pragma once

#include "base/Subscription.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <string>

namespace quorva {

/// A request to show the program.
struct Activation {
    std::string action; ///< of the desktop entry; empty for none
    std::string token;  ///< lets a window take the focus (xdg-activation, startup notification)

    bool operator==(const Activation&) const = default;
};

/// Main thread only. For as long as it lives, this program is the session's instance.
class ApplicationInstance {
public:
    struct Callbacks {
        std::function<void(const Activation&)> onActivate;
        Task onLost; ///< the name was lost, alone or with the bus
    };

    struct Claim;

    /// Claims the name on `bus` (null: there is none) and returns the outcome. When another
    /// instance owns the name, that one is asked to show itself and has 700 ms to answer. An
    /// instance is whoever runs the same executable, or one that was replaced at its path.
    /// Callbacks come on the main loop, never within this call. For the beginning of the program:
    /// waits for the bus, at most three seconds a call.
    [[nodiscard]] static Claim claim(GObjectPtr<GDBusConnection> bus, Callbacks callbacks);

    /// The session bus; null with `reason` set when there is none, or it does not answer within
    /// three seconds. The program outlives it: exit-on-close is off. For the beginning of the
    /// program: waits for the bus, and runs GLib's default main context meanwhile.
    [[nodiscard]] static GObjectPtr<GDBusConnection> openSessionBus(std::string& reason);

    ~ApplicationInstance();
    ApplicationInstance(const ApplicationInstance&) = delete;
    ApplicationInstance& operator=(const ApplicationInstance&) = delete;

private:
    ApplicationInstance(GObjectPtr<GDBusConnection> bus, Callbacks callbacks);
    void handleCall(const std::string& method, GVariant* parameters) const;
    void noteLoss();

    const GObjectPtr<GDBusConnection> bus;
    const Callbacks callbacks;
    guint object = 0;
    Subscription nameLost;
    gulong closing = 0;
    enum class Name { notOwned, owned, lost };
    Name nameState = Name::notOwned;
};

struct ApplicationInstance::Claim {
    enum class Kind {
        first,  ///< this is the session's instance; `instance` is set
        second, ///< another instance owns the name
        taken,  ///< another program owns the name: `reason` says which one
        noBus,  ///< could not be found out: `reason` says why
    };
    Kind kind = Kind::noBus;
    std::unique_ptr<ApplicationInstance> instance;
    bool hasAnswered = false; ///< the other instance was asked and has answered
    std::string reason;       ///< for people
};

} // namespace quorva
