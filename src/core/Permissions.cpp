#include "core/Permissions.h"

namespace quorva {

Permissions::Permissions(MainLoop& loop_, Log& log_, CalendarStore& calendars,
                         AudioDevices& audioDevices, CalendarMonitor& calendarMonitor_,
                         MeetingParticipantMonitor& participantMonitor_)
    : blackHoleDetector(audioDevices),
      loop(loop_),
      log(log_),
      calendarMonitor(calendarMonitor_),
      participantMonitor(participantMonitor_) {
    // Accounts and the switch change while the program runs, and are told when they do.
    subscriptions.push_back(calendars.onChange(lifetime.guard([this] {
        refreshCalendars(); // they may have come, or gone
    })));
    subscriptions.push_back(
        participantMonitor.hasAccessibilityPermission.observeChanges(lifetime.guard([this] {
            loop.post(lifetime.guard([this] {
                if (!hasAccessibilityPermission() && !isRechecking())
                    startAccessibilityRecheckTimer(); // it was switched off while the program ran
            }));
        })));
}

void Permissions::refresh() {
    refreshCalendars();
    refreshAccessibilityPermission();
}

void Permissions::refreshCalendars() {
    calendarMonitor.refreshAuthorization();
    if (hasCalendarAccess())
        refreshCalendarAccounts();
}

void Permissions::requestCalendarAccess(std::function<void(bool)> done) {
    calendarMonitor.requestAccess(lifetime.guard([this, done = std::move(done)](bool isGranted) {
        if (isGranted)
            refreshCalendarAccounts();
        done(isGranted);
    }));
}

void Permissions::refreshCalendarAccounts() {
    auto summary = calendarMonitor.discoverCalendarSources();
    areAccountsKnown = true;
    hasGoogleCalendar = summary.hasGoogle;
    hasExchangeCalendar = summary.hasExchange;
    calendarAccounts = std::move(summary.sources);
}

void Permissions::requestAccessibilityPermission() {
    participantMonitor.requestPermission();
}

void Permissions::refreshAccessibilityPermission() {
    participantMonitor.refreshPermission();
}

void Permissions::startAccessibilityRecheckTimer() {
    constexpr Seconds recheckInterval{5.0};
    accessibilityRecheckTimer.reset();
    if (!hasAccessibilityPermission())
        accessibilityRecheckTimer =
            loop.every(recheckInterval, lifetime.guard([this] { recheck(); }));
}

void Permissions::recheck() {
    refreshAccessibilityPermission();
    if (!hasAccessibilityPermission())
        return;
    accessibilityRecheckTimer.reset();
    log.info("Accessibility permission observed granted; stopping recheck timer",
             logCategory::appState);
}

} // namespace quorva
