// The signals of applications on the accessibility bus. Applications send them only while a client
// is registered for them with the registry (org.a11y.atspi.Registry).
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/linux/accessibility/AtspiProtocol.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

class AtspiEvents {
public:
    using Callback = std::function<void(const AtspiEvent& event)>;

    /// `bus` is the accessibility bus, `address` its address.
    AtspiEvents(GObjectPtr<GDBusConnection> bus, std::string address);
    ~AtspiEvents();

    AtspiEvents(const AtspiEvents&) = delete;
    AtspiEvents& operator=(const AtspiEvents&) = delete;

    /// Calls `onChange` for each change of an application, until the subscription ends.
    /// `onFollowed` is called once, possibly within this call, when the registry has told the
    /// applications: an answer to a question sent from then on cannot be older than a change that
    /// was not signalled. It is also called when the registry does not answer, which is asked again
    /// later. It is not called after the subscription has ended.
    [[nodiscard]] Subscription follow(const std::string& application, const Callback& onChange,
                                      Task onFollowed);

    /// To be called when another registry has taken the place of one: it knows of no registrations.
    void registerAnew();

private:
    enum class State { none, registering, registered };

    void openRegistration();
    void registerEvents();
    void finishRegistering();
    void endRegistration();
    void registerLater();
    void removeFollower();

    GObjectPtr<GDBusConnection> bus;
    const std::string address;
    /// Applications go on sending signals until the connection that has registered for them ends.
    /// So there is one for just that, as long as an application is followed.
    GObjectPtr<GDBusConnection> registration;
    State state = State::none;
    int followers = 0;
    std::vector<std::shared_ptr<Task>> waiting; ///< `onFollowed`; empty ones of ended subscriptions
    GSourcePtr retry;
    Lifetime lifetime;
};

} // namespace quorva
