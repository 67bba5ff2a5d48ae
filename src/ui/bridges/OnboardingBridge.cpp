#include "ui/bridges/OnboardingBridge.h"

#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

#include <utility>
#include <vector>

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
    case ScanPhase::waiting:
        return "Scanning";
    case ScanPhase::done:
        break;
    }
    return "Scan complete";
}

QString OnboardingBridge::scanTitle() const {
    return isScanDone() ? "First Scan Results" : "Running First Scan...";
}

QString OnboardingBridge::resultTitle() const {
    const auto verdict = state.verdict();
    const auto count = state.totalThreatCount();
    return ours(verdict == Verdict::found ? foundText(count) : verdictText(verdict, count));
}

QString OnboardingBridge::resultText() const {
    const auto verdict = state.verdict();
    return verdict == Verdict::clear ? "No bots detected" : ours(verdictExplanation(verdict));
}

/// Only what has been looked at everywhere.
QString OnboardingBridge::scanned() const {
    const std::pair<const Source&, std::string_view> names[] = {
        {state.sources.process, "processes"},
        {state.sources.calendar, "calendar"},
        {state.sources.meeting, "meetings"},
    };
    std::vector<std::string_view> scanned;
    for (const auto& [source, name] : names)
        if (source.state->kind == SourceState::Kind::ok)
            scanned.push_back(name);
    return ours(scannedText(scanned, state.verdict() == Verdict::clear));
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
