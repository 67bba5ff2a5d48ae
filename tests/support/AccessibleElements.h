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

/// A page of a browser.
inline AccessibleElementPtr page(std::string url, const std::vector<std::string>& texts,
                                 std::string title = {}) {
    return element(AccessibilityRole::webArea, std::move(title), {listOf(texts)}, std::move(url));
}

/// The window of a browser that shows these pages.
inline AccessibleElementPtr browserWindow(Elements pages) {
    using enum AccessibilityRole;
    return element(window, {},
                   {element(toolbar, {}, {element(button)}), element(group, {}, std::move(pages))});
}
inline AccessibleElementPtr browserWindow(std::string url, const std::vector<std::string>& texts) {
    return browserWindow({page(std::move(url), texts)});
}

} // namespace quorva
