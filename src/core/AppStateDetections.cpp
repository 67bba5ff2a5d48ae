// What AppState makes of the detectors' lists and callbacks.
#include "core/AppState.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

constexpr int indicatorConfidence = 90;
constexpr std::string_view indicatorCategory = "Recording";

std::string raw(auto value) {
    return std::string(rawValue(value));
}

std::string meetingOn(const std::string& platform) {
    return "Meeting on " + platform;
}

BotAlert alertOf(const DetectedBot& bot) {
    return {bot.name, "macOS", std::string(displayName(bot.category))};
}
BotAlert alertOf(const CalendarBotDetection& detection) {
    return {detection.botName, "Calendar", std::string(displayName(detection.category))};
}
BotAlert alertOf(const ParticipantBotDetection& detection) {
    return {detection.botDisplayName, detection.platformName,
            std::string(displayName(detection.category))};
}
BotAlert alertOf(const RecordingIndicatorDetection& indicator) {
    return {raw(indicator.indicatorType), indicator.platformName, std::string(indicatorCategory)};
}

} // namespace

void AppState::wireProcessMonitor() {
    auto& loop = services.platform.loop;
    cancellables.push_back(
        processMonitor.detectedBots.observeOn(loop, [this](const std::vector<DetectedBot>& next) {
            detectedBots = allowList.without(next);
            updateThreats();
        }));
    cancellables.push_back(processMonitor.lastScanDate.observeOn(
        loop, [this](const std::optional<Time>& next) { lastProcessScanDate = next; }));
    processMonitor.onBotDetected =
        laterOnLoop<DetectedBot>([this](const DetectedBot& bot) { takeDetection(bot); });
    processMonitor.onBotDisappeared = laterOnLoop<DetectedBot>([this](const DetectedBot& bot) {
        if (settings.showNotifications)
            notificationManager.notifyProcessBotGone(bot);
    });
}

void AppState::wireCalendarMonitor() {
    auto& loop = services.platform.loop;
    cancellables.push_back(calendarMonitor.calendarDetections.observeOn(
        loop, [this](const std::vector<CalendarBotDetection>& next) {
            calendarDetections = allowList.without(next);
            updateThreats();
        }));
    cancellables.push_back(calendarMonitor.isMonitoring.observeOn(
        loop, [this](bool next) { isCalendarMonitoring = next; }));
    calendarMonitor.onBotDetected = laterOnLoop<CalendarBotDetection>(
        [this](const CalendarBotDetection& detection) { takeDetection(detection); });
}

void AppState::wireParticipantMonitor() {
    auto& loop = services.platform.loop;
    cancellables.push_back(participantMonitor.participantBotDetections.observeOn(
        loop, [this](const std::vector<ParticipantBotDetection>& next) {
            participantBotDetections = allowList.without(next);
            updateThreats();
        }));
    cancellables.push_back(participantMonitor.recordingIndicators.observeOn(
        loop, [this](const std::vector<RecordingIndicatorDetection>& next) {
            recordingIndicators = next;
            updateThreats();
        }));
    cancellables.push_back(participantMonitor.activeMeetingPlatform.observeOn(
        loop, [this](const std::optional<std::string>& next) { activeMeetingPlatform = next; }));
    cancellables.push_back(participantMonitor.isMonitoring.observeOn(
        loop, [this](bool next) { isParticipantMonitoring = next; }));
    participantMonitor.onBotDetected = laterOnLoop<ParticipantBotDetection>(
        [this](const ParticipantBotDetection& detection) { takeDetection(detection); });
    participantMonitor.onRecordingIndicatorDetected = laterOnLoop<RecordingIndicatorDetection>(
        [this](const RecordingIndicatorDetection& indicator) { takeDetection(indicator); });
}

/// A callback for a detector that is carried out as a task of its own.
template <typename Detection>
std::function<void(const Detection&)>
AppState::laterOnLoop(std::function<void(const Detection&)> handler) {
    return lifetime.guard([this, handler = std::move(handler)](const Detection& detection) {
        services.platform.loop.post(lifetime.guard([handler, detection] { handler(detection); }));
    });
}

void AppState::updateThreats() {
    hasActiveThreats = totalThreatCount() > 0;
}

void AppState::takeDetection(const DetectedBot& bot) {
    if (allowList.allows(allowKey(bot)))
        return;
    record({.botName = bot.name,
            .category = raw(bot.category),
            .confidence = bot.confidence,
            .method = raw(bot.method),
            .detectedAt = bot.detectedAt},
           alertOf(bot), [this, bot] { notificationManager.notifyProcessBot(bot); });
}

void AppState::takeDetection(const CalendarBotDetection& detection) {
    if (allowList.allows(allowKey(detection)))
        return;
    record({.botName = detection.botName,
            .category = raw(detection.category),
            .confidence = detection.confidence,
            .method = raw(DetectionMethod::calendarAttendee),
            .detectedAt = detection.detectedAt,
            .source = raw(DetectionSource::calendar),
            .eventStartDate = detection.eventStartDate,
            .eventTitle = detection.eventTitle},
           alertOf(detection),
           [this, detection] { notificationManager.notifyCalendarBot(detection); });
}

