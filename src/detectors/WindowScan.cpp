#include "detectors/WindowScan.h"

#include "base/Text.h"
#include "platform/TreeWalk.h"

#include <algorithm>
#include <array>

namespace quorva {
namespace {

constexpr std::size_t textLimit = 200;  ///< characters; longer texts are not names
constexpr int deepestToolbarParent = 3; ///< deeper ones are toolbars of documents
constexpr int deepestPage = 8;          ///< of a window
constexpr int deepestTab = 14;
constexpr std::size_t neededSignals = 2; ///< a single one may be a chat message

constexpr std::array<std::string_view, 8> meetingSignalPrefixes{
    "leave",      "mute",         "unmute",          "share screen",
    "raise hand", "participants", "turn off camera", "turn on camera"};

/// Whether a child may hold texts. Decorations do not.
bool mayHoldTexts(AccessibilityRole child) {
    switch (child) {
        using enum AccessibilityRole;
    case colorWell:
    case image:
    case menuBar:
    case ruler:
    case scrollBar:
    case slider:
    case splitter:
        return false;
    default:
        return true;
    }
}

bool mayHoldTextsOfWindow(AccessibilityRole, AccessibilityRole child, int depth) {
    return mayHoldTexts(child) &&
           (child != AccessibilityRole::toolbar || depth <= deepestToolbarParent);
}

/// A page lies deeper in its window than the window's own toolbars.
bool mayHoldTextsOfPage(AccessibilityRole, AccessibilityRole child, int) {
    return mayHoldTexts(child) && child != AccessibilityRole::toolbar;
}

bool isWebContainer(AccessibilityRole role) {
    switch (role) {
        using enum AccessibilityRole;
    case group:
    case scrollArea:
    case splitGroup:
    case tabGroup:
    case webArea:
        return true;
    default:
        return false;
    }
}

/// Whether a child may hold a page or a tab. A page within a page does not count. Tabs that stand
/// in a column lie deeper than pages.
bool mayHoldPageOrTab(AccessibilityRole parent, AccessibilityRole child, int depth) {
    using enum AccessibilityRole;
    if (parent == webArea || parent == tab)
        return false;
    if (child == webArea)
        return depth < deepestPage;
    if (parent == toolbar)
        return child == tabGroup || child == group;
    return isWebContainer(child) || child == toolbar || child == tab;
}

bool isShort(std::string_view text) {
    return text.size() < textLimit || characterCount(text) < textLimit;
}

class TextCollector {
public:
    TextCollector(const AccessibleElement& tree, const TreeExtent& extent_)
        : extent(extent_), budget(extent_.maxElements) {
        count(tree, 0, 0);
        budget.settle();
        collect(tree, 0, 0);
    }

    CollectedTexts collected;

private:
    void count(const AccessibleElement& element, int depth, int lap) {
        if (depth >= extent.maxDepth)
            return;
        budget.count(lap);
        forEachChild(element, depth, lap,
                     [&](const auto& child, int childsLap) { count(child, depth + 1, childsLap); });
    }

    void collect(const AccessibleElement& element, int depth, int lap) {
        if (depth >= extent.maxDepth || !budget.meets(lap))
            return;
        ++collected.elementCount;
        for (const auto* const text : {&element.value, &element.title, &element.description,
                                       &element.help, &element.roleDescription})
            add(*text);
        forEachChild(element, depth, lap, [&](const auto& child, int childsLap) {
            collect(child, depth + 1, childsLap);
        });
    }

    template <typename Visit>
    void forEachChild(const AccessibleElement& element, int depth, int lap, const Visit& visit) {
        for (std::size_t index = 0; index < element.children.size(); ++index) {
            const auto& child = *element.children[index];
            if (extent.descends(element.role, child.role, depth))
                visit(child, lapOf(lap, child.role, index));
        }
    }

    void add(std::string_view text) {
        text = trimmed(text);
        if (!text.empty() && isShort(text))
            collected.texts.push_back(text);
    }

    const TreeExtent& extent;
    WalkBudget budget;
};

} // namespace

TreeExtent wholeWindowExtent() {
    return {.maxDepth = maxTreeDepthNative,
            .maxElements = maxElementsNative,
            .descends = mayHoldTextsOfWindow};
}

TreeExtent wholePageExtent() {
    return {.maxDepth = maxTreeDepthBrowser,
            .maxElements = maxElementsBrowser,
            .descends = mayHoldTextsOfPage};
}

TreeExtent outlineExtent() {
    return {.maxDepth = deepestTab + 1,
            .maxElements = maxElementsBrowser,
            .descends = mayHoldPageOrTab};
}

CollectedTexts collectTexts(const AccessibleElement& tree, const TreeExtent& extent) {
    return TextCollector(tree, extent).collected;
}

bool hasActiveMeetingSignals(std::span<const std::string_view> texts) {
    std::size_t signals = 0;
    for (const auto text : texts) {
        const auto lower = lowerCased(text);
        for (const auto prefix : meetingSignalPrefixes)
            if (lower.starts_with(prefix) && ++signals == neededSignals)
                return true;
    }
    return false;
}

} // namespace quorva
