#include "detectors/MeetingWindows.h"

#include "base/Text.h"
#include "detectors/WindowScan.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace quorva {
namespace {

constexpr std::string_view detachedAddress = "about:blank";

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

bool isBrowser(std::string_view bundleIdentifier) {
    return !Hosted(bundleIdentifier).inPages.empty();
}

bool isMeetingOfAny(const Hosted::Platforms& platforms, std::string_view lowerTitle,
                    std::string_view lowerUrl) {
    return std::any_of(platforms.begin(), platforms.end(), [&](const MeetingPlatform* platform) {
        return isMeetingWindow(*platform, lowerTitle, lowerUrl);
    });
}

/// Whether a tree read to the extent `readTo` holds everything in `needed`.
bool covers(const TreeExtent& readTo, const TreeExtent& needed) {
    return readTo.descends == needed.descends && readTo.maxDepth >= needed.maxDepth &&
           readTo.maxElements >= needed.maxElements;
}

MeetingCandidate candidateOf(const AccessibleWindow& window, bool isPage) {
    MeetingCandidate candidate{.isPage = isPage,
                               .title = window.title,
                               .state = window.state,
                               .problem = window.problem,
                               .extent = window.extent,
                               .tree = window.tree};
    candidate.lowerTitle = lowerCased(window.title);
    return candidate;
}

MeetingCandidate candidateOf(const AccessiblePage& page, std::string title) {
    MeetingCandidate candidate{.isPage = true,
                               .title = std::move(title),
                               .state = page.state,
                               .problem = page.problem,
                               .extent = page.extent,
                               .tree = page.tree};
    candidate.lowerTitle = lowerCased(candidate.title);
    candidate.lowerUrl = lowerCased(page.url);
    candidate.isSearchPage = isNonMeetingBrowserTitle(candidate.title);
    return candidate;
}

using Pages = std::vector<const AccessiblePage*>;

/// The page with the longest title that a tab's begins with. Firefox has no titles for the first
/// client that asks: the page's platform, which the tab's title tells, has to do.
Pages::iterator pageOf(const AccessibleTab& tab, Pages& pages) {
    auto best = pages.end();
    for (auto at = pages.begin(); at != pages.end(); ++at) {
        const auto& title = (*at)->title;
        if (!title.empty() && tab.title.starts_with(title) &&
            (best == pages.end() || title.size() > (*best)->title.size()))
            best = at;
    }
    if (best != pages.end())
        return best;
    const auto platform = platformForTabTitle(tab.title);
    return std::find_if(pages.begin(), pages.end(), [&](const AccessiblePage* page) {
        return page->title.empty() && platform && platformForURL(page->url) == platform;
    });
}

} // namespace

std::shared_ptr<const ReadingPlan> makeReadingPlan(std::string_view bundleIdentifier) {
    const Hosted hosted(bundleIdentifier);
    ReadingPlan plan;
    if (!hosted.inPages.empty())
        plan.outline = outlineExtent();
    plan.window = [hosted](std::string_view title) {
        return isMeetingOfAny(hosted.inWindows, lowerCased(title), {}) ? wholeWindowExtent()
                                                                       : TreeExtent{};
    };
    plan.page = [hosted](std::string_view title, std::string_view url) {
        const bool isMeeting = !isNonMeetingBrowserTitle(title) &&
                               isMeetingOfAny(hosted.inPages, lowerCased(title), lowerCased(url));
        return isMeeting || url == detachedAddress ? wholePageExtent() : TreeExtent{};
    };
    return std::make_shared<const ReadingPlan>(std::move(plan));
}

std::vector<MeetingCandidate> candidatesIn(const AccessibleWindow& window,
                                           std::string_view bundleIdentifier) {
    const bool hasPages = isBrowser(bundleIdentifier);
    std::vector<MeetingCandidate> candidates;
    if (!hasPages || window.state != ReadState::read) {
        candidates.push_back(candidateOf(window, hasPages));
        return candidates;
    }
    const auto inFront = std::count_if(window.pages.begin(), window.pages.end(),
                                       [](const AccessiblePage& page) { return page.isShown; });
    for (const auto& page : window.pages) {
        const bool isWindow = (page.isShown && inFront == 1) || page.title.empty();
        candidates.push_back(candidateOf(page, isWindow ? window.title : page.title));
    }
    return candidates;
}

WindowKind kindOf(const MeetingCandidate& candidate, const MeetingPlatform& platform) {
    if (platform.isBrowser != candidate.isPage || candidate.isSearchPage)
        return WindowKind::none;
    const bool isMeeting = isMeetingWindow(platform, candidate.lowerTitle, candidate.lowerUrl);
    const bool mayBeOne = candidate.isPage && candidate.lowerUrl.empty();
    if (!isMeeting && !mayBeOne)
        return WindowKind::none;
    if (candidate.state == ReadState::couldNotBeRead)
        return WindowKind::couldNotBeRead;
    if (candidate.state == ReadState::read && !candidate.tree && mayBeOne)
        return WindowKind::none; // a page that shows nothing: only its tab tells
    if (candidate.state == ReadState::notReadYet || !candidate.tree)
        return WindowKind::notReadYet;
    if (!isMeeting)
        return WindowKind::none;
    const auto needed = candidate.isPage ? wholePageExtent() : wholeWindowExtent();
    return covers(candidate.extent, needed) ? WindowKind::meeting : WindowKind::notReadYet;
}

bool isDetachedPart(const MeetingCandidate& candidate) {
    return candidate.isPage && candidate.lowerUrl == detachedAddress &&
           candidate.state == ReadState::read && candidate.tree &&
           !candidate.tree->children.empty();
}

std::vector<HiddenMeeting> hiddenMeetings(const AccessibleWindow& window,
                                          std::string_view bundleIdentifier) {
    std::vector<HiddenMeeting> hidden;
    if (window.state != ReadState::read || !isBrowser(bundleIdentifier))
        return hidden;
    Pages pages;
    for (const auto& page : window.pages)
        if (!page.url.empty() || page.tree) // else it does not tell what it is
            pages.push_back(&page);
    const bool isEmpty = pages.empty();
    std::vector<const AccessibleTab*> without;
    for (const auto& tab : window.tabs)
        if (const auto page = pageOf(tab, pages); page != pages.end())
            pages.erase(page);
        else
            without.push_back(&tab);
    for (const auto* const tab : without) {
        const auto platform = platformForTabTitle(tab->title);
        const auto inFront = std::find_if(pages.begin(), pages.end(),
                                          [](const AccessiblePage* page) { return page->isShown; });
        if (platform && tab->isSelected && inFront != pages.end())
            pages.erase(inFront); // its title has just changed
        else if (platform)
            hidden.push_back({*platform, tab->isSelected && isEmpty});
    }
    if (window.tabs.empty() && isEmpty)
        if (const auto platform = platformForTabTitle(window.title))
            hidden.push_back({*platform, true});
    return hidden;
}

} // namespace quorva
