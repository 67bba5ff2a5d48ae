// The reader's thread: finds out whether accessibility is on, and connects to the accessibility bus
// when applications are wanted (AtspiApplications).
// Protocol: org.a11y.Bus and org.a11y.Status, as at-spi2-core 2.46 describes them.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiApplications.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// All but the constructor runs on one thread, in its thread-default main context.
class AtspiWorker {
public:
    /// Both callbacks are called on the worker's thread.
    struct Reports {
        std::function<void(bool isTrusted)> trust;
        AtspiApplications::OnAnswer answer;
    };
    explicit AtspiWorker(Reports reports);
    ~AtspiWorker();

    AtspiWorker(const AtspiWorker&) = delete;
    AtspiWorker& operator=(const AtspiWorker&) = delete;

    /// Finds out whether accessibility is switched on, and follows that from then on.
    void start();

    /// Switches accessibility on; calls `done` once, on this thread, with whether that succeeded.
    void switchOn(std::function<void(bool isSwitchedOn)> done);

    /// Sets what is read from now on.
    void request(std::vector<AtspiRequest> requests);

private:
    void adoptSession(GObjectPtr<GDBusConnection> bus);
    void askStatus();
    void handleStatus(bool isEnabled);
    void connect();
    void handleAddress(const std::string& address);
    void handleLostBus();

    const Reports reports;
    GObjectPtr<GDBusConnection> session;
    Subscription statusChanges;
    Subscription launcherWatch;
    GSourcePtr retry;
    bool isTrusted = false;
    bool isConnecting = false;
    AtspiRequests wanted;
    std::unique_ptr<AtspiApplications> applications; ///< null when there is no connection
    Lifetime lifetime;
};

} // namespace quorva
