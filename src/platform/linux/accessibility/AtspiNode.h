// An element of a tree that is being read from the accessibility bus, and how much of it is known.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiProtocol.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quorva {

/// What was reported as changed is not known any more; its old content stands until it has been
/// read again.
struct AtspiNode {
    AtspiReference reference;
    AtspiNode* parent = nullptr;
    int depth = 0;
    std::vector<std::uint32_t> position; ///< the way from the root, child by child

    std::uint32_t atspiRole = 0;
    std::int32_t childCount = -1;
    AccessibleElement content; ///< without children, which `published` has
    std::vector<std::shared_ptr<AtspiNode>> children;

    bool hasRole = false;
    bool hasDetails = false;
    bool hasState = false; ///< of a document with its address
    bool hasText = false;
    bool hasChildren = false;
    bool isShowing = false; ///< a document says so
    bool isShown = false;   ///< a document counts as part of its window
    bool managesDescendants = false;
    bool wasRead = false; ///< all of it was known once
    bool isQueued = false;
    bool isDropped = false;
    int asked = 0; ///< calls in flight

    std::vector<AtspiReference> listed; ///< children asked for one by one, so far
    std::int32_t nextChild = 0;

    AccessibleElementPtr published; ///< null when this or something below has changed since

    [[nodiscard]] bool is(AtspiRole role) const {
        return atspiRole == static_cast<std::uint32_t>(role);
    }
    [[nodiscard]] bool isDocument() const { return is(AtspiRole::documentWeb); }

    /// Whether the texts of an element of this role are worth a question: its name says it all for
    /// most controls, and nobody reads passwords.
    [[nodiscard]] bool mayHaveText() const;

    /// Whether the user can write into an element of this role.
    [[nodiscard]] bool isEditable() const;

    void forget();
    void forgetChildren();

    /// Sets a field of the content, and remembers whether that made a difference.
    void change(std::string& field, std::string value);
    void hasChanged();

    /// Gives the element, and those below it, its place among its parent's children.
    void place(std::uint32_t index);
};

/// What the static texts among the children of an element say together; empty where there are not
/// two of them.
[[nodiscard]] std::string joinedTexts(const AccessibleElement& element);

/// A text as people read it: without the characters that stand for embedded elements, and without
/// the bullet of a list item.
[[nodiscard]] std::string readableText(std::string text);

} // namespace quorva
