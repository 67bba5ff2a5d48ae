#include "detectors/WindowScan.h"

#include "detectors/MeetingPlatforms.h"
#include "support/AccessibleElements.h"

#include <gmock/gmock.h>

namespace quorva {
namespace {

using enum AccessibilityRole;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

/// The element below `depth` groups: at that depth, where the topmost group is a window.
AccessibleElementPtr below(int depth, AccessibleElementPtr lowest) {
    for (int i = 0; i < depth; ++i)
        lowest = element(group, {}, {lowest});
    return lowest;
}

TEST(WindowScan, collectsShortTextsInTheOrderOfTheTree) {
    std::string accents;
    for (int i = 0; i < 199; ++i)
        accents += "é";
    const auto full = std::make_shared<const AccessibleElement>(AccessibleElement{
        .role = button,
        .value = "value",
        .title = " title\n",
        .description = "title",
        .help = " \t\n",
        .roleDescription = "button",
        .children = {element(staticText, std::string(199, 'a')),
                     element(staticText, std::string(200, 'b')), element(staticText, accents),
                     element(staticText, accents + "é")},
    });
    const auto tree = element(window, "top", {full, element(unreadable, "last")});
    const auto found = collectTexts(*tree, wholeWindowExtent());
    EXPECT_THAT(found.texts, ElementsAre("top", "value", "title", "title", "button",
                                         std::string(199, 'a'), accents, "last"));
    EXPECT_EQ(found.elementCount, 7);
}

TEST(WindowScan, leavesOutDecorationAndTheToolbarsOfDocuments) {
    Elements children;
    for (const auto role : {menuBar, scrollBar, splitter, ruler, image, colorWell, slider})
        children.push_back(element(role, "no", {element(staticText, "no")}));
    children.push_back(element(toolbar, "yes"));
    const auto tree = element(window, {}, std::move(children));
    const auto found = collectTexts(*tree, wholeWindowExtent());
    EXPECT_THAT(found.texts, ElementsAre("yes"));
    EXPECT_EQ(found.elementCount, 2) << "what is left out costs nothing";

    const auto nested = [](int depthOfParent) {
        return below(depthOfParent + 1, element(toolbar, "bar"));
    };
    EXPECT_THAT(collectTexts(*nested(3), wholeWindowExtent()).texts, ElementsAre("bar"));
    EXPECT_THAT(collectTexts(*nested(4), wholeWindowExtent()).texts, IsEmpty());
    EXPECT_THAT(collectTexts(*nested(0), wholePageExtent()).texts, IsEmpty());
}

TEST(WindowScan, endsWhereTheBudgetsDo) {
    for (const bool isBrowser : {false, true}) {
        const auto extent = isBrowser ? wholePageExtent() : wholeWindowExtent();
        const int deepest = (isBrowser ? 30 : 20) - 1;
        EXPECT_THAT(collectTexts(*below(deepest, element(staticText, "x")), extent).texts,
                    ElementsAre("x"));
        EXPECT_THAT(collectTexts(*below(deepest + 1, element(staticText, "x")), extent).texts,
                    IsEmpty());

        // Half of them in each of two branches: the budget is one for the whole window.
        const int most = isBrowser ? 5000 : 2000;
        const auto half = static_cast<std::size_t>(most / 2);
        const auto wide =
            element(window, "top",
                    {listOf(std::vector<std::string>(half, "a")),
                     listOf(std::vector<std::string>(half, "b")), element(staticText, "last")});
        const auto found = collectTexts(*wide, extent);
        EXPECT_EQ(found.elementCount, most);
        EXPECT_EQ(found.texts.size(), static_cast<std::size_t>(most) - 2);
        EXPECT_EQ(found.texts.back(), "last") << "short branches come before the ends of long ones";
    }
}

TEST(WindowScan, findsTheListOfParticipantsBeyondALongChat) {
    Elements messages;
    for (int i = 0; i < 5'200; ++i)
        messages.push_back(element(staticText, "message"));
    const auto people = element(list, {}, {element(other, "Ann"), element(other, "Otter.ai")});
    const auto flat = [&] {
        auto children = messages;
        children.push_back(people);
        return element(webArea, {}, std::move(children));
    }();
    const auto inSections =
        element(webArea, {},
                {element(group, {}, {element(group, {}, messages)}), element(group, {}, {people})});
    const auto inALog =
        element(webArea, {}, {element(log, {}, {element(list, {}, messages)}), people});
    for (const auto& page : {flat, inSections, inALog}) {
        const auto found = collectTexts(*page, wholePageExtent());
        EXPECT_THAT(found.texts, IsSupersetOf({"Ann", "Otter.ai"}));
        EXPECT_EQ(found.elementCount, maxElementsBrowser);
    }
}

TEST(WindowScan, looksForPagesNearTheTopAndForTabsFurtherDown) {
    const auto [maxDepth, maxElements, descends] = outlineExtent();
    EXPECT_TRUE(descends(group, webArea, 7));
    EXPECT_FALSE(descends(group, webArea, 8));
    EXPECT_FALSE(descends(webArea, group, 3)) << "a page is not read";
    EXPECT_TRUE(descends(toolbar, tabGroup, 1));
    EXPECT_FALSE(descends(toolbar, button, 1));
    EXPECT_TRUE(descends(scrollArea, tab, 9)) << "tabs that stand in a column";
    EXPECT_GT(maxDepth, 10);
}

TEST(WindowScan, takesTwoControlsOfAMeetingForAMeeting) {
    using Texts = std::vector<std::string_view>;
    EXPECT_FALSE(hasActiveMeetingSignals(Texts{}));
    EXPECT_FALSE(hasActiveMeetingSignals(Texts{"Leave", "Ann will leave", "Chat"}));
    EXPECT_TRUE(hasActiveMeetingSignals(Texts{"LEAVE (Ctrl+Shift+H)", "Chat", "Mute"}));
    EXPECT_TRUE(hasActiveMeetingSignals(Texts{"Raise hand", "Raise hand"}));
}

TEST(MeetingPlatforms, tellThePlatformByTheAddress) {
    EXPECT_EQ(platformForURL("https://APP.zoom.us/wc/1/join"), "Zoom");
    EXPECT_EQ(platformForURL("https://us05web.zoom.us/wc/1"), "Zoom");
    EXPECT_EQ(platformForURL("https://teams.microsoft.com/v2/"), "Teams");
    EXPECT_EQ(platformForURL("https://teams.live.com/meet/1"), "Teams");
    EXPECT_EQ(platformForURL("https://teams.cloud.microsoft/"), "Teams");
    EXPECT_EQ(platformForURL("https://meet.google.com/a?from=teams.live.com"), "Teams");
    EXPECT_EQ(platformForURL("https://meet.google.com/abc-defg-hij"), "Google Meet");
    EXPECT_EQ(platformForURL("https://zoom.us/pricing"), std::nullopt);
}

TEST(MeetingPlatforms, tellThePlatformOfATabByItsTitle) {
    EXPECT_EQ(platformForTabTitle("Meet - abc-defg-hij - Memory usage - 22.8 MB"), "Google Meet");
    EXPECT_EQ(platformForTabTitle("Meet \u2013 Weekly"), "Google Meet");
    EXPECT_EQ(platformForTabTitle("Zoom Meeting"), "Zoom");
    EXPECT_EQ(platformForTabTitle("Weekly - Zoom - Audio playing - Memory usage - 25 MB"), "Zoom");
    EXPECT_EQ(platformForTabTitle("Weekly | Microsoft Teams - Audio playing"), "Teams");
    for (const auto* const title :
         {"", "Meet the team - Acme", "Meetings", "Plans - Zoom", "The zoom lens - Audio playing",
          "Inbox (3) - Mail", "google meet - Google Search"})
        EXPECT_EQ(platformForTabTitle(title), std::nullopt) << title;
}

TEST(MeetingPlatforms, knowSearchPagesByTheirTitles) {
    for (const auto* const title :
         {"zoom meeting - Google Search", "Meet - Google", "x - Google", "teams - Bing", "Bing - x",
          "meet at DuckDuckGo", "a - Yahoo Search Results",
          "zoom meeting - Google Search - Google Chrome", "x - Google - Google Chrome - Work"})
        EXPECT_TRUE(isNonMeetingBrowserTitle(title)) << title;
    for (const auto* const title :
         {"", "Meet – abc-defg-hij", "Zoom Meeting - Mozilla Firefox",
          "Google Meet - Google Chrome", "Weekly | Microsoft Teams - Google Chrome - Work"})
        EXPECT_FALSE(isNonMeetingBrowserTitle(title)) << title;
}

} // namespace
} // namespace quorva
