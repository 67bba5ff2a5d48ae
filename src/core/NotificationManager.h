// Posts the notifications of detections, and receives what the user answers to them.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "catalogue/Records.h"
#include "core/NotificationTexts.h"
#include "platform/Log.h"
#include "platform/NotificationCenter.h"

#include <functional>
#include <string>
#include <string_view>

namespace quorva {

namespace notificationAction {
inline constexpr std::string_view object = "OBJECT_ACTION";
inline constexpr std::string_view dismiss = "DISMISS_ACTION";
} // namespace notificationAction

/// What the identifiers of the notifications begin with; the detection's own follows.
namespace notificationPrefix {
inline constexpr std::string_view process = "bot-detected-";
inline constexpr std::string_view processGone = "bot-gone-";
inline constexpr std::string_view calendar = "cal-bot-";
inline constexpr std::string_view participant = "participant-bot-";
inline constexpr std::string_view indicator = "recording-indicator-";
} // namespace notificationPrefix

/// Main thread only.
class NotificationManager {
public:
    /// Registers the categories. The services must outlive the manager.
    NotificationManager(MainLoop& loop, NotificationCenter& center, Log& log);

    /// The user has chosen to object; gets the notification's identifier, as a task of its own.
    std::function<void(const std::string& identifier)> onObjectAction;

    /// Asks to be allowed to post, if that was never asked. A failure is logged.
    void requestAuthorizationIfNeeded();

    /// Each shows a notification at once, in place of an earlier one of the same detection.
    void notifyProcessBot(const DetectedBot& bot);
    void notifyProcessBotGone(const DetectedBot& bot);
    void notifyCalendarBot(const CalendarBotDetection& detection);
    void notifyParticipantBot(const ParticipantBotDetection& detection);
    void notifyRecordingIndicator(const RecordingIndicatorDetection& detection);

private:
    void registerCategories();
    void takeResponse(const NotificationResponse& response);

    MainLoop& loop;
    NotificationCenter& center;
    Log& log;
    Subscription responses;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
