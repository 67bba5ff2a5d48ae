// What the program may look at: the calendars, the windows of meetings, and what sound devices
// there are. Finds out, asks, and follows what the user changes elsewhere.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "detectors/BlackHoleDetector.h"
#include "detectors/CalendarMonitor.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "platform/AccessibilityTree.h"
#include "platform/CalendarStore.h"
#include "platform/Log.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// Main thread only.
class Permissions {
public:
    /// The services and monitors must outlive this. Nothing is looked up yet.
    Permissions(MainLoop& loop, Log& log, CalendarStore& calendars,
                AccessibilityTree& accessibility, AudioDevices& audioDevices,
                CalendarMonitor& calendarMonitor, MeetingParticipantMonitor& participantMonitor);

    Published<bool> hasCalendarAccess{false};
    Published<bool> hasAccessibilityPermission{false};
    Published<bool> hasMicrophonePermission{false};
    Published<bool> isBlackHoleInstalled{false};

    Published<std::vector<std::string>> calendarAccountNames;
    Published<bool> hasGoogleCalendar{false};
    Published<bool> hasExchangeCalendar{false};
    /// Calendars may be read, but there is neither a Google nor an Exchange account.
    Published<bool> needsCalendarAccountSetup{false};

    /// Calendars, or windows, may be read from now on; called when the user has been asked, or a
    /// later look has found it out. May be empty.
    Task onCalendarGranted;
    Task onAccessibilityGranted;

    /// Looks everything up, without asking the user.
    void refresh();

    /// The same, of what monitoring depends on.
    void refreshForMonitoring();

    /// Asks the user for access to calendars; calls `done` with the answer, on the main loop or
    /// within this call.
    void requestCalendarAccess(std::function<void(bool granted)> done);

    /// Reads the accounts that calendars come from.
    void refreshCalendarAccounts();

    /// Switches the session's accessibility on, at the user's wish.
    void requestAccessibilityPermission();

    /// Looks whether it is on.
    void refreshAccessibilityPermission();

    /// Looks every 5 seconds from now on, until it is on.
    void startAccessibilityRecheckTimer();

    /// Whether that is going on.
    [[nodiscard]] bool isRechecking() const { return static_cast<bool>(accessibilityRecheckTimer); }

private:
    void takeAuthorization(CalendarAuthorization status);
    void takeTrust(bool isTrusted);
    void recheck();

    MainLoop& loop;
    Log& log;
    CalendarStore& calendars;
    AccessibilityTree& accessibility;
    CalendarMonitor& calendarMonitor;
    MeetingParticipantMonitor& participantMonitor;
    BlackHoleDetector blackHoleDetector;
    std::vector<Subscription> subscriptions;
    Timer accessibilityRecheckTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
