#include "detectors/MeetingWindows.h"

#include "base/Text.h"
#include "detectors/WindowScan.h"

#include <vector>

namespace quorva {
namespace {

/// The platforms that an application hosts.
struct Hosted {
    explicit Hosted(std::string_view bundleIdentifier) {
        for (const auto& platform : meetingPlatforms())
            if (isHostedBy(platform, bundleIdentifier))
                (platform.isBrowser ? inPages : inWindows).push_back(&platform);
    }

    using Platforms = std::vector<const MeetingPlatform*>;
    Platforms inWindows; ///< in windows of its own
    Platforms inPages;   ///< in pages that it shows as a browser
};

bool isMeetingOfAny(const Hosted::Platforms& platforms, std::string_view lowerTitle,
                    std::string_view lowerUrl) {
    for (const auto* const platform : platforms)
        if (isMeetingWindow(*platform, lowerTitle, lowerUrl))
            return true;
    return false;
}

/// The largest extent that any platform needs of a window.
TreeExtent neededExtent(const Hosted& hosted, std::string_view title, std::string_view url) {
    const auto lowerTitle = lowerCased(title);
    if (!isNonMeetingBrowserTitle(title) &&
        isMeetingOfAny(hosted.inPages, lowerTitle, lowerCased(url)))
        return wholeWindowExtent(true);
    if (isMeetingOfAny(hosted.inWindows, lowerTitle, {}))
        return wholeWindowExtent(false);
    return {};
}

/// Whether a tree read to the extent `readTo` holds everything in `needed`.
bool covers(const TreeExtent& readTo, const TreeExtent& needed) {
    return readTo.descends == needed.descends && readTo.maxDepth >= needed.maxDepth &&
           readTo.maxElements >= needed.maxElements;
}

} // namespace

std::shared_ptr<const ReadingPlan> makeReadingPlan(std::string_view bundleIdentifier) {
    const Hosted hosted(bundleIdentifier);
    ReadingPlan plan;
    plan.byTitle = [hosted](std::string_view title) -> ReadingPlan::First {
        if (!hosted.inPages.empty() && !isNonMeetingBrowserTitle(title))
            return {.extent = outlineExtent(), .isFinal = false};
        return {.extent = neededExtent(hosted, title, {}), .isFinal = true};
    };
    plan.byTree = [hosted](std::string_view title, const AccessibleElement& outline) {
        return neededExtent(hosted, title, findWebAreaURL(outline));
    };
    return std::make_shared<const ReadingPlan>(std::move(plan));
}

LabelledWindow label(AccessibleWindow window) {
    LabelledWindow labelled{.window = std::move(window)};
    const auto& [title, state, problem, extent, tree] = labelled.window;
    labelled.lowerTitle = lowerCased(title);
    labelled.isSearchPage = isNonMeetingBrowserTitle(title);
    if (state == ReadState::read && tree)
        labelled.lowerUrl = lowerCased(findWebAreaURL(*tree));
    return labelled;
}

WindowKind kindOf(const LabelledWindow& labelled, const MeetingPlatform& platform) {
    const auto& window = labelled.window;
    const auto isMeeting = [&] {
        return isMeetingWindow(platform, labelled.lowerTitle, labelled.lowerUrl);
    };
    if (platform.isBrowser ? labelled.isSearchPage : !isMeeting())
        return WindowKind::none;
    if (window.state == ReadState::couldNotBeRead)
        return WindowKind::couldNotBeRead;
    if (window.state == ReadState::notReadYet || !window.tree)
        return WindowKind::notReadYet;
    if (platform.isBrowser && !isMeeting())
        return window.tree->children.empty() ? WindowKind::notReadYet : WindowKind::none;
    return covers(window.extent, wholeWindowExtent(platform.isBrowser)) ? WindowKind::meeting
                                                                        : WindowKind::notReadYet;
}

} // namespace quorva
