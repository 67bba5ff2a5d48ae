// One window of an application on the accessibility bus, and how far it has been read.
// Belongs to the thread that made it.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiReadTree.h"

#include <memory>
#include <string>

namespace quorva {

struct AtspiWindow {
    AtspiReference reference;
    std::string title;
    std::unique_ptr<AtspiReadTree> content; ///< null when the plan does not want it
    bool wasRoused = false;

    /// Whether it is read whole, and not just as an outline.
    [[nodiscard]] bool isWhole() const;

    [[nodiscard]] bool hasPages() const;

    /// Whether what was read may be stale, because its pages have not been roused yet.
    [[nodiscard]] bool isStale(AtspiToolkit toolkit) const;

    /// Rouses its pages and their frames. `calls` are those to its application.
    void rouse(AtspiCalls& calls);

    /// Shows a window that is read whole. Asks for another reading by setting `isAgain` if texts
    /// may be missing.
    [[nodiscard]] AccessibleWindow publish(AtspiToolkit toolkit, bool& isAgain) const;
};

} // namespace quorva
