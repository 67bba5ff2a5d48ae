#include "ui/bridges/PopoverBridge.h"

#include "ui/rows/DetectionRows.h"
#include "ui/rows/DisplayText.h"
#include "ui/rows/ViewTexts.h"

#include <QVariantMap>
#include <algorithm>

namespace quorva {

namespace {

constexpr Seconds toastDuration{2.5};
constexpr Seconds shortestScan{0.8}; ///< shorter, and the press would seem to have done nothing
constexpr Seconds longestScan{15.0}; ///< a calendar that hangs is given up after 10

template <typename Detection>
const Detection* find(const std::vector<Detection>& detections, const QString& id) {
    const auto found =
        std::find_if(detections.begin(), detections.end(),
                     [wanted = utf8(id)](const auto& each) { return each.id == wanted; });
    return found == detections.end() ? nullptr : &*found;
}

} // namespace

PopoverBridge::PopoverBridge(AppState& state_, MainLoop& loop_)
    : state(state_), loop(loop_), watch(loop_, [this] { update(); }) {
    watch.follow(state.isMonitoring, state.detectedBots, state.calendarDetections,
                 state.participantBotDetections, state.recordingIndicators, state.limitations,
                 state.lastProcessScanDate, state.showingLogSheet);
    watch.follow(state.permissions.hasCalendarAccess, state.permissions.hasAccessibilityPermission,
                 state.permissions.needsCalendarAccountSetup);
    watch.follow(state.settings.calendarMonitorEnabled, state.settings.participantMonitorEnabled);
    watch.follow(state.objections.showingObjectionToast, state.detectionLog.records,
                 state.calendarMonitor.lastScanDate);
    update();
}

void PopoverBridge::update() {
    indicatorRows.show(rowsOf(state.recordingIndicators.get()));
    participantRows.show(rowsOf(state.participantBotDetections.get()));
    calendarRows.show(rowsOf(state.calendarDetections.get(), state.now()));
    processRows.show(rowsOf(state.detectedBots.get()));
    if (state.showingLogSheet)
        historyRows.show(rowsOf(state.detectionLog.records.get()));
    emit changed();
}

QString PopoverBridge::pillText() const {
    return ours(statusPillText(state.isMonitoring, state.totalThreatCount()));
}

QString PopoverBridge::pillLabel() const {
    return ours(statusPillLabel(state.totalThreatCount()));
}

bool PopoverBridge::needsCalendarAccess() const {
    return state.settings.calendarMonitorEnabled && !state.permissions.hasCalendarAccess;
}

bool PopoverBridge::needsCalendarAccount() const {
    return state.settings.calendarMonitorEnabled && state.permissions.needsCalendarAccountSetup;
}

bool PopoverBridge::needsAccessibility() const {
    return state.settings.participantMonitorEnabled &&
           !state.permissions.hasAccessibilityPermission;
}

bool PopoverBridge::isCalendarOn() const {
    return state.settings.calendarMonitorEnabled && state.permissions.hasCalendarAccess;
}

bool PopoverBridge::isMeetingOn() const {
    return state.settings.participantMonitorEnabled && state.permissions.hasAccessibilityPermission;
}

QVariantList PopoverBridge::chips() const {
    const auto chip = [this](const char* name, const char* symbol, bool isOn, LimitedPart part) {
        return QVariantMap{{"name", name},
                           {"symbol", symbol},
                           {"look", static_cast<int>(chipLook(isOn, part, state.limitations))},
                           {"reason", ours(limitationText(part, state.limitations))}};
    };
    return {chip("Process", "desktopcomputer", state.isMonitoring, LimitedPart::processes),
            chip("Calendar", "calendar", isCalendarOn(), LimitedPart::calendars),
            chip("Meeting", "person.2", isMeetingOn(), LimitedPart::meetings)};
}

QString PopoverBridge::uncovered() const {
    return ours(uncoveredText(state.isMonitoring, state.limitations));
}

bool PopoverBridge::isScanning() const {
    if (refreshTimer)
        return true;
    if (refreshedAt && isCalendarOn() && state.now() - *refreshedAt < longestScan) {
        const auto& calendars = state.calendarMonitor.lastScanDate.get();
        return !calendars || *calendars < *refreshedAt;
    }
    return state.isMonitoring && !state.lastProcessScanDate.get();
}

QString PopoverBridge::lastScan() const {
    const auto& last = state.lastProcessScanDate.get();
    return last ? ours("Last scan: " + relativeTime(*last, state.now())) : QString();
}

void PopoverBridge::setVisible(bool isVisible) {
    clockTimer = isVisible ? loop.every(Seconds(1.0), [this] { update(); }) : Timer();
    if (isVisible)
        update();
}

void PopoverBridge::toggleMonitoring() {
    state.isMonitoring ? state.stopMonitoring() : state.startMonitoring();
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
    if (const auto* const bot = find(state.participantBotDetections.get(), id)) {
        const ObjectionOccasion occasion{.botName = bot->botDisplayName,
                                         .meetingContext = bot->platformName,
                                         .source = DetectionSource::participant};
        state.fileObjection(occasion);
    }
}

void PopoverBridge::objectToCalendar(const QString& id) {
    if (const auto* const detection = find(state.calendarDetections.get(), id)) {
        const ObjectionOccasion occasion{.botName = detection->botName,
                                         .meetingContext = detection->botName,
                                         .source = DetectionSource::calendar};
        state.fileObjection(occasion);
    }
}

void PopoverBridge::dismiss(const QString& id) {
    if (const auto* const found = find(state.calendarDetections.get(), id)) {
        const CalendarBotDetection detection = *found; // the list changes while it is dismissed
        state.calendarMonitor.dismiss(detection);
    }
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
