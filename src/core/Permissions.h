// Asks for access to calendars and windows, and follows changes that the user makes elsewhere. The
// monitors hold whether they have access; this class holds the calendar accounts, and whether a
// loopback sound device is installed.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "detectors/BlackHoleDetector.h"
#include "detectors/CalendarMonitor.h"
#include "detectors/MeetingParticipantMonitor.h"
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
    Permissions(MainLoop& loop, Log& log, CalendarStore& calendars, AudioDevices& audioDevices,
                CalendarMonitor& calendarMonitor, MeetingParticipantMonitor& participantMonitor);

    BlackHoleDetector blackHoleDetector;

    Published<std::vector<CalendarSource>, Permissions> calendarAccounts;
    Published<bool, Permissions> hasGoogleCalendar{false};
    Published<bool, Permissions> hasExchangeCalendar{false};

    [[nodiscard]] bool hasCalendarAccess() const {
        return calendarMonitor.authorizationStatus == CalendarAuthorization::fullAccess;
    }
    /// There is no calendar service and no folder of calendars, whatever the user allows.
    [[nodiscard]] bool lacksCalendars() const {
        return calendarMonitor.authorizationStatus == CalendarAuthorization::restricted;
    }
    [[nodiscard]] bool hasAccessibilityPermission() const {
        return participantMonitor.hasAccessibilityPermission;
    }
    /// Calendars may be read, but there is neither a Google nor an Exchange account. False until
    /// the accounts have been read.
    [[nodiscard]] bool needsCalendarAccountSetup() const {
        return hasCalendarAccess() && areAccountsKnown && !hasGoogleCalendar &&
               !hasExchangeCalendar;
    }

    /// Has `watch` follow everything that the above depends on.
    template <typename Watch>
    void follow(Watch& watch) const {
        watch.follow(calendarMonitor.authorizationStatus,
                     participantMonitor.hasAccessibilityPermission, calendarAccounts);
    }

    /// Looks everything up, without asking the user.
    void refresh();

    /// Asks the user for access to calendars; calls `done` with the answer, on the main loop or
    /// within this call.
    void requestCalendarAccess(std::function<void(bool granted)> done);

    /// Looks whether calendars may be read and, if so, reads the accounts that they come from.
    void refreshCalendars();

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
    void recheck();

    MainLoop& loop;
    Log& log;
    CalendarMonitor& calendarMonitor;
    MeetingParticipantMonitor& participantMonitor;
    bool areAccountsKnown = false;
    std::vector<Subscription> subscriptions;
    Timer accessibilityRecheckTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
