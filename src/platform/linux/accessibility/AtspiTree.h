// The tree of one window as it is known from the accessibility bus: its elements, which of them are
// out of date, and the snapshots made of them. AtspiTreeReader fetches what is not known.
// Belongs to the thread that made it.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiNode.h"
#include "platform/linux/accessibility/AtspiProtocol.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quorva {

class WalkBudget;

/// What all windows of an application have in common.
struct AtspiApplicationTraits {
    AtspiToolkit toolkit = AtspiToolkit::notAsked;
    /// The names of roles in the user's language, by number: asked for once each.
    std::unordered_map<std::uint32_t, std::string> roleNames;
};

class AtspiTree {
public:
    using NodePtr = std::shared_ptr<AtspiNode>;
    /// `none`: an outline, in which documents have no content.
    enum class Texts { none, all };

    /// Of the root alone, of which nothing is known. `traits` must outlive the tree.
    AtspiTree(const AtspiApplicationTraits& traits, AtspiReference root);

    AtspiTree(const AtspiTree&) = delete;
    AtspiTree& operator=(const AtspiTree&) = delete;

    /// Sets how much of the window is read and shown: nothing at first.
    void setScope(const TreeExtent& extent, Texts texts);
    [[nodiscard]] const TreeExtent& extent() const { return scope; }
    [[nodiscard]] Texts texts() const { return scopeOfTexts; }

    /// Invalidates everything; an element that turns out to be the same stays the same object.
    void invalidate();

    /// Invalidates what is known of pages and tabs themselves, and the elements above them.
    void invalidatePagesAndTabs();

    /// Invalidates the state and the address of every document.
    void invalidateDocuments();

    /// Invalidates which documents there are below documents.
    void invalidateFrames();

    /// Invalidates what a signal reports as changed. Returns whether that is part of this tree.
    bool invalidate(const AtspiEvent& event);

    /// A snapshot of what is known within the scope. It shares what has not changed with earlier
    /// ones, and is the same object when nothing has.
    [[nodiscard]] AccessibleElementPtr snapshot();

    /// The root's children with their titles.
    [[nodiscard]] std::vector<std::pair<AtspiReference, std::string>> children() const;

    /// The documents that belong to no other one.
    [[nodiscard]] std::vector<const AtspiNode*> pages() const;

    /// All documents, those within others included.
    [[nodiscard]] std::vector<const AtspiNode*> documents() const;

    /// Of the window, in their order.
    [[nodiscard]] std::vector<AccessibleTab> tabs() const;

    // For the reader:

    [[nodiscard]] const NodePtr& root() const { return top; }
    [[nodiscard]] std::size_t size() const { return nodesOfPath.size(); } ///< of elements
    [[nodiscard]] bool isInScope(const AtspiNode& node) const;

    /// Whether nothing of an element in scope is left to be read, its children's parts aside.
    [[nodiscard]] bool isKnown(const AtspiNode& node) const;
    [[nodiscard]] bool lacksState(const AtspiNode& node) const;
    [[nodiscard]] bool lacksText(const AtspiNode& node) const;
    [[nodiscard]] bool lacksChildren(const AtspiNode& node) const;

    /// Calls `visit` with each element that a walk meets and of which something is unknown. Returns
    /// whether there are as many elements as it meets.
    bool forEachUnknown(const std::function<void(const NodePtr&)>& visit) const;

    /// Whether everything that a walk meets is known, and its budget used up. Costs a walk.
    [[nodiscard]] bool isFull() const;

    /// In which lap a walk comes to an element.
    [[nodiscard]] static int lapOf(const AtspiNode& node);

    /// Sets the children of an element, and keeps what is known of those that it already had.
    void setChildren(AtspiNode& node, std::vector<AtspiReference> references);

    /// Settles which documents are part of the window, after all of them have been read.
    void settleDocuments();

private:
    [[nodiscard]] bool showsDocument() const;
    void add(AtspiNode& node);
    void drop(AtspiNode& node);
    bool invalidate(AtspiNode& node, AtspiChange change);
    [[nodiscard]] bool isPart(const AtspiNode& node) const;
    [[nodiscard]] bool wantsText(const AtspiNode& node) const;
    void countInScope(const AtspiNode& node, int lap, WalkBudget& budget) const;
    void forEachUnknown(const NodePtr& node, int lap, WalkBudget& budget,
                        const std::function<void(const NodePtr&)>& visit) const;
    [[nodiscard]] static int lapOf(const AtspiNode& node, int parentsLap);
    AccessibleElementPtr publish(AtspiNode& node);

    const AtspiApplicationTraits& traits;
    TreeExtent scope;
    Texts scopeOfTexts = Texts::none;
    const NodePtr top;
    std::unordered_multimap<std::string, AtspiNode*> nodesOfPath;
    AccessibleElementPtr everything;   ///< that was published last, and
    AccessibleElementPtr withinBudget; ///< the part of it that is within the scope's budget
};

} // namespace quorva
