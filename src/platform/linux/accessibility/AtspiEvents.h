// The signals of applications on the accessibility bus, which they send only for those who have
// registered with the registry (org.a11y.atspi.Registry).
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

    /// Follows the changes of an application, until the subscription ends. `onFollowed` is called
    /// once the registry has told the applications: what is asked of them from then on cannot be
    /// older than a change that was not told. It is also called where the registry does not answer,
    /// which is asked again later; it is not called any more once the subscription has ended.
    [[nodiscard]] Subscription follow(const std::string& application, const Callback& onChange,
                                      Task onFollowed);

    /// To be told when another registry has taken the place of one: it knows of no registrations.
    void registerAnew();

private:
    void openRegistration();
    void registerEvents();
    void hasRegistered();
    void endRegistration();
    void registerLater();
    void leave(const std::vector<guint>& signals);

    GObjectPtr<GDBusConnection> bus;
    const std::string address;
    /// Applications stop sending what nobody registers for any more when the connection ends that
    /// has registered, not before: so there is one for just that, as long as somebody follows.
    GObjectPtr<GDBusConnection> registration;
    enum class State { none, registering, registered };
    State state = State::none;
    int followers = 0;
    std::vector<std::shared_ptr<Task>> waiting; ///< empty tasks for those who have left
    GSourcePtr again;
    Lifetime lifetime;
};

} // namespace quorva
