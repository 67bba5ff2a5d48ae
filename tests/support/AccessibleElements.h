// Short ways to make the trees of elements that windows show.
#pragma once

#include "platform/AccessibilityTree.h"

#include <utility>

namespace quorva {

using Elements = std::vector<AccessibleElementPtr>;

inline AccessibleElementPtr element(AccessibilityRole role, std::string title = {},
                                    Elements children = {}, std::string url = {}) {
    return std::make_shared<const AccessibleElement>(
        AccessibleElement{.role = role,
                          .title = std::move(title),
                          .url = std::move(url),
                          .children = std::move(children)});
}

/// A list with an item for each text.
inline AccessibleElementPtr listOf(const std::vector<std::string>& texts) {
    Elements items;
    for (const auto& text : texts)
        items.push_back(element(AccessibilityRole::staticText, text));
    return element(AccessibilityRole::list, {}, std::move(items));
}

/// The window of a meeting application.
inline AccessibleElementPtr meetingWindow(const std::vector<std::string>& texts) {
    return element(AccessibilityRole::window, {}, {listOf(texts)});
}

/// The window of a browser, with a page.
inline AccessibleElementPtr browserWindow(std::string url, const std::vector<std::string>& texts) {
    using enum AccessibilityRole;
    return element(window, {},
                   {element(toolbar, {}, {element(button)}),
                    element(group, {}, {element(webArea, {}, {listOf(texts)}, std::move(url))})});
}

} // namespace quorva
