#include "ui/bridges/OnboardingBridge.h"

#include "ui/rows/DetectionRows.h"
#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

namespace quorva {

OnboardingBridge::OnboardingBridge(AppState& state_, AppDelegate& delegate_, MainLoop& loop)
    : model(state_, loop), state(state_), delegate(delegate_), watch(loop, [this] { update(); }) {
    watch.follow(model.currentStep, model.scanComplete, model.scanPhase, model.calendarGranted,
                 model.accessibilityGranted, model.accessibilityPermissionRequested,
                 model.connectedCalendarAccounts, model.calendarAccountsRefreshed);
    watch.follow(model.hasGoogleCalendar, model.hasExchangeCalendar, model.hasICloudCalendar);
    watch.follow(state.detectedBots, state.calendarDetections, state.participantBotDetections,
                 state.recordingIndicators, state.limitations, state.isMonitoring);
    watch.follow(state.permissions.hasCalendarAccess, state.permissions.hasAccessibilityPermission);
    update();
}

void OnboardingBridge::update() {
    accountRows.show(rowsOfAccounts(model.connectedCalendarAccounts.get()));
    indicatorRows.show(rowsOf(state.recordingIndicators.get()));
    participantRows.show(rowsOf(state.participantBotDetections.get()));
    calendarRows.show(rowsOf(state.calendarDetections.get(), state.now()));
    processRows.show(rowsOf(state.detectedBots.get()));
    emit changed();
}

bool OnboardingBridge::hasAllProviders() const {
    return model.hasGoogleCalendar && model.hasExchangeCalendar && model.hasICloudCalendar;
}

QString OnboardingBridge::coverage() const {
    return ours(
        coverageLine(model.hasGoogleCalendar, model.hasExchangeCalendar, model.hasICloudCalendar));
}

QString OnboardingBridge::phaseText() const {
    switch (model.scanPhase.get()) {
    case ScanPhase::process:
        return "Scanning processes...";
    case ScanPhase::calendar:
        return "Checking calendar...";
    case ScanPhase::meeting:
        return "Looking for meeting participants...";
    case ScanPhase::done:
        break;
    }
    return "Scan complete";
}

QString OnboardingBridge::resultTitle() const {
    return foundAny() ? ours(foundText(state.totalThreatCount())) : QString("All Clear");
}

QString OnboardingBridge::scanned() const {
    return ours(scannedText(hasCalendar(), hasMeetings()));
}

QString OnboardingBridge::uncovered() const {
    // Here everything has just been looked at, whether it goes on being looked at or not.
    return ours(uncoveredText(true, state.limitations));
}

void OnboardingBridge::openAccessibilitySettings() {
    help.openAccessibilitySettings(state);
    watch.schedule();
}

void OnboardingBridge::openInternetAccounts() {
    help.openInternetAccounts(state);
    watch.schedule();
}

void OnboardingBridge::complete() {
    model.complete();
    delegate.onboardingWindow = false;
}

} // namespace quorva
