#include "detectors/WindowScan.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace quorva {
namespace {

constexpr std::size_t textLimit = 200;   ///< characters; longer texts are not names
constexpr int deepestToolbarParent = 3;  ///< deeper ones are toolbars of documents
constexpr int deepestWebArea = 8;        ///< of a window's page
constexpr std::size_t neededSignals = 2; ///< a single one may be a chat message

constexpr std::array<std::string_view, 8> meetingSignalPrefixes{
    "leave",      "mute",         "unmute",          "share screen",
    "raise hand", "participants", "turn off camera", "turn on camera"};

/// Whether a child may hold texts. Decorations and window controls do not.
bool mayHoldTexts(AccessibilityRole, AccessibilityRole child, int depth) {
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
    case toolbar:
        return depth <= deepestToolbarParent;
    default:
        return true;
    }
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

/// Whether a child may hold the window's page. A page within a page does not count.
bool mayHoldPage(AccessibilityRole parent, AccessibilityRole child, int) {
    return parent != AccessibilityRole::webArea && isWebContainer(child);
}

bool isShort(std::string_view text) {
    return text.size() < textLimit || characterCount(text) < textLimit;
}

class TextCollector {
public:
    explicit TextCollector(const TreeExtent& extent_) : extent(extent_) {}

    void collect(const AccessibleElement& element, int depth) {
        if (depth >= extent.maxDepth || collected.elementCount >= extent.maxElements)
            return;
        ++collected.elementCount;
        for (const auto* const text : {&element.value, &element.title, &element.description,
                                       &element.help, &element.roleDescription})
            add(*text);
        for (const auto& child : element.children)
            if (extent.descends(element.role, child->role, depth))
                collect(*child, depth + 1);
    }

    CollectedTexts collected;

private:
    void add(std::string_view text) {
        text = trimmed(text);
        if (!text.empty() && isShort(text))
            collected.texts.push_back(text);
    }

    const TreeExtent& extent;
};

std::string_view findWebAreaURL(const AccessibleElement& element, int depth) {
    if (depth > deepestWebArea)
        return {};
    if (element.role == AccessibilityRole::webArea)
        return element.url;
    for (const auto& child : element.children)
        if (mayHoldPage(element.role, child->role, depth))
            if (const auto url = findWebAreaURL(*child, depth + 1); !url.empty())
                return url;
    return {};
}

} // namespace

TreeExtent wholeWindowExtent(bool isBrowser) {
    return {.maxDepth = isBrowser ? maxTreeDepthBrowser : maxTreeDepthNative,
            .maxElements = isBrowser ? maxElementsBrowser : maxElementsNative,
            .descends = mayHoldTexts};
}

TreeExtent outlineExtent() {
    return {
        .maxDepth = deepestWebArea + 1, .maxElements = maxElementsBrowser, .descends = mayHoldPage};
}

CollectedTexts collectTexts(const AccessibleElement& window, const TreeExtent& extent) {
    TextCollector collector(extent);
    collector.collect(window, 0);
    return std::move(collector.collected);
}

std::string_view findWebAreaURL(const AccessibleElement& window) {
    return findWebAreaURL(window, 0);
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
