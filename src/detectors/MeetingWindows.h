// Decides which windows of an application are meetings, and how much of each window must be read to
// decide. Pure functions, callable from any thread.
#pragma once

#include "detectors/MeetingPlatforms.h"
#include "platform/AccessibilityTree.h"

#include <memory>
#include <string>
#include <string_view>

namespace quorva {

/// The reading plan for the windows of the application with this identifier. It covers all
/// platforms that the application hosts.
[[nodiscard]] std::shared_ptr<const ReadingPlan> makeReadingPlan(std::string_view bundleIdentifier);

/// A window as it was last read, with the texts that decide what it is.
struct LabelledWindow {
    AccessibleWindow window;
    std::string lowerTitle;
    std::string lowerUrl; ///< of its page; empty unless the window is a browser's and was read
    bool isSearchPage = false;
};

[[nodiscard]] LabelledWindow label(AccessibleWindow window);

/// What a window is to a platform.
enum class WindowKind {
    none,           ///< not a meeting of this platform
    notReadYet,     ///< not known yet, or a meeting that is not read far enough; a browser window
                    ///< that is empty has yet to expose its pages
    couldNotBeRead, ///< not known, or a meeting; reading it failed
    meeting,        ///< a meeting of this platform that was read
};

[[nodiscard]] WindowKind kindOf(const LabelledWindow& labelled, const MeetingPlatform& platform);

} // namespace quorva
