// The meeting platforms: which applications host their meetings, and how the window or page of a
// meeting is recognised. Plain values and pure functions, callable from any thread. Texts are
// UTF-8.
#pragma once

#include "platform/AccessibilityTree.h"

#include <optional>
#include <span>
#include <string_view>

namespace quorva {

/// A platform in its own application or in web browsers. Two rows may share a name.
struct MeetingPlatform {
    using Texts = std::span<const std::string_view>;

    std::string_view name;
    bool isBrowser = false;
    Texts bundleIdentifiers;     ///< of the applications that host it
    Texts meetingWindowPatterns; ///< lower-case parts of a meeting window's title; empty: any title
    std::span<const AccessibilityRole>
        participantContainerRoles;     ///< of elements that hold participants
    Texts participantPanelIdentifiers; ///< words for the list of participants
    Texts recordingIndicatorPatterns;  ///< of recording banners
};

/// All platforms in the order in which windows are scanned for them.
[[nodiscard]] std::span<const MeetingPlatform> meetingPlatforms();

/// Whether the application with this identifier hosts the platform. Letter case matters.
[[nodiscard]] bool isHostedBy(const MeetingPlatform& platform, std::string_view bundleIdentifier);

/// The switch that makes the application with this identifier expose its whole tree. Nothing when
/// the application exposes it by default.
[[nodiscard]] std::optional<AccessibilitySwitch>
accessibilitySwitchOf(std::string_view bundleIdentifier);

/// The name of the platform whose web client has this address. Letter case does not matter.
[[nodiscard]] std::optional<std::string_view> platformForURL(std::string_view url);

/// The name of the platform of which a tab with this title holds a meeting. Tells less than an
/// address: an article about a platform can have such a title. Letter case does not matter.
[[nodiscard]] std::optional<std::string_view> platformForTabTitle(std::string_view title);

/// Whether a browser window with this title shows a search page. Letter case does not matter.
[[nodiscard]] bool isNonMeetingBrowserTitle(std::string_view title);

/// Whether a window of the platform is a meeting. `title` and `url` are in lower case. `url` is the
/// address of a browser window's page; when it is known, it alone decides.
[[nodiscard]] bool isMeetingWindow(const MeetingPlatform& platform, std::string_view title,
                                   std::string_view url);

} // namespace quorva
