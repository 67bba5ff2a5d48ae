// Following the pages of a browser: in front, in the background, and gone.
#include "AccessibilityTest.h"

#include <map>
#include <mutex>
#include <set>

namespace quorva {
namespace {

/// A browser with one window. Its page "meet" is brought up to date only when it is asked what is
/// at a point, as Chromium does with pages that nobody sees.
class PlayedBrowser {
public:
    explicit PlayedBrowser(std::string toolkit)
        : application([this](const std::string& element) { return find(element); },
                      std::move(toolkit),
                      [this](const auto& question) { return treat(question); }) {
        elements["root"] = {.role = played::application, .children = {"window"}};
        elements["window"] = {.role = played::frame, .name = "A", .children = {"tabs", "meet"}};
        elements["tabs"] = {.role = played::tabList, .children = {"tab"}};
        elements["tab"] = {.role = played::tab, .name = "Meet - Audio playing"};
        elements["meet"] = {.role = played::document,
                            .name = "Meet",
                            .url = "https://example.org/meet",
                            .children = {"list", "frame"}};
        elements["news"] = {
            .role = played::document, .name = "News", .url = "https://example.org/news"};
        elements["list"] = {.role = played::list, .children = {"ann"}};
        elements["ann"] = {.role = played::listItem, .name = "ann"};
        elements["ben"] = {.role = played::listItem, .name = "ben"};
        elements["frame"] = {.role = played::internalFrame, .children = {"lobby"}};
        elements["lobby"] = {.role = played::document,
                             .name = "Lobby",
                             .url = "https://example.com/",
                             .isShowing = false};
        elements["call"] = {.role = played::document, .name = "Call", .children = {"cem"}};
        elements["cem"] = {.role = played::listItem, .name = "cem"};
    }

    void change(const std::string& identifier, const PlayedChildren& children) {
        const std::lock_guard lock(mutex);
        elements[identifier].children = children;
    }
    /// Changes the list of the page when that comes up to date.
    void changeUnseen(const PlayedChildren& children) {
        const std::lock_guard lock(mutex);
        unseen = children;
    }
    void close(const std::string& identifier) {
        const std::lock_guard lock(mutex);
        elements.erase(identifier);
    }

private:
    std::optional<PlayedElement> find(const std::string& identifier) {
        const std::lock_guard lock(mutex);
        const auto found = elements.find(identifier);
        return found != elements.end() ? std::optional(found->second) : std::nullopt;
    }
    PlayedTreatment treat(const PlayedQuestion& question) {
        const std::lock_guard lock(mutex);
        if (question.method == "GetAccessibleAtPoint" && question.element == "meet" && unseen) {
            elements["list"].children = *std::exchange(unseen, std::nullopt);
            application.tell("list", "Object", "ChildrenChanged", "add", "ben");
        }
        if (!elements.contains(question.element))
            return {.kind = PlayedTreatment::Kind::vanished};
        return {};
    }

    std::mutex mutex;
    std::map<std::string, PlayedElement> elements;
    std::optional<PlayedChildren> unseen;

public:
    PlayedApplication application; ///< last: its thread uses what is above
};

class AtspiPagesTest : public AccessibilityTest {
protected:
    static std::shared_ptr<const ReadingPlan> pages() {
        auto plan = std::make_shared<ReadingPlan>();
        plan->window = [](std::string_view) { return TreeExtent{}; };
        plan->outline = {.maxDepth = 4, .maxElements = 100};
        plan->page = [](std::string_view, std::string_view url) {
            return url.ends_with("/meet") ? TreeExtent{.maxDepth = 20, .maxElements = 100}
                                          : TreeExtent{};
        };
        return plan;
    }
    /// Requests as a monitor does, until `condition` holds.
    template <typename Condition>
    bool comesToPolling(Condition condition) {
        const auto passes = loop.every(Seconds(0.2), [this] { request({self}, pages()); });
        return comesTo(condition);
    }
    [[nodiscard]] std::optional<AccessiblePage> page(const std::string& title) const {
        for (const auto& window : tree.windows(self).windows)
            for (const auto& each : window.pages)
                if (each.title == title)
                    return each;
        return std::nullopt;
    }
    [[nodiscard]] bool shows(const std::string& text) const {
        const auto meeting = page("Meet");
        return meeting && meeting->tree && find(meeting->tree, text) != nullptr;
    }
};

TEST_F(AtspiPagesTest, areReadEachByItselfBesideTheTabs) {
    PlayedBrowser browser("Gecko");
    browser.change("window", {"tabs", "news", "meet"});
    ASSERT_TRUE(comesToPolling([&] { return shows("ann"); }));
    const auto window = tree.windows(self).windows.at(0);
    EXPECT_EQ(window.tree, nullptr);
    ASSERT_EQ(window.tabs.size(), 1U);
    EXPECT_EQ(window.tabs[0].title, "Meet - Audio playing");
    ASSERT_EQ(window.pages.size(), 2U);
    EXPECT_EQ(window.pages[0].url, "https://example.org/news");
    EXPECT_EQ(window.pages[0].tree, nullptr) << "is not wanted";
    EXPECT_TRUE(shows("Lobby")) << "a frame that is scrolled out of sight";

    browser.change("window", {"tabs", "news"});
    EXPECT_TRUE(comesToPolling([&] { return !page("Meet"); })) << "its tab was closed";
}

TEST_F(AtspiPagesTest, areFollowedIntoTheBackgroundForAsLongAsTheyAnswer) {
    PlayedBrowser browser("Chromium");
    ASSERT_TRUE(comesToPolling([&] { return shows("ann"); }));
    browser.change("window", {"tabs", "news"});
    browser.changeUnseen({"ann", "ben"});
    ASSERT_TRUE(comesToPolling([&] { return page("News") && shows("ben"); }));
    EXPECT_FALSE(page("Meet")->isShown);
    browser.changeUnseen({});
    ASSERT_TRUE(comesToPolling([&] { return !shows("ann"); })) << "the last child went";
    EXPECT_FALSE(shows("ben"));
    browser.close("meet");
    ASSERT_TRUE(comesToPolling([&] { return !page("Meet"); }));
}

TEST_F(AtspiPagesTest, ofAProgramBuiltOnChromiumAreNeverShownStale) {
    PlayedBrowser program("Chromium");
    program.changeUnseen({"ann", "ben"});
    auto plan = std::make_shared<ReadingPlan>();
    plan->window = [](std::string_view) { return TreeExtent{.maxDepth = 20, .maxElements = 100}; };
    request({self}, plan);
    const auto first = [&] {
        const auto windows = tree.windows(self).windows;
        return windows.empty() ? AccessibleWindow{} : windows.front();
    };
    ASSERT_TRUE(comesTo([&] { return first().state != ReadState::notReadYet; }));
    EXPECT_NE(find(first().tree, "ben"), nullptr);

    program.change("window", {"tabs"}); // minimised when its pages were first asked for
    program.application.tell("window", "Object", "ChildrenChanged", "remove");
    EXPECT_TRUE(comesTo([&] { return first().state == ReadState::couldNotBeRead; }));
    EXPECT_NE(first().problem, "");
}

TEST_F(AtspiPagesTest, followAFrameThatGoesElsewhere) {
    PlayedBrowser browser("Gecko");
    ASSERT_TRUE(comesToPolling([&] { return shows("Lobby"); }));
    browser.change("frame", {"call"});
    browser.application.tell("call", "Document", "LoadComplete", "");
    EXPECT_TRUE(comesTo([&] { return shows("cem") && !shows("Lobby"); }));
}

} // namespace
} // namespace quorva
