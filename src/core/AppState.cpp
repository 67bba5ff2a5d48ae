#include "core/AppState.h"

#include "core/ShareText.h"

#include <fmt/format.h>

namespace quorva {

AppState::AppState(const AppServices& services_)
    : services(services_),
      settings(services.preferences, services.loginItem, services.platform.log),
      allowList(services.preferences),
      detectionLog(detectionLogShape, services.platform.loop, services.preferences,
                   services.platform.log),
      objections(services.platform.loop, services.preferences, services.platform.log,
                 services.clipboard, services.speech),
      processMonitor(services.platform.loop, services.platform.applications,
                     services.platform.processTable),
      calendarMonitor(services.platform.loop, services.platform.calendars, services.preferences,
                      services.platform.log, services.platform.sha256),
      participantMonitor(services.platform.loop, services.platform.applications,
                         services.platform.accessibility, services.platform.log),
      notificationManager(services.platform.loop, services.notifications, services.platform.log),
      alertPanel(services.platform.loop),
      permissions(services.platform.loop, services.platform.log, services.platform.calendars,
                  services.platform.accessibility, services.audioDevices, calendarMonitor,
                  participantMonitor),
      detectionTrial(services.detectionTest),
      announcements(services.platform.loop) {
    settings.load();
    detectionLog.load();
    objections.objectionLog.load();
    wireProcessMonitor();
    wireCalendarMonitor();
    wireParticipantMonitor();
    notificationManager.onObjectAction =
        lifetime.guard([this](const std::string& identifier) { objectToNotification(identifier); });
    permissions.onCalendarGranted = lifetime.guard([this] { startCalendarMonitorIfWanted(); });
    permissions.onAccessibilityGranted =
        lifetime.guard([this] { startParticipantMonitorIfWanted(); });
    wireLimitations();
    refreshPermissions();
}

/// What is there already when the program starts is shown whatever the settings say of new finds.
void AppState::refreshPermissions() {
    constexpr Seconds timeToLookAround{3.0};
    permissions.refresh();
    notificationManager.requestAuthorizationIfNeeded();
    if (settings.autoStartMonitoring)
        startMonitoring();
    permissions.startAccessibilityRecheckTimer();
    startupAlertTimer = services.platform.loop.after(
        timeToLookAround, lifetime.guard([this] { showStartupAlert(); }));
}

std::size_t AppState::totalThreatCount() const {
    return detectedBots->size() + calendarDetections->size() + participantBotDetections->size() +
           recordingIndicators->size();
}

std::string AppState::stateText() const {
    return stateInWords(isMonitoring, totalThreatCount(), limitations);
}

void AppState::startMonitoring() {
    if (isMonitoring)
        return;
    permissions.refreshForMonitoring();
    processMonitor.startMonitoring();
    const bool isCalendarOn =
        settings.calendarMonitorEnabled &&
        calendarMonitor.authorizationStatus == CalendarAuthorization::fullAccess;
    if (isCalendarOn)
        calendarMonitor.startMonitoring();
    const bool isParticipantOn =
        settings.participantMonitorEnabled && participantMonitor.hasAccessibilityPermission;
    if (isParticipantOn)
        participantMonitor.startMonitoring();
    isMonitoring = true;
    services.platform.log.info(fmt::format("startMonitoring: process=on calendar={} participant={}",
                                           isCalendarOn, isParticipantOn),
                               logCategory::appState);
}

void AppState::stopMonitoring() {
    isMonitoring = false;
    processMonitor.stopMonitoring();
    calendarMonitor.stopMonitoring();
    participantMonitor.stopMonitoring();
}

void AppState::refreshAllScans() {
    processMonitor.forceRescan();
    calendarMonitor.scanCalendar();
    participantMonitor.performScan();
}

void AppState::toggleCalendarMonitor() {
    settings.calendarMonitorEnabled = !settings.calendarMonitorEnabled;
    saveSettings();
    calendarMonitor.stopMonitoring();
    startCalendarMonitorIfWanted();
}

void AppState::toggleParticipantMonitor() {
    settings.participantMonitorEnabled = !settings.participantMonitorEnabled;
    saveSettings();
    participantMonitor.stopMonitoring();
    startParticipantMonitorIfWanted();
}

void AppState::startCalendarMonitorIfWanted() {
    if (isMonitoring && settings.calendarMonitorEnabled &&
        calendarMonitor.authorizationStatus == CalendarAuthorization::fullAccess)
        calendarMonitor.startMonitoring();
}

void AppState::startParticipantMonitorIfWanted() {
    if (isMonitoring && settings.participantMonitorEnabled &&
        participantMonitor.hasAccessibilityPermission)
        participantMonitor.startMonitoring();
}

void AppState::saveSettings() {
    settings.save();
}

void AppState::allow(const std::string& key) {
    allowList.allow(key);
    filterDetections();
}

void AppState::removeFromAllowList(const std::string& key) {
    allowList.remove(key);
    filterDetections();
}

/// Applies the allow list to what the monitors list now.
void AppState::filterDetections() {
    detectedBots = allowList.without(*processMonitor.detectedBots);
    calendarDetections = allowList.without(*calendarMonitor.calendarDetections);
    participantBotDetections = allowList.without(*participantMonitor.participantBotDetections);
    updateThreats();
}

bool AppState::fileObjection(const ObjectionOccasion& occasion) {
    return objections.fileObjection(occasion);
}

bool AppState::objectToFirst() {
    ObjectionOccasion occasion;
    if (!participantBotDetections->empty()) {
        occasion.botName = participantBotDetections->front().botDisplayName;
        occasion.meetingContext = participantBotDetections->front().platformName;
    } else if (!calendarDetections->empty()) {
        occasion.botName = calendarDetections->front().botName;
        occasion.meetingContext = calendarDetections->front().botName;
    } else if (!detectedBots->empty()) {
        occasion.botName = detectedBots->front().name;
    }
    return fileObjection(occasion);
}

/// To the first bot of the notification's kind: the one it was about may be gone by now.
void AppState::objectToNotification(const std::string& identifier) {
    ObjectionOccasion occasion;
    if (identifier.starts_with(notificationPrefix::process)) {
        if (!detectedBots->empty())
            occasion.botName = detectedBots->front().name;
    } else if (identifier.starts_with(notificationPrefix::calendar)) {
        if (!calendarDetections->empty())
            occasion.botName = calendarDetections->front().botName;
    } else if (identifier.starts_with(notificationPrefix::participant)) {
        if (!participantBotDetections->empty())
            occasion.botName = participantBotDetections->front().botDisplayName;
    }
    fileObjection(occasion);
}

void AppState::share() {
    services.clipboard.setText(shareText(participantBotDetections, detectedBots));
}

void AppState::showCalendarPermissionWindow() {
    constexpr Seconds timeToRead{0.5};
    constexpr Seconds timeToSeeTheGrant{0.8};
    calendarWindow = true;
    calendarWindowTimer =
        services.platform.loop.after(timeToRead, lifetime.guard([this, timeToSeeTheGrant] {
            permissions.requestCalendarAccess(
                lifetime.guard([this, timeToSeeTheGrant](bool isGranted) {
                    if (isGranted)
                        calendarWindowTimer = services.platform.loop.after(
                            timeToSeeTheGrant,
                            lifetime.guard([this] { closeCalendarPermissionWindow(); }));
                }));
        }));
}

void AppState::closeCalendarPermissionWindow() {
    calendarWindowTimer.reset();
    calendarWindow = false;
}

void AppState::completeOnboarding() {
    settings.hasCompletedOnboarding = true;
    saveSettings();
    notificationManager.requestAuthorizationIfNeeded();
    startMonitoring();
}

bool AppState::openInternetAccountsSettings() {
    return openSettingsPane(SettingsPane::internetAccounts);
}

bool AppState::openSettingsPane(SettingsPane pane) {
    return services.systemSettings.open(pane);
}

bool AppState::openAddress(const std::string& address) {
    return services.systemSettings.openAddress(address);
}

Time AppState::now() const {
    return services.platform.loop.now();
}

} // namespace quorva
