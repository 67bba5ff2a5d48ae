// Decides which windows of an application, and which pages of a browser, are meetings, how much of
// each must be read to decide, and which meetings are there without being read. Pure functions,
// callable from any thread.
#pragma once

#include "detectors/MeetingPlatforms.h"
#include "platform/AccessibilityTree.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// The reading plan for the application with this identifier. It covers all platforms that the
/// application hosts.
[[nodiscard]] std::shared_ptr<const ReadingPlan> makeReadingPlan(std::string_view bundleIdentifier);

/// A window, or a page of a browser, as it was last read, with the texts that decide what it is.
struct MeetingCandidate {
    bool isPage = false;
    std::string title; ///< of the window, unless it is a page that is not alone in front
    ReadState state = ReadState::notReadYet;
    std::string problem;
    TreeExtent extent;
    AccessibleElementPtr tree;
    std::string lowerTitle;
    std::string lowerUrl; ///< of the page
    bool isSearchPage = false;
};

/// What may be a meeting in a window of the application with this identifier. A browser's window
/// whose pages are not known counts as one page.
[[nodiscard]] std::vector<MeetingCandidate> candidatesIn(const AccessibleWindow& window,
                                                         std::string_view bundleIdentifier);

/// What a candidate is to a platform.
enum class WindowKind {
    none,           ///< not a meeting of this platform
    notReadYet,     ///< not known yet, or a meeting that is not read far enough
    couldNotBeRead, ///< not known, or a meeting; reading it failed
    meeting,        ///< a meeting of this platform that was read
};
[[nodiscard]] WindowKind kindOf(const MeetingCandidate& candidate, const MeetingPlatform& platform);

/// Whether a page is a part of a meeting that has a window of its own, as a picture in a picture
/// does. It has no address.
[[nodiscard]] bool isDetachedPart(const MeetingCandidate& candidate);

/// A meeting that is known by its title only.
struct HiddenMeeting {
    std::string_view platformName;
    bool isInFront = false; ///< among the tabs of its window, which itself is not in front
};

/// The meetings in a window that none of its pages shows; none if the application is no browser.
[[nodiscard]] std::vector<HiddenMeeting> hiddenMeetings(const AccessibleWindow& window,
                                                        std::string_view bundleIdentifier);

} // namespace quorva
