#include "detectors/MeetingParticipantMonitor.h"

#include "detectors/Difference.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

namespace quorva {
namespace {

constexpr Seconds timeToRepeat{300}; ///< what was logged is not logged again within this time

template <typename Detection>
void announce(const std::vector<Detection>& next,
              const std::vector<Detection> previous, // a callback may change the list
              const std::function<void(const Detection&)>& onDetected,
              const std::function<void(const Detection&)>& onDisappeared) {
    forEachMissing(next, previous, &Detection::id, onDetected);
    forEachMissing(previous, next, &Detection::id, onDisappeared);
}

} // namespace

MeetingParticipantMonitor::MeetingParticipantMonitor(MainLoop& loop_, Applications& applications_,
                                                     AccessibilityTree& tree_, Log& log_)
    : hasAccessibilityPermission(tree_.isTrusted()),
      loop(loop_),
      applications(applications_),
      tree(tree_),
      log(log_),
      permissionObserver(tree.onTrustChange(lifetime.guard([this] { refreshPermission(); }))) {}

void MeetingParticipantMonitor::refreshPermission() {
    hasAccessibilityPermission = tree.isTrusted();
}

void MeetingParticipantMonitor::requestPermission() {
    tree.requestTrust(
        lifetime.guard([this](bool isTrusted) { hasAccessibilityPermission = isTrusted; }));
}

void MeetingParticipantMonitor::startMonitoring() {
    if (isMonitoring)
        return;
    refreshPermission();
    if (!hasAccessibilityPermission) {
        log.info("Cannot start participant monitoring: no Accessibility permission",
                 logCategory::participant);
        return;
    }
    isMonitoring = true;
    log.info(Printable::format("Started participant list monitoring (poll interval: {:.1f}s)",
                               pollInterval.count()),
             logCategory::participant);
    schedulePass();
    pollTimer = loop.every(pollInterval, lifetime.guard([this] { schedulePass(); }));
    readyObserver = applications.onReady(lifetime.guard([this] { schedulePass(); }));
    readObserver = tree.onRead(lifetime.guard([this] { scheduleMissedPass(); }));
}

void MeetingParticipantMonitor::stopMonitoring() {
    isMonitoring = false;
    pollTimer.reset();
    readyObserver.reset();
    readObserver.reset();
    tree.request({});
    activeMeetingPlatform = std::nullopt;
    log.info("Stopped participant list monitoring", logCategory::participant);
}

void MeetingParticipantMonitor::schedulePass() {
    loop.post(lifetime.guard([this] {
        if (isMonitoring)
            performScan();
    }));
}

/// Schedules a pass for windows that the last pass missed.
void MeetingParticipantMonitor::scheduleMissedPass() {
    if (isMissedPassScheduled || waitingWindows.empty())
        return;
    isMissedPassScheduled = true;
    loop.post(lifetime.guard([this] {
        isMissedPassScheduled = false;
        if (isMonitoring)
            performMissedPass();
    }));
}

/// Only if the list of waiting windows changed: a window that is read again and again must not
/// cause more passes.
void MeetingParticipantMonitor::performMissedPass() {
    if (waitingIn(meetingApplications(applications.runningApplications(), tree)) != waitingWindows)
        performScan();
}

void MeetingParticipantMonitor::performScan() {
    if (isScanning || !applications.isReady())
        return;
    isScanning = true;
    if (hasAccessibilityPermission) {
        const auto present = meetingApplications(applications.runningApplications(), tree);
        enable(present);
        auto results = MeetingPass(present, walks, loop.now()).results;
        request(present);
        remember(results);
        publish(std::move(results));
        lastScanDate = loop.now();
    } else if (!participantBotDetections->empty() || !recordingIndicators->empty()) {
        MeetingPass::Results nothingSeen;
        remember(nothingSeen);
        publish(std::move(nothingSeen));
    }
    isScanning = false;
}

bool MeetingParticipantMonitor::readAhead() {
    if (!hasAccessibilityPermission)
        return true;
    if (!applications.isReady())
        return false;
    const auto present = meetingApplications(applications.runningApplications(), tree);
    bool isEnabling = false;
    for (const auto& application : present)
        if (const auto which = accessibilitySwitchOf(application.bundleIdentifier))
            isEnabling |= tree.enable(application.process, *which) == EINPROGRESS;
    request(present);
    return !isEnabling && waitingIn(present).empty();
}

void MeetingParticipantMonitor::enable(const std::vector<MeetingApplication>& present) {
    for (const auto& application : present) {
        const auto which = accessibilitySwitchOf(application.bundleIdentifier);
        if (!which)
            continue;
        const auto process = application.process;
        const int error = tree.enable(process, *which);
        const bool isElectron = which == AccessibilitySwitch::manualAccessibility;
        if (error == 0)
            say(LogLevel::debug,
                Printable::format("Enabled {} (PID: {})",
                                  isElectron ? "Accessibility tree for Electron app"
                                             : "AXEnhancedUserInterface for browser",
                                  process));
        else if (isElectron)
            say(LogLevel::debug,
                Printable::format("Could not enable AX tree for PID {} (error: {}) — "
                                  "will use partial tree",
                                  process, error));
        else
            say(LogLevel::debug,
                Printable::format("Could not enable AXEnhancedUserInterface for PID {} (error: {})",
                                  process, error));
    }
}

/// Logs a message that has not been logged lately: only changes are of interest.
void MeetingParticipantMonitor::say(LogLevel level, const Printable& message) {
    const auto now = loop.now();
    const auto [at, isNew] = said.try_emplace(message.str(), now);
    if (isNew)
        log.write(level, message, logCategory::participant, CallSite::current());
    at->second = now;
}

void MeetingParticipantMonitor::request(const std::vector<MeetingApplication>& present) {
    std::vector<ReadingRequest> requests;
    requests.reserve(present.size());
    for (const auto& application : present)
        requests.push_back({application.process, planFor(application.bundleIdentifier)});
    tree.request(std::move(requests));
}

const std::shared_ptr<const ReadingPlan>&
MeetingParticipantMonitor::planFor(const std::string& bundleIdentifier) {
    auto& plan = plans[bundleIdentifier];
    if (!plan)
        plan = makeReadingPlan(bundleIdentifier);
    return plan;
}

/// Stores what the next pass needs to know.
void MeetingParticipantMonitor::remember(MeetingPass::Results& pass) {
    waitingWindows = std::move(pass.waiting);
    for (const auto& [level, message] : pass.messages)
        say(level, message);
    const auto now = loop.now();
    std::erase_if(said, [&](const auto& each) { return now - each.second >= timeToRepeat; });

    hiddenPlatforms.clear();
    for (const auto& meeting : pass.coverage.unseen)
        if (meeting.cause == UnseenMeeting::Cause::inBackgroundTab ||
            meeting.cause == UnseenMeeting::Cause::notInFront)
            hiddenPlatforms.insert(meeting.platformName);
    accessiblePlatforms = std::move(pass.platforms);

    std::set<ProcessIdentifier> running;
    for (const auto& application : applications.runningApplications())
        running.insert(application.processIdentifier);
    for (auto& [name, processes] : pass.processes)
        knownActiveMeetingPIDs[name].merge(processes);
    for (auto& [name, processes] : knownActiveMeetingPIDs)
        std::erase_if(processes, [&](auto process) { return !running.contains(process); });
    std::erase_if(knownActiveMeetingPIDs, [](const auto& entry) { return entry.second.empty(); });
}

void MeetingParticipantMonitor::publish(MeetingPass::Results pass) {
    for (const auto& meeting : sightLosses.update(pass.coverage.unseen, loop.now()))
        if (onSightLost)
            onSightLost(meeting);
    coverage = std::move(pass.coverage);
    activeMeetingPlatform = pass.activeMeetingPlatform;

    auto foundBots = firstOfEachKey(std::move(pass.bots));
    std::stable_sort(foundBots.begin(), foundBots.end(),
                     [](const auto& a, const auto& b) { return a.confidence > b.confidence; });
    auto bots = retainedBots.endPass(std::move(foundBots), loop.now(),
                                     [this](const auto& bot, const Absence& absence) {
                                         return meetingGracePeriod(absence, reachOf(bot));
                                     });
    auto indicators = retainedIndicators.endPass(
        firstOfEachKey(std::move(pass.indicators)), loop.now(),
        [&](const auto& indicator, const Absence& absence) {
            auto reach = reachOf(indicator);
            reach.isOver =
                pass.activeMeetingPlatform && pass.activeMeetingPlatform != indicator.platformName;
            return meetingGracePeriod(absence, reach);
        });

    announce(bots, *participantBotDetections, onBotDetected, onBotDisappeared);
    announce(indicators, *recordingIndicators, onRecordingIndicatorDetected,
             onRecordingIndicatorDisappeared);
    participantBotDetections = std::move(bots);
    recordingIndicators = std::move(indicators);
}

template <typename Detection>
MeetingReach MeetingParticipantMonitor::reachOf(const Detection& detection) const {
    return {.isKeptBack = hiddenPlatforms.contains(detection.platformName),
            .isRunning = knownActiveMeetingPIDs.contains(detection.platformName),
            .isAccessible = accessiblePlatforms.contains(detection.platformName)};
}

} // namespace quorva
