// The reader's thread: finds the accessibility bus and the applications on it, and has those read
// that are asked for.
#pragma once

#include "base/Lifetime.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiApplication.h"
#include "platform/linux/accessibility/AtspiEvents.h"
#include "platform/linux/accessibility/AtspiProcesses.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// What a request asks for, with whether the application shall expose its whole tree.
struct AtspiRequest {
    ReadingRequest reading;
    bool enables = false;
};

/// What is known of an application.
struct AtspiAnswer {
    AccessibleWindows windows;
    int enableResult = 0;
};

/// All but the constructor runs on the thread whose main context `context` is.
class AtspiWorker {
public:
    /// Both callbacks are called on the worker's thread.
    struct Reports {
        std::function<void(bool isTrusted)> trust;
        std::function<void(ProcessIdentifier, AtspiAnswer)> answer;
    };
    explicit AtspiWorker(Reports reports);
    ~AtspiWorker();

    AtspiWorker(const AtspiWorker&) = delete;
    AtspiWorker& operator=(const AtspiWorker&) = delete;

    /// Finds out whether accessibility is switched on, and follows that from then on.
    void start();

    /// Switches accessibility on; calls `done` once, on this thread, with whether that was done.
    void switchOn(std::function<void(bool isSwitchedOn)> done);

    /// What shall be read from now on.
    void request(std::vector<AtspiRequest> requests);

private:
    struct Speaker;
    struct Connected;

    void takeSession(GDBusConnection* bus);
    void askStatus();
    void takeStatus(bool isEnabled);
    void connect();
    void open(const std::string& address);
    void join(GObjectPtr<GDBusConnection> bus, const std::string& address);
    void lose();
    void noteOwner(GVariant* change);
    void listApplications();
    void takeApplications(const std::vector<AtspiReference>& applications);
    void askProcess(const std::string& name);
    [[nodiscard]] ProcessIdentifier wishFor(Speaker& speaker) const;
    void assign();
    void report(ProcessIdentifier process);

    const Reports reports;
    const AtspiProcesses processes;
    GObjectPtr<GDBusConnection> session;
    guint statusSignal = 0;
    guint launcherWatch = 0;
    GSourcePtr askAgain;
    bool isTrusted = false;
    bool isConnecting = false;
    std::map<ProcessIdentifier, AtspiRequest> wanted;
    std::unique_ptr<Connected> connected;
    Lifetime lifetime;
};

} // namespace quorva
