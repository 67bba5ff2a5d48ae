// One element of a tree on the accessibility bus, and how much of it is known.
#pragma once

#include "platform/AccessibilityTree.h"
#include "platform/linux/accessibility/AtspiProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// An invalidated part counts as unknown; its old content stands until it has been read again.
struct AtspiNode {
    AtspiReference reference;
    AtspiNode* parent = nullptr;
    int depth = 0;
    std::vector<std::uint32_t> position; ///< the path from the root, as indices of children

    std::uint32_t atspiRole = 0;
    std::int32_t childCount = -1;
    AccessibleElement content; ///< without children, which `published` has
    std::vector<std::shared_ptr<AtspiNode>> children;

    bool hasRole = false;
    bool hasDetails = false;
    bool hasState = false; ///< of a document: with its address
    bool hasText = false;
    bool hasChildren = false;
    bool isShowing = false; ///< a document claims to be shown
    bool isSelected = false;
    bool isVisible = false;
    bool isShown = false; ///< a document counts as part of its window
    bool managesDescendants = false;
    bool wasRead = false; ///< all of it was known once
    bool isDropped = false;

    std::vector<AtspiReference> listed; ///< children fetched one by one, so far
    std::int32_t nextChild = 0;         ///< the index of the next one to fetch

    AccessibleElementPtr published; ///< null when this or something below has changed since

    /// Written by AtspiTreeReader only.
    struct Fetch {
        bool isQueued = false;
        int inFlight = 0; ///< calls
    };
    Fetch fetch;

    [[nodiscard]] bool is(AtspiRole role) const {
        return atspiRole == static_cast<std::uint32_t>(role);
    }
    [[nodiscard]] bool isDocument() const { return is(AtspiRole::documentWeb); }

    [[nodiscard]] bool isTab() const { return is(AtspiRole::pageTab); }

    /// Whether it lies below a document.
    [[nodiscard]] bool isWithinDocument() const;

    /// Whether it is a document that belongs to no other one.
    [[nodiscard]] bool isPage() const { return isDocument() && !isWithinDocument(); }

    /// Whether the texts of an element of this role are worth a call. The name says it all for most
    /// controls, and passwords are never read.
    [[nodiscard]] bool mayHaveText() const;

    /// Whether the user can write into an element of this role.
    [[nodiscard]] bool isEditable() const;

    /// Whether it has so many children that it may create them on demand, as spreadsheets do.
    [[nodiscard]] bool hasManyChildren() const;

    void invalidate();
    void invalidateChildren();

    /// Each of these stores a part as it has been read.
    void setRole(std::optional<std::uint32_t> role);
    void setDetails(AtspiDetails details);
    void setTitle(std::string title);
    void setDescription(std::string description);
    /// The last of the details, where they come singly.
    void setChildCount(std::int32_t count);
    struct States {
        bool selected, showing, visible, managesDescendants;
    };
    void setStates(const States& states);
    void setAddress(std::string address);
    void setText(std::string text);
    void setShown(bool shown);
    void markRead(); ///< all of it is known

    /// Drops the published snapshots that contain this element.
    void markChanged();

    /// Sets the index of the element among its parent's children.
    void moveTo(std::uint32_t index);

private:
    void change(std::string& field, std::string value);
};

/// The texts of the element's children that are static texts, joined; empty for fewer than two.
[[nodiscard]] std::string joinedTexts(const AccessibleElement& element);

/// The text without the characters that stand for embedded elements, and without the bullet of a
/// list item.
[[nodiscard]] std::string readableText(std::string text);

} // namespace quorva
