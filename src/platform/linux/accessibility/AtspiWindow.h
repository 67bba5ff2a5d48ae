// One window of an application on the accessibility bus, and how far it has been read.
// Belongs to the thread that made it.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiCalls.h"
#include "platform/linux/accessibility/AtspiTree.h"
#include "platform/linux/accessibility/AtspiTreeReader.h"

#include <memory>
#include <string>

namespace quorva {

/// A tree with its reader. `calls` and `traits` must outlive it.
struct AtspiReadTree {
    AtspiReadTree(AtspiCalls& calls, AtspiApplicationTraits& traits, AtspiReference root)
        : tree(traits, std::move(root)), reader(calls, traits, tree) {}

    AtspiTree tree;
    AtspiTreeReader reader;
};

class AtspiWindow {
public:
    explicit AtspiWindow(AtspiReference reference_) : reference(std::move(reference_)) {}

    const AtspiReference reference;
    std::string title;
    std::unique_ptr<AtspiReadTree> content; ///< null when the plan does not want it
    bool isOutlined = false;                ///< its documents decide whether it is read whole

    /// Whether the window is read whole and its changes are followed.
    [[nodiscard]] bool isWatched() const;

    /// Makes `content`, of which nothing is known, or invalidates all of it when that was last done
    /// about a minute ago: changes may not have been signalled.
    void prepare(AtspiCalls& calls, AtspiApplicationTraits& traits, const TreeExtent& outline);

    /// Makes the next `prepare` invalidate everything.
    void expire();

    /// Whether the texts of the window may be missing from its tree, as long as it is worthwhile to
    /// read it again.
    [[nodiscard]] bool awaitsTexts(AtspiToolkit toolkit, const AccessibleElement& tree);

private:
    gint64 lastInvalidated = 0;
    int textRetries = 5;
};

} // namespace quorva
