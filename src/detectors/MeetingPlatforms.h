// The meeting platforms: which applications host their meetings, and by what a meeting's window or
// page is told. Plain values and pure functions, callable from any thread. Texts are UTF-8.
#pragma once

#include "platform/AccessibilityTree.h"

#include <optional>
#include <span>
#include <string_view>

namespace quorva {

/// A platform in its own application, or in web browsers. A name may stand for both.
struct MeetingPlatform {
    using Texts = std::span<const std::string_view>;

    std::string_view name;
    bool isBrowser = false;
    Texts bundleIdentifiers;     ///< of the applications that host it
    Texts meetingWindowPatterns; ///< lower-case parts of a meeting window's title; empty: any title
    std::span<const AccessibilityRole> participantContainerRoles; ///< that hold the participants
    Texts participantPanelIdentifiers;                            ///< words for the participants
    Texts recordingIndicatorPatterns;                             ///< of recording banners
};

/// All platforms in the order in which windows are scanned for them.
[[nodiscard]] std::span<const MeetingPlatform> meetingPlatforms();

/// Whether the application with this identifier hosts the platform. Letter case matters.
[[nodiscard]] bool isHostedBy(const MeetingPlatform& platform, std::string_view bundleIdentifier);

/// What the application with this identifier has to be asked for before it exposes its whole tree;
/// nothing when it exposes it unasked.
[[nodiscard]] std::optional<AccessibilitySwitch>
accessibilitySwitchOf(std::string_view bundleIdentifier);

/// The name of the platform whose web client has this address, letter case aside.
[[nodiscard]] std::optional<std::string_view> platformForURL(std::string_view url);

/// Whether this is the title of a browser window that shows a search page, letter case aside.
[[nodiscard]] bool isNonMeetingBrowserTitle(std::string_view title);

/// Whether the platform's window with this title, in lower case, is a meeting's. `url`, in lower
/// case too, is that of a browser window's page: where it is known, it decides alone.
[[nodiscard]] bool isMeetingWindow(const MeetingPlatform& platform, std::string_view title,
                                   std::string_view url);

} // namespace quorva
