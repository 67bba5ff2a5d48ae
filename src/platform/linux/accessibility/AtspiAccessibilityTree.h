// The accessibility tree of the Linux desktop: AT-SPI 2 (org.a11y.atspi) on the accessibility bus
// that org.a11y.Bus tells of. Reading is done on a thread of its own, which waits for nobody.
#pragma once

#include "base/Lifetime.h"
#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiWorker.h"
#include "platform/linux/glib/Handles.h"

#include <map>
#include <memory>
#include <set>
#include <thread>

namespace quorva {

class AtspiAccessibilityTree final : public AccessibilityTree {
public:
    /// Finds out whether accessibility is switched on, and waits for that for two seconds at
    /// most: an answer that comes later is told as a change.
    AtspiAccessibilityTree();
    ~AtspiAccessibilityTree() override;

    AtspiAccessibilityTree(const AtspiAccessibilityTree&) = delete;
    AtspiAccessibilityTree& operator=(const AtspiAccessibilityTree&) = delete;

    [[nodiscard]] bool isTrusted() const override;
    [[nodiscard]] Subscription onTrustChange(Task callback) override;
    /// The accessibility launcher (org.a11y.Bus) keeps the answer in the desktop's settings. It is
    /// started where it is not running, and given the usual 25 seconds of D-Bus.
    void requestTrust(std::function<void(bool isTrusted)> done) override;
    int enable(ProcessIdentifier process, AccessibilitySwitch which) override;
    [[nodiscard]] AccessibleWindows windows(ProcessIdentifier process) const override;
    void request(std::vector<ReadingRequest> requests) override;
    [[nodiscard]] Subscription onRead(Task callback) override;

private:
    void takeTrust(bool isTrusted);
    void takeAnswer(ProcessIdentifier process, AtspiAnswer answer);

    bool trusted = false;
    std::map<ProcessIdentifier, AtspiAnswer> answers; ///< of those requested
    std::set<ProcessIdentifier> enabling;             ///< since the last request
    CallbackList<> trustCallbacks;
    CallbackList<> readCallbacks;

    GMainContextPtr context;
    GMainLoopPtr loop;
    std::unique_ptr<AtspiWorker> worker; ///< touched on its thread only
    std::thread thread;
    Lifetime lifetime;
};

} // namespace quorva
