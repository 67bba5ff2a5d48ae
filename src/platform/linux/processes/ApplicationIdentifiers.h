// The catalogues' identifiers for products that have other names on Linux: ids of desktop entries,
// names of Flatpaks and Snaps, names of executable files.
#pragma once

#include <optional>
#include <string_view>

namespace quorva {

struct KnownIdentity {
    std::string_view linuxName;
    std::string_view identifier;
};

// clang-format off
inline constexpr KnownIdentity knownIdentities[] = {
    {"firefox",                                  "org.mozilla.firefox"},
    {"firefox-esr",                              "org.mozilla.firefox"},
    {"org.mozilla.firefox",                      "org.mozilla.firefox"},
    {"google-chrome",                            "com.google.Chrome"},
    {"google-chrome-stable",                     "com.google.Chrome"},
    {"com.google.Chrome",                        "com.google.Chrome"},
    {"chromium",                                 "com.google.Chrome"},
    {"chromium-browser",                         "com.google.Chrome"},
    {"org.chromium.Chromium",                    "com.google.Chrome"},
    {"google-chrome-unstable",                   "com.google.Chrome.canary"},
    {"google-chrome-beta",                       "com.google.Chrome.canary"},
    {"brave-browser",                            "com.brave.Browser"},
    {"com.brave.Browser",                        "com.brave.Browser"},
    {"microsoft-edge",                           "com.microsoft.edgemac"},
    {"microsoft-edge-stable",                    "com.microsoft.edgemac"},
    {"com.microsoft.Edge",                       "com.microsoft.edgemac"},
    {"vivaldi",                                  "com.vivaldi.Vivaldi"},
    {"vivaldi-stable",                           "com.vivaldi.Vivaldi"},
    {"com.vivaldi.Vivaldi",                      "com.vivaldi.Vivaldi"},
    {"Zoom",                                     "us.zoom.xos"},
    {"zoom",                                     "us.zoom.xos"},
    {"us.zoom.Zoom",                             "us.zoom.xos"},
    {"teams",                                    "com.microsoft.teams2"},
    {"teams-for-linux",                          "com.microsoft.teams2"},
    {"com.github.IsmaelMartinez.teams_for_linux", "com.microsoft.teams2"},
    {"com.microsoft.Teams",                      "com.microsoft.teams2"},
    {"slack",                                    "com.tinyspeck.slackmacgap"},
    {"com.slack.Slack",                          "com.tinyspeck.slackmacgap"},
    {"webex",                                    "com.webex.meetingmanager"},
    {"com.cisco.Webex",                          "com.webex.meetingmanager"},
};
// clang-format on

/// The catalogues' identifier for a Linux name, which is compared with its letter case; nothing for
/// an unknown name. Callable from any thread.
[[nodiscard]] constexpr std::optional<std::string_view>
knownIdentifier(std::string_view linuxName) {
    for (const auto& known : knownIdentities)
        if (known.linuxName == linuxName)
            return known.identifier;
    return std::nullopt;
}

} // namespace quorva
