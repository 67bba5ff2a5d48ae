#include "ui/bridges/OnboardingBridge.h"

#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

namespace quorva {

OnboardingBridge::OnboardingBridge(AppState& state_, AppDelegate& delegate_, MainLoop& loop)
    : model(state_, loop), state(state_), delegate(delegate_), watch(loop, [this] { update(); }) {
    watch.follow(model.currentStep, model.scanComplete, model.scanPhase,
                 model.accessibilityPermissionRequested, model.connectedCalendarAccounts,
                 model.calendarAccountsRefreshed);
    watch.follow(model.hasGoogleCalendar, model.hasExchangeCalendar, model.hasICloudCalendar);
    watch.follow(state.findings, state.isMonitoring);
    for (const auto* const source : state.sources)
        watch.follow(source->state);
    state.permissions.follow(watch);
    update();
}

void OnboardingBridge::update() {
    accountRows.show(rowsOfAccounts(model.connectedCalendarAccounts.get()));
    rows.show(*state.findings, state.now());
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
    return ours(uncoveredText(state.sources));
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
    delegate.closeOnboardingWindow();
}

} // namespace quorva
