// What AccessibilityTree promises its callers, of the service on the accessibility bus and of the
// double that stands for it in other tests.
#include "AccessibilityTest.h"
#include "support/AccessibleElements.h"
#include "support/FakeAccessibilityTree.h"

#include <limits>

namespace quorva {
namespace {

/// A window "Meeting" with a button and a list of people, and a window "Diary".
std::optional<PlayedElement> twoWindows(const std::string& identifier) {
    if (identifier == "root")
        return PlayedElement{.role = played::application, .children = {"meeting", "diary"}};
    if (identifier == "meeting")
        return PlayedElement{
            .role = played::frame, .name = "Meeting", .children = {"leave", "people"}};
    if (identifier == "diary")
        return PlayedElement{.role = played::frame, .name = "Diary", .children = {"ann"}};
    if (identifier == "leave")
        return PlayedElement{.role = static_cast<std::uint32_t>(AtspiRole::pushButton),
                             .name = identifier};
    if (identifier == "people")
        return PlayedElement{.role = played::list, .children = {"ann", "ben", "cem"}};
    return PlayedElement{.role = played::listItem, .name = identifier};
}

FakeAccessibilityTree::Application theSame() {
    using enum AccessibilityRole;
    const Elements people{element(other, "ann"), element(other, "ben"), element(other, "cem")};
    return {.windows = {{"Meeting", element(window, "Meeting",
                                            {element(button, "leave"), element(list, "", people)})},
                        {"Diary", element(window, "Diary", {element(other, "ann")})}}};
}

enum class Service { accessibilityBus, inMemory };

class AccessibilityTreeContractTest : public AccessibilityTest,
                                      public testing::WithParamInterface<Service> {
protected:
    AccessibilityTreeContractTest() { fake.applications[self] = theSame(); }

    void request(std::shared_ptr<const ReadingPlan> plan = wholeMeetings()) {
        subject.request({{self, std::move(plan)}});
    }

    [[nodiscard]] bool isRead() const { return subject.windows(self).state == ReadState::read; }

    void wait() {
        (void)comesTo([] { return false; }, Seconds(0.3));
    }

    const PlayedApplication application{twoWindows, "gtk"};
    FakeAccessibilityTree fake{loop};
    AccessibilityTree& subject =
        GetParam() == Service::inMemory ? static_cast<AccessibilityTree&>(fake) : tree;
};

INSTANTIATE_TEST_SUITE_P(Both, AccessibilityTreeContractTest,
                         testing::Values(Service::accessibilityBus, Service::inMemory),
                         [](const auto& instance) {
                             return instance.param == Service::inMemory ? "inMemory"
                                                                        : "accessibilityBus";
                         });

} // namespace

TEST_P(AccessibilityTreeContractTest, callsBackAfterAReadingAndNotWithinTheRequest) {
    std::vector<ReadState> states;
    int callsAfterEnd = 0;
    const auto following = subject.onRead([&] { states.push_back(subject.windows(self).state); });
    subject.onRead([&] { ++callsAfterEnd; }).reset();
    EXPECT_EQ(subject.windows(self).state, ReadState::notReadYet);
    request();
    EXPECT_TRUE(states.empty());
    EXPECT_TRUE(comesTo([&] { return !states.empty() && states.back() == ReadState::read; }));
    EXPECT_EQ(callsAfterEnd, 0);
}

TEST_P(AccessibilityTreeContractTest, showsEachWindowAsFarAsThePlanWantsIt) {
    static constexpr TreeExtent withoutButtons{
        .maxDepth = 3, .maxElements = 4, .descends = [](AccessibilityRole, auto child, int) {
            return child != AccessibilityRole::button;
        }};
    const auto plan = std::make_shared<ReadingPlan>();
    plan->window = [](std::string_view title) {
        return title == "Meeting" ? withoutButtons : TreeExtent{};
    };
    request(plan);
    ASSERT_TRUE(comesTo([&] { return isRead(); }));
    const auto windows = subject.windows(self).windows;
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].title, "Meeting");
    EXPECT_EQ(windows[0].state, ReadState::read);
    EXPECT_EQ(windows[0].extent, withoutButtons);
    std::vector<std::string> titles;
    for (const auto* const element : walk(windows[0].tree))
        titles.push_back(element->title);
    EXPECT_EQ(titles, (std::vector<std::string>{"Meeting", "", "ann", "ben"}));
    EXPECT_EQ(windows[1].title, "Diary");
    EXPECT_EQ(windows[1].state, ReadState::notReadYet);
    EXPECT_EQ(windows[1].tree, nullptr);
}

TEST_P(AccessibilityTreeContractTest, keepsWhatItHasReadForAsLongAsItIsRequested) {
    request();
    ASSERT_TRUE(comesTo([&] { return isRead(); }));
    const auto read = subject.windows(self).windows.at(0).tree;
    request();
    ASSERT_TRUE(isRead());
    wait();
    EXPECT_EQ(subject.windows(self).windows.at(0).tree, read) << "has not changed";

    request();
    subject.request({});
    EXPECT_EQ(subject.windows(self).state, ReadState::notReadYet);
    wait();
    EXPECT_EQ(subject.windows(self).state, ReadState::notReadYet) << "and no late answer counts";
    EXPECT_TRUE(subject.windows(self).windows.empty());
}

TEST_P(AccessibilityTreeContractTest, saysWhyAProcessWithoutWindowsCannotBeRead) {
    constexpr auto nobody = std::numeric_limits<ProcessIdentifier>::max();
    subject.request({{nobody, wholeMeetings()}, {self, wholeMeetings()}});
    ASSERT_TRUE(
        comesTo([&] { return subject.windows(nobody).state == ReadState::couldNotBeRead; }));
    EXPECT_FALSE(subject.windows(nobody).problem.empty());
    EXPECT_TRUE(comesTo([&] { return isRead(); }));
}

TEST_P(AccessibilityTreeContractTest, switchesAccessibilityAndApplicationsOnWhenAsked) {
    fake.isOn = false;
    ASSERT_TRUE(switchAccessibility(false));
    ASSERT_TRUE(comesTo([&] { return !subject.isTrusted(); }));
    int changes = 0;
    int answers = 0;
    const auto following = subject.onTrustChange([&] { ++changes; });
    subject.onTrustChange([&] { ++changes; }).reset();
    subject.requestTrust([&](bool isTrusted) { answers += isTrusted ? 1 : 0; });
    ASSERT_TRUE(comesTo([&] { return answers > 0 && changes > 0; }));
    EXPECT_TRUE(subject.isTrusted());

    (void)subject.enable(self, AccessibilitySwitch::manualAccessibility);
    request();
    EXPECT_TRUE(comesTo(
        [&] { return subject.enable(self, AccessibilitySwitch::manualAccessibility) == 0; }));
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(changes, 1);
}

} // namespace quorva
