#include "core/Permissions.h"

namespace quorva {

Permissions::Permissions(MainLoop& loop_, Log& log_, CalendarStore& calendars_,
                         AccessibilityTree& accessibility_, AudioDevices& audioDevices,
                         CalendarMonitor& calendarMonitor_,
                         MeetingParticipantMonitor& participantMonitor_)
    : loop(loop_),
      log(log_),
      calendars(calendars_),
      accessibility(accessibility_),
      calendarMonitor(calendarMonitor_),
      participantMonitor(participantMonitor_),
      blackHoleDetector(audioDevices) {
    subscriptions.push_back(
        blackHoleDetector.isInstalled.observe([this](bool next) { isBlackHoleInstalled = next; }));
    subscriptions.push_back(blackHoleDetector.hasMicrophone.observe(
        [this](bool next) { hasMicrophonePermission = next; }));
    subscriptions.push_back(calendarMonitor.authorizationStatus.observeOn(
        loop, [this](CalendarAuthorization next) { takeAuthorization(next); }));
    subscriptions.push_back(participantMonitor.hasAccessibilityPermission.observeOn(
        loop, [this](bool next) { hasAccessibilityPermission = next; }));
    // Accounts and the switch change while the program runs, and are told when they do.
    subscriptions.push_back(calendars.onChange(lifetime.guard([this] {
        if (hasCalendarAccess)
            refreshCalendarAccounts();
    })));
    subscriptions.push_back(
        accessibility.onTrustChange(lifetime.guard([this] { refreshAccessibilityPermission(); })));
}

void Permissions::refresh() {
    refreshForMonitoring();
    takeAuthorization(calendarMonitor.authorizationStatus);
    if (hasCalendarAccess)
        refreshCalendarAccounts();
    hasAccessibilityPermission = participantMonitor.hasAccessibilityPermission.get();
}

void Permissions::refreshForMonitoring() {
    calendarMonitor.authorizationStatus = calendars.authorizationStatus();
    participantMonitor.hasAccessibilityPermission = accessibility.isTrusted();
}

void Permissions::requestCalendarAccess(std::function<void(bool)> done) {
    calendarMonitor.requestAccess(lifetime.guard([this, done = std::move(done)](bool isGranted) {
        hasCalendarAccess = isGranted;
        if (isGranted) {
            refreshCalendarAccounts();
            if (onCalendarGranted)
                onCalendarGranted();
        }
        done(isGranted);
    }));
}

void Permissions::refreshCalendarAccounts() {
    auto summary = calendarMonitor.discoverCalendarSources();
    calendarAccountNames = std::move(summary.titles);
    hasGoogleCalendar = summary.hasGoogle;
    hasExchangeCalendar = summary.hasExchange;
    needsCalendarAccountSetup = hasCalendarAccess && !summary.hasGoogle && !summary.hasExchange;
}

void Permissions::takeAuthorization(CalendarAuthorization status) {
    hasCalendarAccess = status == CalendarAuthorization::fullAccess;
    if (!hasCalendarAccess)
        needsCalendarAccountSetup = false;
}

void Permissions::requestAccessibilityPermission() {
    accessibility.requestTrust(lifetime.guard([this](bool isTrusted) { takeTrust(isTrusted); }));
}

void Permissions::refreshAccessibilityPermission() {
    takeTrust(accessibility.isTrusted());
}

void Permissions::takeTrust(bool isTrusted) {
    participantMonitor.hasAccessibilityPermission = isTrusted;
    hasAccessibilityPermission = isTrusted;
    if (isTrusted && onAccessibilityGranted)
        onAccessibilityGranted();
    if (!isTrusted && !isRechecking())
        startAccessibilityRecheckTimer(); // it was switched off while the program ran
}

void Permissions::startAccessibilityRecheckTimer() {
    constexpr Seconds recheckInterval{5.0};
    accessibilityRecheckTimer.reset();
    if (!hasAccessibilityPermission)
        accessibilityRecheckTimer =
            loop.every(recheckInterval, lifetime.guard([this] { recheck(); }));
}

void Permissions::recheck() {
    refreshAccessibilityPermission();
    if (!hasAccessibilityPermission)
        return;
    accessibilityRecheckTimer.reset();
    log.info("Accessibility permission observed granted; stopping recheck timer",
             logCategory::appState);
}

} // namespace quorva