void AppState::takeDetection(const ParticipantBotDetection& detection) {
    if (allowList.allows(allowKey(detection)))
        return;
    record({.botName = detection.botDisplayName,
            .category = raw(detection.category),
            .confidence = detection.confidence,
            .method = raw(DetectionMethod::participantList),
            .detectedAt = detection.detectedAt,
            .source = raw(DetectionSource::participant),
            .eventTitle = meetingOn(detection.platformName)},
           alertOf(detection),
           [this, detection] { notificationManager.notifyParticipantBot(detection); });
}

void AppState::takeDetection(const RecordingIndicatorDetection& indicator) {
    record({.botName = raw(indicator.indicatorType),
            .category = raw(BotCategory::platform),
            .confidence = indicatorConfidence,
            .method = raw(DetectionMethod::recordingIndicator),
            .detectedAt = indicator.detectedAt,
            .source = raw(DetectionSource::indicator),
            .eventTitle = meetingOn(indicator.platformName)},
           alertOf(indicator),
           [this, indicator] { notificationManager.notifyRecordingIndicator(indicator); });
}

/// The entry first: what is announced must be in the history whatever happens next.
void AppState::record(DetectionEvent event, BotAlert alert, Task notify) {
    services.platform.log.notice(fmt::format("Detected: {} ({})", event.botName, event.method),
                                 logCategory::appState);
    if (!settings.showNotifications)
        return detectionLog.add(std::move(event));
    auto announcement =
        lifetime.guard([this, alert = std::move(alert), notify = std::move(notify)] {
            notify();
            alertPanel.show(alert);
        });
    detectionLog.add(std::move(event), announcements.add(std::move(announcement)));
}

void AppState::showStartupAlert() {
    if (!participantBotDetections->empty())
        alertPanel.show(alertOf(participantBotDetections->front()));
    else if (!detectedBots->empty())
        alertPanel.show(alertOf(detectedBots->front()));
    else if (!calendarDetections->empty())
        alertPanel.show(alertOf(calendarDetections->front()));
    else if (!recordingIndicators->empty())
        alertPanel.show(alertOf(recordingIndicators->front()));
}

void AppState::wireLimitations() {
    const auto update = lifetime.guard([this] { scheduleLimitations(); });
    const auto follow = [&](auto& field) {
        cancellables.push_back(field.observe([update](const auto&) { update(); }));
    };
    follow(isMonitoring);
    follow(settings.showNotifications);
    follow(settings.calendarMonitorEnabled);
    follow(settings.participantMonitorEnabled);
    follow(processMonitor.coverage);
    follow(calendarMonitor.authorizationStatus);
    follow(calendarMonitor.unreadCalendars);
    follow(participantMonitor.hasAccessibilityPermission);
    follow(participantMonitor.coverage);
    follow(hasTray);
    cancellables.push_back(services.notifications.onServiceChange(update));
    cancellables.push_back(services.speech.onProblemChange(update));
}

/// Fields tell of a change before it is made, and several often change together.
void AppState::scheduleLimitations() {
    if (std::exchange(isLimitationUpdateDue, true))
        return;
    services.platform.loop.post(lifetime.guard([this] {
        isLimitationUpdateDue = false;
        updateLimitations();
    }));
}

void AppState::updateLimitations() {
    auto next = quorva::limitations({
        .isMonitoring = isMonitoring,
        .lastProcessScanDate = processMonitor.lastScanDate,
        .processes = processMonitor.coverage,
        .calendarMonitorEnabled = settings.calendarMonitorEnabled,
        .calendarAuthorization = calendarMonitor.authorizationStatus,
        .unreadCalendars = calendarMonitor.unreadCalendars,
        .participantMonitorEnabled = settings.participantMonitorEnabled,
        .hasAccessibilityPermission = participantMonitor.hasAccessibilityPermission,
        .meetings = participantMonitor.coverage,
        .showNotifications = settings.showNotifications,
        .notifications = services.notifications.service(),
        .speechProblem = services.speech.problem(),
        .hasTray = hasTray,
    });
    if (next == *limitations)
        return;
    const auto isAmong = [](const std::vector<Limitation>& all, LimitedPart part) {
        return std::any_of(all.begin(), all.end(),
                           [&](const Limitation& limitation) { return limitation.part == part; });
    };
    for (const auto& limitation : next)
        if (!isAmong(*limitations, limitation.part))
            services.platform.log.notice(limitation.text, logCategory::appState);
    for (const auto& ended : *limitations)
        if (!isAmong(next, ended.part))
            services.platform.log.info("No longer so: " + ended.text, logCategory::appState);
    limitations = std::move(next);
}

} // namespace quorva
