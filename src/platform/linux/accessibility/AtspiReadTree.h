// A tree with its reader, and how long what was read may be relied on.
// Belongs to the thread that made it.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiTree.h"
#include "platform/linux/accessibility/AtspiTreeReader.h"

namespace quorva {

class AtspiReadTree {
public:
    /// Of the root alone, of which nothing is known. `calls` and `traits` must outlive it.
    AtspiReadTree(AtspiCalls& calls, AtspiApplicationTraits& traits, AtspiReference root);

    AtspiTree tree;
    AtspiTreeReader reader;

    /// Invalidates the whole tree when that was last done about a minute ago: changes may not have
    /// been signalled.
    void refresh();

    /// Makes the next `refresh` invalidate everything.
    void expire();

    /// Whether texts may be missing from what was read, as long as it is worthwhile to read it
    /// again. If so, expires the tree.
    [[nodiscard]] bool awaitsTexts(const AccessibleElement& read);

private:
    const AtspiApplicationTraits& traits;
    gint64 lastInvalidated = 0;
    int textRetries = 5;
};

} // namespace quorva
