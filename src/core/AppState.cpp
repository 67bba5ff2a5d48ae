#include "core/AppState.h"

#include "core/ShareText.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {

AppState::AppState(const AppServices& services_)
    : services(services_),
      settings(services.preferences, services.loginItem, services.platform.log),
      allowList(services.preferences),
      detectionLog(detectionLogShape, services.platform.loop, services.preferences,
                   services.platform.log),
      objections(services.platform.loop, services.preferences, services.platform.log,
                 services.clipboard, services.speech),
      sources(services.platform, services.preferences),
      notificationManager(services.platform.loop, services.notifications, services.platform.log),
      alertPanel(services.platform.loop),
      permissions(services.platform.loop, services.platform.log, services.platform.calendars,
                  services.audioDevices, sources.calendar.monitor, sources.meeting.monitor),
      limitations(services.platform.loop, services.platform.log, services.notifications,
                  services.speech, settings, sources),
      detectionTrial(services.detectionTest),
      announcer(services.platform.loop, services.platform.log, settings, allowList, detectionLog,
                notificationManager, alertPanel) {
    settings.load();
    detectionLog.load();
    objections.objectionLog.load();
    for (auto* const source : sources)
        wire(*source);
    notificationManager.onObjectAction =
        lifetime.guard([this](const std::string& identifier) { objectToNotification(identifier); });
    begin();
}

void AppState::wire(Source& source) {
    source.onAppeared = [this](const FindingPtr& finding) { announcer.announce(finding); };
    source.onGone = [this](const FindingPtr& finding) { announcer.announceGone(*finding); };
    source.onSightLost = [this, &source](const std::string& text) {
        announcer.announceSightLost(source.profile, text);
    };
    subscriptions.push_back(source.findings.observeChanges(lifetime.guard([this] {
        // A field tells of a change before it is made.
        services.platform.loop.post(lifetime.guard([this] { filterFindings(); }));
    })));
}

/// The first alert names a bot that is already there, even if notifications are off.
void AppState::begin() {
    constexpr Seconds timeToLookAround{3.0};
    permissions.refresh();
    notificationManager.requestAuthorizationIfNeeded();
    if (settings.autoStartMonitoring)
        startMonitoring();
    permissions.startAccessibilityRecheckTimer();
    startupAlertTimer = services.platform.loop.after(
        timeToLookAround, lifetime.guard([this] { announcer.alertOfFirst(*findings); }));
}

Verdict AppState::verdict() const {
    return verdictOf(isMonitoring, totalThreatCount(), sources.states());
}

std::string AppState::stateText() const {
    return stateInWords(verdict(), totalThreatCount(), sources);
}

void AppState::startMonitoring() {
    if (isMonitoring)
        return;
    permissions.refresh();
    isMonitoring = true;
    applySwitches();
    std::string started;
    for (const auto* const source : sources) {
        const auto* const state = source->profile.switchedBy.empty() ? "on"
                                  : source->isWatching()             ? "true"
                                                                     : "false";
        started += fmt::format(" {}={}", source->profile.logName, state);
    }
    services.platform.log.info(Printable::format("startMonitoring:{}", started),
                               logCategory::appState);
}

void AppState::stopMonitoring() {
    isMonitoring = false;
    applySwitches();
}

bool AppState::isSwitchedOn(const Source& source) const {
    const auto setting = source.profile.switchedBy;
    return setting.empty() || settings.isOn(setting);
}

bool AppState::isWanted(const Source& source) const {
    return isMonitoring && isSwitchedOn(source);
}

void AppState::applySwitches() {
    for (auto* const source : sources)
        if (source->isOn() != isWanted(*source))
            source->setOn(isWanted(*source));
}

void AppState::refreshAllScans() {
    for (auto* const source : sources)
        if (source->isOn())
            source->refresh();
}

void AppState::toggleCalendarMonitor() {
    settings.set(&Settings::calendarMonitorEnabled, !settings.calendarMonitorEnabled);
    applySwitches();
    filterFindings();
}

void AppState::toggleParticipantMonitor() {
    settings.set(&Settings::participantMonitorEnabled, !settings.participantMonitorEnabled);
    applySwitches();
    filterFindings();
}

void AppState::setMyAddresses(std::vector<std::string> addresses) {
    settings.setMyAddresses(std::move(addresses));
    if (sources.calendar.isOn())
        sources.calendar.refresh();
}

void AppState::saveSettings() {
    settings.save();
}

void AppState::allow(const std::string& key) {
    allowList.allow(key);
    filterFindings();
}

void AppState::removeFromAllowList(const std::string& key) {
    allowList.remove(key);
    filterFindings();
}

/// What a source has found that the user has switched off would stay listed for ever: nobody looks
/// whether it is still there.
void AppState::filterFindings() {
    Findings listed;
    for (const auto* const source : sources)
        if (isSwitchedOn(*source))
            std::copy_if(source->findings->begin(), source->findings->end(),
                         std::back_inserter(listed),
                         [this](const FindingPtr& finding) { return !allowList.allows(*finding); });
    findings = std::move(listed);
}

bool AppState::fileObjection(const ObjectionOccasion& occasion) {
    return objections.fileObjection(occasion);
}

void AppState::objectTo(const FindingKind& kind, const std::string& id) {
    for (const auto& finding : *findings)
        if (&finding->kind() == &kind && finding->id() == id) {
            fileObjection({.botName = botName(*finding),
                           .meetingContext = finding->meetingContext(),
                           .source = kind.source});
            return;
        }
}

bool AppState::objectToFirst() {
    const Finding* first = nullptr;
    for (const auto& finding : *findings) {
        const auto rank = finding->kind().objectionRank;
        if (rank && (!first || *rank < *first->kind().objectionRank))
            first = finding.get();
    }
    if (!first)
        return fileObjection({});
    return fileObjection({.botName = botName(*first), .meetingContext = first->meetingContext()});
}

/// Objects to the first bot of the notification's kind: the one it was about may be gone by now.
void AppState::objectToNotification(const std::string& identifier) {
    ObjectionOccasion occasion;
    for (const auto& finding : *findings) {
        const auto& kind = finding->kind();
        if (kind.objectionRank && identifier.starts_with(kind.notificationPrefix)) {
            occasion.botName = botName(*finding);
            break;
        }
    }
    fileObjection(occasion);
}

void AppState::share() {
    services.clipboard.setText(shareText(findings));
}

void AppState::showCalendarPermissionWindow() {
    constexpr Seconds timeToRead{0.5};
    constexpr Seconds timeToSeeTheGrant{0.8};
    calendarWindow = true;
    calendarWindowTimer =
        services.platform.loop.after(timeToRead, lifetime.guard([this, timeToSeeTheGrant] {
            permissions.requestCalendarAccess(
                lifetime.guard([this, timeToSeeTheGrant](bool isGranted) {
                    if (isGranted && !permissions.lacksCalendars())
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
    settings.set(&Settings::hasCompletedOnboarding, true);
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
