// What is looked for in the snapshot of a window: its texts, the address of its page, the signs of
// a meeting under way. Pure functions, callable from any thread. What they return refers to texts
// of the snapshot and is valid as long as that lives.
#pragma once

#include "platform/AccessibilityTree.h"

#include <span>
#include <string_view>
#include <vector>

namespace quorva {

/// How deep and how far the trees of meeting windows are walked.
inline constexpr int maxTreeDepthNative = 20;
inline constexpr int maxElementsNative = 2000;
inline constexpr int maxTreeDepthBrowser = 30;
inline constexpr int maxElementsBrowser = 5000;

/// All of a window in which a participant or a banner could be: of a meeting application, and of a
/// browser.
[[nodiscard]] TreeExtent wholeWindowExtent(bool isBrowser);

/// As much of a browser window as it takes to find its page.
[[nodiscard]] TreeExtent outlineExtent();

struct CollectedTexts {
    /// An element's texts precede those of its children; the same text may be there several times.
    std::vector<std::string_view> texts;
    int elementCount = 0; ///< of the elements visited
};

/// The short texts of the elements within `extent`: at most 199 characters each, none empty,
/// without the white space around them.
[[nodiscard]] CollectedTexts collectTexts(const AccessibleElement& window,
                                          const TreeExtent& extent);

/// The address of the first page in the window that has one; empty when there is none.
[[nodiscard]] std::string_view findWebAreaURL(const AccessibleElement& window);

/// Whether at least two texts are labels of controls that a meeting under way has.
[[nodiscard]] bool hasActiveMeetingSignals(std::span<const std::string_view> texts);

} // namespace quorva
