#include "ui/bridges/PopoverBridge.h"

#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

#include <QVariantMap>
#include <algorithm>

namespace quorva {

namespace {

constexpr Seconds toastDuration{2.5};
constexpr Seconds shortestScan{0.8}; ///< a shorter one would look as if nothing happened
constexpr Seconds longestScan{15.0}; ///< a calendar that hangs fails after 10

} // namespace

PopoverBridge::PopoverBridge(AppState& state_, MainLoop& loop_)
    : state(state_), loop(loop_), watch(loop_, [this] { update(); }) {
    watch.follow(state.isMonitoring, state.findings, state.showingLogSheet,
                 state.sources.process.monitor.lastScanDate);
    for (const auto* const source : state.sources)
        watch.follow(source->state);
    state.permissions.follow(watch);
    watch.follow(state.settings.calendarMonitorEnabled, state.settings.participantMonitorEnabled);
    watch.follow(state.objections.showingObjectionToast, state.objections.toastText,
                 state.detectionLog.records, state.sources.calendar.monitor.lastScanDate);
    update();
}

void PopoverBridge::update() {
    rows.show(*state.findings, state.now());
    if (state.showingLogSheet)
        historyRows.show(rowsOf(state.detectionLog.records.get()));
    emit changed();
}

QString PopoverBridge::pillText() const {
    return ours(verdictText(state.verdict(), state.totalThreatCount()));
}

QString PopoverBridge::pillLabel() const {
    return ours(verdictLabel(state.verdict(), state.totalThreatCount()));
}

QString PopoverBridge::explanation() const {
    return ours(verdictExplanation(state.verdict()));
}

bool PopoverBridge::needsCalendarAccess() const {
    return state.settings.calendarMonitorEnabled && !state.permissions.hasCalendarAccess();
}

bool PopoverBridge::needsCalendarAccount() const {
    return state.settings.calendarMonitorEnabled && state.permissions.needsCalendarAccountSetup();
}

bool PopoverBridge::needsAccessibility() const {
    return state.settings.participantMonitorEnabled &&
           !state.permissions.hasAccessibilityPermission();
}

QVariantList PopoverBridge::chips() const {
    QVariantList chips;
    for (const auto* const source : state.sources)
        chips.push_back(QVariantMap{{"name", ours(source->profile.chip)},
                                    {"symbol", ours(source->profile.symbol)},
                                    {"look", static_cast<int>(chipLook(*source->state))},
                                    {"reason", ours(source->state->reason)}});
    return chips;
}

QString PopoverBridge::uncovered() const {
    if (state.isMonitoring)
        return ours(uncoveredText(state.sources));
    return state.hasActiveThreats() ? "Monitoring is off: nothing is being looked at." : "";
}

bool PopoverBridge::isScanning() const {
    if (refreshTimer)
        return true;
    const auto& calendar = state.sources.calendar;
    if (refreshedAt && calendar.isWatching() && state.now() - *refreshedAt < longestScan) {
        const auto& looked = calendar.monitor.lastScanDate.get();
        return !looked || *looked < *refreshedAt;
    }
    return std::ranges::any_of(state.sources, [](const Source* source) {
        return source->state->kind == SourceState::Kind::looking;
    });
}

QString PopoverBridge::objectionToast() const {
    return ours(*state.objections.toastText);
}

QString PopoverBridge::lastScan() const {
    const auto& last = state.sources.process.monitor.lastScanDate.get();
    return last ? ours("Last scan: " + relativeTime(*last, state.now())) : QString();
}

void PopoverBridge::setVisible(bool isVisible) {
    clockTimer = isVisible ? loop.every(Seconds(1.0), [this] { update(); }) : Timer();
    if (isVisible)
        update();
}

void PopoverBridge::toggleMonitoring() {
    if (state.isMonitoring)
        state.stopMonitoring();
    else
        state.startMonitoring();
}

void PopoverBridge::refresh() {
    refreshedAt = state.now();
    refreshTimer = loop.after(shortestScan, [this] {
        refreshTimer.reset();
        watch.schedule();
    });
    if (!state.isMonitoring)
        state.startMonitoring();
    state.refreshAllScans();
    watch.schedule();
}

void PopoverBridge::objectToParticipant(const QString& id) {
    state.objectTo(participantFindings, utf8(id));
}

void PopoverBridge::objectToCalendar(const QString& id) {
    state.objectTo(invitationFindings, utf8(id));
}

void PopoverBridge::dismiss(const QString& id) {
    state.sources.calendar.dismiss(utf8(id));
}

void PopoverBridge::allow(const QString& key) {
    state.allow(utf8(key));
}

void PopoverBridge::openInternetAccounts() {
    help.openInternetAccounts(state);
    watch.schedule();
}

void PopoverBridge::openAccessibilitySettings() {
    help.openAccessibilitySettings(state);
    watch.schedule();
}

void PopoverBridge::openSettings() {
    if (onOpenSettings)
        onOpenSettings();
}

void PopoverBridge::share() {
    state.share();
    shareToastTimer = loop.after(toastDuration, [this] {
        shareToastTimer.reset();
        watch.schedule();
    });
    watch.schedule();
}

void PopoverBridge::quit() {
    if (onQuit)
        onQuit();
}

void PopoverBridge::close() {
    if (onClose)
        onClose();
}

} // namespace quorva
