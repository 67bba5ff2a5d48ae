// The accessibility tree of the Linux desktop: AT-SPI 2 (org.a11y.atspi) on the accessibility bus,
// whose address org.a11y.Bus knows. Reading is done on a thread of its own, without blocking calls.
#pragma once

#include "base/Lifetime.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiWorker.h"
#include "platform/linux/glib/ContextThread.h"

#include <map>
#include <memory>
#include <set>

namespace quorva {

class AtspiAccessibilityTree final : public AccessibilityTree {
public:
    /// Finds out whether accessibility is switched on, and waits at most two seconds for the
    /// answer; a later one is reported as a change.
    AtspiAccessibilityTree();
    ~AtspiAccessibilityTree() override;

    AtspiAccessibilityTree(const AtspiAccessibilityTree&) = delete;
    AtspiAccessibilityTree& operator=(const AtspiAccessibilityTree&) = delete;

    [[nodiscard]] bool isTrusted() const override;
    [[nodiscard]] Subscription onTrustChange(Task callback) override;
    /// The accessibility launcher (org.a11y.Bus) stores this in the desktop's settings. It is
    /// started where it is not running. The timeout is D-Bus's usual 25 seconds.
    void requestTrust(std::function<void(bool isTrusted)> done) override;
    int enable(ProcessIdentifier process, AccessibilitySwitch which) override;
    [[nodiscard]] AccessibleWindows windows(ProcessIdentifier process) const override;
    void request(std::vector<ReadingRequest> requests) override;
    [[nodiscard]] Subscription onRead(Task callback) override;

private:
    void handleTrust(bool isTrusted);
    void handleAnswer(ProcessIdentifier process, AtspiAnswer answer);

    bool trusted = false;
    std::map<ProcessIdentifier, AtspiAnswer> answers; ///< of the last request
    std::set<ProcessIdentifier> enabling;             ///< since the last request
    CallbackList<> trustCallbacks;
    CallbackList<> readCallbacks;

    std::unique_ptr<AtspiWorker> worker; ///< used on the thread only
    ContextThread thread;                ///< ends before the worker's pointer, which its tasks use
    Lifetime lifetime;                   // last: goes first
};

} // namespace quorva
