// Extracts from the snapshot of a window or a page its texts, and the signs of a running meeting.
// Pure functions, callable from any thread. The texts they return point into the
// snapshot and are valid as long as it lives.
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

/// The part of a meeting application's window that can hold a participant or a banner.
[[nodiscard]] TreeExtent wholeWindowExtent();

/// The same of a browser's page.
[[nodiscard]] TreeExtent wholePageExtent();

/// The part of a browser's window that must be read to find its pages and tabs.
[[nodiscard]] TreeExtent outlineExtent();

struct CollectedTexts {
    /// An element's texts precede those of its children. A text may occur several times.
    std::vector<std::string_view> texts;
    int elementCount = 0; ///< elements visited
};

/// The short texts of the elements within `extent`. Each has 1 to 199 characters and no white space
/// around it.
[[nodiscard]] CollectedTexts collectTexts(const AccessibleElement& tree, const TreeExtent& extent);

/// Whether at least two texts are labels of controls that only a running meeting has.
[[nodiscard]] bool hasActiveMeetingSignals(std::span<const std::string_view> texts);

} // namespace quorva
