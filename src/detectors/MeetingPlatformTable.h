// The platforms that meetings are held on, one a row, in the order in which windows are scanned for
// them; and the lists that go with them.
#pragma once

#include "detectors/MeetingPlatforms.h"

#include <array>

namespace quorva::tables {

using enum AccessibilityRole;

template <typename... Texts>
constexpr auto texts(Texts... each) {
    return std::array<std::string_view, sizeof...(each)>{each...};
}

inline constexpr auto zoomHosts = texts("app.zoom.us", "zoom.us/wc");
inline constexpr auto teamsHosts =
    texts("teams.microsoft.com", "teams.live.com", "teams.cloud.microsoft");
inline constexpr auto meetHosts = texts("meet.google.com");

inline constexpr auto browsers =
    texts("com.google.Chrome", "com.google.Chrome.canary", "com.apple.Safari",
          "company.thebrowser.Browser", "com.brave.Browser", "com.microsoft.edgemac",
          "org.mozilla.firefox", "com.vivaldi.Vivaldi");
inline constexpr auto zoomApplications = texts("us.zoom.xos");
inline constexpr auto teamsApplications = texts("com.microsoft.teams2", "com.microsoft.teams");
inline constexpr auto webexApplications =
    texts("com.cisco.webexmeetings", "com.webex.meetingmanager");
inline constexpr auto slackApplications = texts("com.tinyspeck.slackmacgap");

inline constexpr auto zoomWindows = texts("zoom meeting", "zoom webinar");
inline constexpr auto teamsWindows = texts("meeting", "call");
inline constexpr auto zoomPages = texts(zoomHosts[0], "zoom meeting", "zoom webinar");
inline constexpr auto teamsPages = texts(teamsHosts[0], "microsoft teams");
inline constexpr auto meetPages = texts(meetHosts[0], "google meet");
inline constexpr auto webexWindows = texts("meeting", "webex");
inline constexpr auto slackWindows = texts("huddle");

inline constexpr std::array zoomRoles{list, table, outline, scrollArea};
inline constexpr std::array teamsRoles{list, table, group, webArea};
inline constexpr std::array pageRoles{webArea, group, list};
inline constexpr std::array webexRoles{list, table, scrollArea};
inline constexpr std::array slackRoles{list, group, webArea};

inline constexpr auto participants = texts("participants", "participant");
inline constexpr auto roster = texts("people", "participants", "roster");
inline constexpr auto people = texts("people", "participants");
inline constexpr auto participantsFirst = texts("participants", "people");

inline constexpr auto zoomBanners =
    texts("recording", "ai companion", "cloud recording", "this meeting is being recorded");
inline constexpr auto teamsBanners =
    texts("recording", "copilot", "transcription", "this meeting is being transcribed");
inline constexpr auto meetBanners = texts("recording", "gemini", "this call is being recorded");
inline constexpr auto banners = texts("recording");

// clang-format off
inline constexpr MeetingPlatform meetingPlatformTable[] = {
    {"Zoom",        false, zoomApplications,  zoomWindows,  zoomRoles,  participants,      zoomBanners},
    {"Teams",       false, teamsApplications, teamsWindows, teamsRoles, roster,            teamsBanners},
    {"Zoom",        true,  browsers,          zoomPages,    pageRoles,  participants,      zoomBanners},
    {"Teams",       true,  browsers,          teamsPages,   pageRoles,  roster,            teamsBanners},
    {"Google Meet", true,  browsers,          meetPages,    pageRoles,  people,            meetBanners},
    {"Webex",       false, webexApplications, webexWindows, webexRoles, participants,      banners},
    {"Slack",       false, slackApplications, slackWindows, slackRoles, participantsFirst, banners},
};
// clang-format on

inline constexpr auto electronBundleIdentifiers =
    texts("com.microsoft.teams", "com.microsoft.teams2", "com.tinyspeck.slackmacgap");

inline constexpr auto enhancedUIBrowserBundleIdentifiers = texts(
    "com.google.Chrome", "com.google.Chrome.canary", "com.brave.Browser", "com.microsoft.edgemac",
    "company.thebrowser.Browser", "com.vivaldi.Vivaldi", "org.mozilla.firefox");

inline constexpr auto nonMeetingTitleMarkers =
    texts("google search", "- google search", "- google", "bing -", "- bing", "duckduckgo",
          "yahoo search", "search results");

} // namespace quorva::tables
