// The applications on the accessibility bus: which of them are there, and which process each of
// them belongs to. Has those read that are wanted, as long as the connection to the bus lasts.
// Belongs to the thread, and to the thread-default main context, that made it.
#pragma once

#include "base/Lifetime.h"
#include "base/Subscription.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiConnection.h"
#include "platform/linux/accessibility/AtspiEvents.h"
#include "platform/linux/accessibility/AtspiProcesses.h"
#include "platform/linux/glib/Handles.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// A process to be read, and whether its application is to expose its whole tree.
struct AtspiRequest {
    ReadingRequest reading;
    bool enables = false;
};
using AtspiRequests = std::map<ProcessIdentifier, AtspiRequest>;

/// What is known of an application.
struct AtspiAnswer {
    AccessibleWindows windows;
    int enableResult = 0; ///< as AccessibilityTree::enable
};

/// An answer without windows.
[[nodiscard]] AtspiAnswer emptyAnswer(ReadState state, std::string problem, int enableResult);

class AtspiApplications {
public:
    using OnAnswer = std::function<void(ProcessIdentifier, AtspiAnswer)>;

    /// `bus` is the accessibility bus, `address` its address; `wanted` must outlive the object.
    /// `onLost` is called when the bus has gone or can't be used; it may destroy the object.
    AtspiApplications(GObjectPtr<GDBusConnection> bus, const std::string& address,
                      const AtspiRequests& wanted, OnAnswer onAnswer, Task onLost);

    /// Closes the connection.
    ~AtspiApplications();

    AtspiApplications(const AtspiApplications&) = delete;
    AtspiApplications& operator=(const AtspiApplications&) = delete;

    /// Looks which applications are there, reads those that are wanted now, and drops the others.
    /// `onAnswer` is called with what is known of each wanted process, and after each reading.
    /// `onLost` may be called within this call.
    void readWanted();

private:
    struct Peer;

    void handleOwnerChange(GVariant* change);
    void handleRegistered(const std::vector<AtspiReference>& registered);
    void askProcess(const std::string& name);
    [[nodiscard]] bool isComplete() const;
    [[nodiscard]] ProcessIdentifier wantedProcessOf(Peer& peer) const;
    void assign();
    void report(ProcessIdentifier process);
    void countInstances();

    const AtspiRequests& wanted;
    const OnAnswer onAnswer;
    const Task onLost;
    const AtspiProcesses processes;
    GObjectPtr<GDBusConnection> bus;
    AtspiConnection bulk;
    AtspiEvents events;
    gulong closed = 0;
    Subscription owners;
    bool isListed = false;             ///< the registry has answered
    std::map<std::string, Peer> peers; ///< by name on the bus
    /// Of browsers, those that have not joined the bus.
    struct AbsentInstances {
        int silent = 0;
        int starting = 0;
    };
    std::map<ProcessIdentifier, AbsentInstances> absent;
    GSourcePtr listSoon;
    Lifetime lifetime;
};

} // namespace quorva
