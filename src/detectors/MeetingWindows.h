// Which windows of an application are meetings, and how much of each is read to tell. Pure
// functions, callable from any thread.
#pragma once

#include "detectors/MeetingPlatforms.h"
#include "platform/AccessibilityTree.h"

#include <memory>
#include <string>
#include <string_view>

namespace quorva {

/// What is to be read of the windows of the application with this identifier, for all platforms
/// that it hosts.
[[nodiscard]] std::shared_ptr<const ReadingPlan> makeReadingPlan(std::string_view bundleIdentifier);

/// A window as it was last read, with the texts that tell what it is.
struct LabelledWindow {
    AccessibleWindow window;
    std::string lowerTitle;
    std::string lowerUrl; ///< of its page; empty unless it is a browser's and has been read
    bool isSearchPage = false;
};

[[nodiscard]] LabelledWindow label(AccessibleWindow window);

/// What a window is to a platform.
enum class WindowKind {
    none,           ///< no meeting of this platform
    notReadYet,     ///< not known, or a meeting that has not been read as far as needed;
                    ///< a browser that shows nothing at all has yet to expose its pages
    couldNotBeRead, ///< not known, or a meeting
    meeting,        ///< a meeting of this platform, read
};

[[nodiscard]] WindowKind kindOf(const LabelledWindow& labelled, const MeetingPlatform& platform);

} // namespace quorva
