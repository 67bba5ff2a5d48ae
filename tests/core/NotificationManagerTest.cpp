#include "core/NotificationManager.h"

#include "support/FakeNotificationCenter.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <map>

namespace quorva {
namespace {

using testing::ElementsAre;

class NotificationManagerTest : public testing::Test {
protected:
    VirtualMainLoop loop;
    FakeNotificationCenter center;
    RecordingLog log;
    NotificationManager manager{loop, center, log};
};

TEST_F(NotificationManagerTest, givesEveryKindButBannersAButtonToObject) {
    std::map<std::string, std::size_t> buttons;
    for (const auto& category : center.categories)
        buttons[category.identifier] = category.actions.size();
    EXPECT_THAT(buttons,
                ElementsAre(testing::Pair("BOT_DETECTED", 2), testing::Pair("CALENDAR_BOT", 2),
                            testing::Pair("PARTICIPANT_BOT", 2),
                            testing::Pair("RECORDING_INDICATOR", 1)));
    EXPECT_EQ(center.categories[0].actions[0], (NotificationAction{"OBJECT_ACTION", "Object Now"}));
}

TEST_F(NotificationManagerTest, asksForPermissionOnlyWhenItWasNeverAsked) {
    center.authorization = NotificationAuthorization::denied;
    manager.requestAuthorizationIfNeeded();
    EXPECT_EQ(center.requests, 0);
    center.authorization = NotificationAuthorization::notDetermined;
    center.requestError = "nobody shows notifications";
    manager.requestAuthorizationIfNeeded();
    EXPECT_THAT(log.messages,
                ElementsAre(LoggedMessage{
                    LogLevel::error, "Notification permission error: nobody shows notifications",
                    "notification"}));
}

} // namespace
} // namespace quorva
