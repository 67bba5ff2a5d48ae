#include "detectors/MeetingPlatforms.h"

#include "base/Text.h"
#include "detectors/MeetingPlatformTable.h"

#include <algorithm>
#include <string>

namespace quorva {
namespace {

using Texts = MeetingPlatform::Texts;

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

bool containsAny(std::string_view text, Texts parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](std::string_view part) { return contains(text, part); });
}

bool lists(Texts texts, std::string_view text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// A page's title without the name of the browser, which would make every page of Google Chrome one
/// of a Google search. The name may be followed by that of a profile.
std::string_view withoutBrowserName(std::string_view title) {
    constexpr std::string_view browserName = " - google chrome";
    return title.substr(0, title.rfind(browserName));
}

} // namespace

std::span<const MeetingPlatform> meetingPlatforms() {
    return tables::meetingPlatformTable;
}

bool isHostedBy(const MeetingPlatform& platform, std::string_view bundleIdentifier) {
    return lists(platform.bundleIdentifiers, bundleIdentifier);
}

std::optional<AccessibilitySwitch> accessibilitySwitchOf(std::string_view bundleIdentifier) {
    if (lists(tables::electronBundleIdentifiers, bundleIdentifier))
        return AccessibilitySwitch::manualAccessibility;
    if (lists(tables::enhancedUIBrowserBundleIdentifiers, bundleIdentifier))
        return AccessibilitySwitch::enhancedUserInterface;
    return std::nullopt;
}

std::optional<std::string_view> platformForURL(std::string_view url) {
    const auto lower = lowerCased(url);
    if (containsAny(lower, tables::zoomHosts))
        return "Zoom";
    if (containsAny(lower, tables::teamsHosts))
        return "Teams";
    if (containsAny(lower, tables::meetHosts))
        return "Google Meet";
    return std::nullopt;
}

namespace {

/// Whether a tab that plays sound has a page with this title, or one that ends with it. Chromium
/// says so in the tab's name. Many pages of a platform have its name; only a call plays sound.
bool playsSoundOf(std::string_view lowerTitle, std::string_view platform) {
    const auto page = lowerTitle.substr(0, lowerTitle.find(" - audio playing"));
    return page.size() < lowerTitle.size() && page.ends_with(platform) &&
           (page.size() == platform.size() ||
            page.substr(0, page.size() - platform.size()).ends_with(' '));
}

} // namespace

/// A room of Google Meet has the title "Meet - abc-defg-hij", or "Meet" while it opens.
std::optional<std::string_view> platformForTabTitle(std::string_view title) {
    if (isNonMeetingBrowserTitle(title))
        return std::nullopt;
    const auto lower = lowerCased(title);
    if (lower == "meet" || lower.starts_with("meet - ") || lower.starts_with("meet \u2013 "))
        return "Google Meet";
    for (const auto& platform : meetingPlatforms())
        if (platform.isBrowser && (containsAny(lower, platform.meetingWindowPatterns) ||
                                   playsSoundOf(lower, lowerCased(platform.name))))
            return platform.name;
    return std::nullopt;
}

bool isNonMeetingBrowserTitle(std::string_view title) {
    const auto lower = lowerCased(title);
    const auto page = withoutBrowserName(lower);
    if (page.ends_with("- google") && !contains(page, "meet"))
        return true;
    return containsAny(page, tables::nonMeetingTitleMarkers);
}

bool isMeetingWindow(const MeetingPlatform& platform, std::string_view title,
                     std::string_view url) {
    if (platform.isBrowser && !url.empty())
        return platformForURL(url) == platform.name;
    return platform.meetingWindowPatterns.empty() ||
           containsAny(title, platform.meetingWindowPatterns);
}

} // namespace quorva
