#include "AccessibilityTest.h"

#include <cerrno>

namespace quorva {
namespace {

/// A window "Meeting" with a list of people, and a window "Diary" with a list of secrets.
std::optional<PlayedElement> meetingAndDiary(const std::string& identifier) {
    if (identifier == "root")
        return PlayedElement{.role = played::application, .children = {"meeting", "diary"}};
    if (identifier == "meeting")
        return PlayedElement{.role = played::frame, .name = "Meeting", .children = {"people"}};
    if (identifier == "diary")
        return PlayedElement{.role = played::frame, .name = "Diary", .children = {"secrets"}};
    if (identifier == "people")
        return PlayedElement{.role = played::list, .children = {"ann", "ben", "cem"}};
    if (identifier == "secrets")
        return PlayedElement{.role = played::list, .children = {"secret"}};
    if (identifier == "secret")
        return PlayedElement{.role = played::listItem, .name = "Nobody's business"};
    return PlayedElement{.role = played::listItem, .name = identifier, .text = "is " + identifier};
}

} // namespace

TEST_F(AccessibilityTest, readsOfUnwantedWindowsNothingButTheTitle) {
    PlayedApplication application(meetingAndDiary, "gtk");
    request({self});
    ASSERT_TRUE(comesTo([&] { return readingOf(self) != nullptr; }));

    EXPECT_EQ(application.questions("secrets"), 0);
    EXPECT_EQ(application.questions("secret"), 0);
    EXPECT_EQ(application.questions("diary", "GetText"), 0);

    const auto read = readingOf(self);
    ASSERT_EQ(walk(read).size(), 5U);
    const auto* const ben = find(read, "ben");
    ASSERT_NE(ben, nullptr);
    EXPECT_EQ(ben->value, "is ben");
    EXPECT_EQ(ben->roleDescription, "role 32");
}

TEST_F(AccessibilityTest, readsAnApplicationBesideOneThatIsStoppedMidRead) {
    PlayedMeeting stopped("Meeting", 400, 2);
    const PlayedMeeting other("Meeting");
    const auto both = {stopped.identifier(), other.identifier()};
    request(both);
    ASSERT_TRUE(comesTo([&] { return readingOf(other.identifier()) != nullptr; }));
    ASSERT_EQ(tree.windows(stopped.identifier()).state, ReadState::notReadYet);
    stopped.signal(SIGSTOP);

    ASSERT_TRUE(comesToAsking(both, [&] {
        return tree.windows(stopped.identifier()).state == ReadState::couldNotBeRead;
    }));
    EXPECT_EQ(tree.windows(stopped.identifier()).problem, "it does not answer");
    EXPECT_EQ(tree.enable(stopped.identifier(), AccessibilitySwitch::manualAccessibility),
              ETIMEDOUT);
    EXPECT_NE(readingOf(other.identifier()), nullptr);

    stopped.signal(SIGCONT);
    EXPECT_TRUE(comesTo([&] { return readingOf(stopped.identifier()) != nullptr; }));
}

TEST_F(AccessibilityTest, losesAnApplicationThatIsKilledMidRead) {
    PlayedMeeting killed("Meeting", 400, 2);
    request({killed.identifier()});
    ASSERT_FALSE(comesTo([&] { return readingOf(killed.identifier()) != nullptr; }, Seconds(1)));
    const auto process = killed.identifier();
    killed.kill();
    EXPECT_TRUE(comesToAsking(
        {process}, [&] { return tree.windows(process).state == ReadState::couldNotBeRead; }));
}

} // namespace quorva
