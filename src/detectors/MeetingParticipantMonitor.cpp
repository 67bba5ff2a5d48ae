#include "detectors/MeetingParticipantMonitor.h"

#include "base/Text.h"
#include "detectors/Difference.h"
#include "detectors/WindowScan.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

namespace quorva {
namespace {

constexpr int wholeApplication = -1; ///< in place of a window's index
constexpr auto showsNothing = "it shows nothing to a screen reader";
constexpr std::size_t fewTexts = 20; ///< a page with fewer is only part of a meeting's page

bool hostsMeetings(const std::string& bundleIdentifier) {
    const auto platforms = meetingPlatforms();
    return std::any_of(platforms.begin(), platforms.end(), [&](const MeetingPlatform& platform) {
        return isHostedBy(platform, bundleIdentifier);
    });
}

template <typename Element>
void append(std::vector<Element>& all, const std::vector<Element>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

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
    log.info(fmt::format("Started participant list monitoring (poll interval: {:.1f}s)",
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
    if (waitingIn(watched(applications.runningApplications())) != waitingWindows)
        performScan();
}

void MeetingParticipantMonitor::performScan() {
    if (!hasAccessibilityPermission || isScanning || !applications.isReady())
        return;
    isScanning = true;
    Pass pass = beginPass();
    for (const auto& platform : meetingPlatforms())
        scanPlatform(platform, pass);
    request(pass.applications);
    remember(pass);
    publish(pass);
    isScanning = false;
    lastScanDate = loop.now();
}

bool MeetingParticipantMonitor::readAhead() {
    if (!hasAccessibilityPermission)
        return true;
    if (!applications.isReady())
        return false;
    const auto present = watched(applications.runningApplications());
    bool isEnabling = false;
    for (const auto& application : present)
        if (const auto which = accessibilitySwitchOf(application.bundleIdentifier))
            isEnabling |= tree.enable(application.process, *which) == EINPROGRESS;
    request(present);
    return !isEnabling && waitingIn(present).empty();
}

MeetingParticipantMonitor::Pass MeetingParticipantMonitor::beginPass() {
    Pass pass{.now = loop.now()};
    const auto running = applications.runningApplications();
    for (const auto& application : running)
        pass.running.insert(application.processIdentifier);
    pass.applications = watched(running);
    pass.coverage.applications = pass.applications.size();
    return pass;
}

/// The applications that may hold meetings, with their windows as they were last read.
std::vector<MeetingParticipantMonitor::WatchedApplication>
MeetingParticipantMonitor::watched(const std::vector<RunningApplication>& running) const {
    std::vector<WatchedApplication> watched;
    for (const auto& application : running) {
        if (!application.bundleIdentifier || !hostsMeetings(*application.bundleIdentifier))
            continue;
        auto [state, problem, windows] = tree.windows(application.processIdentifier);
        auto& added = watched.emplace_back(WatchedApplication{
            .process = application.processIdentifier,
            .bundleIdentifier = *application.bundleIdentifier,
            .name = application.localizedName.value_or(*application.bundleIdentifier),
            .state = state,
            .problem = std::move(problem),
        });
        if (state == ReadState::read)
            for (auto& window : windows)
                added.windows.push_back(label(std::move(window)));
    }
    return watched;
}

/// Their windows that have not been read yet.
std::set<MeetingParticipantMonitor::WindowKey>
MeetingParticipantMonitor::waitingIn(const std::vector<WatchedApplication>& watched) {
    std::set<WindowKey> waiting;
    for (const auto& application : watched) {
        if (application.state == ReadState::notReadYet)
            waiting.insert({application.process, wholeApplication});
        for (const auto& platform : meetingPlatforms())
            if (isHostedBy(platform, application.bundleIdentifier))
                for (std::size_t i = 0; i < application.windows.size(); ++i)
                    if (kindOf(application.windows[i], platform) == WindowKind::notReadYet)
                        waiting.insert({application.process, static_cast<int>(i)});
    }
    return waiting;
}

void MeetingParticipantMonitor::request(const std::vector<WatchedApplication>& watched) {
    std::vector<ReadingRequest> requests;
    requests.reserve(watched.size());
    for (const auto& application : watched)
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

void MeetingParticipantMonitor::scanPlatform(const MeetingPlatform& platform, Pass& pass) {
    for (const auto& application : pass.applications) {
        if (!isHostedBy(platform, application.bundleIdentifier))
            continue;
        enable(application);
        if (application.state == ReadState::read)
            scanApplication(platform, application, pass);
        else if (application.state == ReadState::couldNotBeRead)
            noteFailing(application, wholeApplication, {}, application.problem, pass);
        else
            noteWaiting(application, wholeApplication, pass);
    }
}

void MeetingParticipantMonitor::enable(const WatchedApplication& application) {
    const auto which = accessibilitySwitchOf(application.bundleIdentifier);
    if (!which)
        return;
    const auto process = application.process;
    const int error = tree.enable(process, *which);
    const bool isElectron = which == AccessibilitySwitch::manualAccessibility;
    std::string message;
    if (error == 0)
        message =
            isElectron
                ? fmt::format("Enabled Accessibility tree for Electron app (PID: {})", process)
                : fmt::format("Enabled AXEnhancedUserInterface for browser (PID: {})", process);
    else
        message = isElectron ? fmt::format("Could not enable AX tree for PID {} (error: {}) — will "
                                           "use partial tree",
                                           process, error)
                             : fmt::format("Could not enable AXEnhancedUserInterface for PID {} "
                                           "(error: {})",
                                           process, error);
    log.debug(message, logCategory::participant);
}

void MeetingParticipantMonitor::scanApplication(const MeetingPlatform& platform,
                                                const WatchedApplication& application, Pass& pass) {
    for (std::size_t i = 0; i < application.windows.size(); ++i) {
        const WindowKey key{application.process, static_cast<int>(i)};
        if (platform.isBrowser && pass.claimedBrowserWindows.contains(key))
            continue;
        const auto& labelled = application.windows[i];
        const auto& window = labelled.window;
        switch (kindOf(labelled, platform)) {
        case WindowKind::none:
            break;
        case WindowKind::notReadYet:
            noteWaiting(application, key.second, pass);
            break;
        case WindowKind::couldNotBeRead:
            noteFailing(application, key.second, window.title, window.problem, pass);
            break;
        case WindowKind::meeting:
            if (platform.isBrowser)
                pass.claimedBrowserWindows.insert(key);
            scanWindow(platform, application, window, pass);
            break;
        }
    }
}

void MeetingParticipantMonitor::scanWindow(const MeetingPlatform& platform,
                                           const WatchedApplication& application,
                                           const AccessibleWindow& window, Pass& pass) {
    pass.scannedPlatformNames.insert(platform.name);
    const auto& findings = walks.walk(platform, window, pass.now);
    ++pass.coverage.windows;
    pass.coverage.cutShort += findings.isCutShort ? 1 : 0;
    if (findings.textCount == 0)
        pass.coverage.failed.push_back(
            {application.process, application.name, window.title, showsNothing});
    logDiagnostics(platform, findings);
    pass.activeMeetingPlatform = platform.name;
    if (!findings.isMeeting) {
        log.debug("Teams window without active meeting signals — skipped",
                  logCategory::participant);
        return;
    }
    pass.activeProcesses[platform.name].insert(application.process);
    append(pass.bots, findings.bots);
    append(pass.indicators, findings.indicators);
}

void MeetingParticipantMonitor::logDiagnostics(const MeetingPlatform& platform,
                                               const MeetingWindowFindings& findings) {
    const auto notice = [&](const std::string& message) {
        log.notice(message, logCategory::participant);
    };
    if (findings.textCount == 0)
        notice(
            fmt::format("AX tree empty for {} window — permission or browser AX setting may be off",
                        platform.name));
    else if (platform.isBrowser && findings.textCount < fewTexts)
        notice(fmt::format("AX tree partial for {}: only {} elements (expected 100+)",
                           platform.name, findings.textCount));
    if (findings.isCutShort)
        notice(fmt::format("Element budget exhausted ({}) scanning {}",
                           wholeWindowExtent(platform.isBrowser).maxElements, platform.name));
}

/// Lists a window or application that could not be read, once a pass, and logs it when it begins to
/// fail. Titles are private and are not logged.
void MeetingParticipantMonitor::noteFailing(const WatchedApplication& application, int index,
                                            const std::string& windowTitle,
                                            const std::string& problem, Pass& pass) {
    const WindowKey key{application.process, index};
    if (!pass.failing.insert(key).second)
        return;
    pass.coverage.failed.push_back({application.process, application.name, windowTitle, problem});
    if (!failingWindows.contains(key))
        log.notice(fmt::format("{} of {} (PID: {}) can't be read: {}",
                               index == wholeApplication ? "The windows" : "A window",
                               printable(application.name), application.process,
                               printable(problem)),
                   logCategory::participant);
}

void MeetingParticipantMonitor::noteWaiting(const WatchedApplication& application, int index,
                                            Pass& pass) {
    if (!pass.waiting.insert({application.process, index}).second)
        return;
    UnseenMeetingWindow waiting{application.process, application.name, {}, {}};
    if (index != wholeApplication) {
        const auto& window = application.windows[static_cast<std::size_t>(index)].window;
        waiting.windowTitle = window.title;
        if (window.tree && window.tree->children.empty())
            waiting.problem = showsNothing;
    }
    pass.coverage.notReadYet.push_back(std::move(waiting));
}

/// Stores what the next pass needs to know.
void MeetingParticipantMonitor::remember(Pass& pass) {
    walks.endPass();
    for (const auto& key : failingWindows)
        if (pass.waiting.contains(key)) // being read again, which may fail again
            pass.failing.insert(key);
    failingWindows = std::move(pass.failing);
    waitingWindows = std::move(pass.waiting);

    platformWindowsAccessible.clear();
    for (const auto& platform : meetingPlatforms())
        platformWindowsAccessible[platform.name] =
            pass.scannedPlatformNames.contains(platform.name);
    for (auto& [name, processes] : pass.activeProcesses)
        knownActiveMeetingPIDs[name].merge(processes);
    for (auto& [name, processes] : knownActiveMeetingPIDs)
        std::erase_if(processes, [&](auto process) { return !pass.running.contains(process); });
    std::erase_if(knownActiveMeetingPIDs, [](const auto& entry) { return entry.second.empty(); });
}

void MeetingParticipantMonitor::publish(Pass& pass) {
    coverage = std::move(pass.coverage);
    activeMeetingPlatform = pass.activeMeetingPlatform;

    auto foundBots = firstOfEachKey(std::move(pass.bots));
    std::stable_sort(foundBots.begin(), foundBots.end(),
                     [](const auto& a, const auto& b) { return a.confidence > b.confidence; });
    auto bots = retainedBots.endPass(std::move(foundBots), pass.now,
                                     [this](const auto& bot, const Absence& absence) {
                                         return meetingGracePeriod(absence, reachOf(bot));
                                     });
    auto indicators = retainedIndicators.endPass(
        firstOfEachKey(std::move(pass.indicators)), pass.now,
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
    const auto accessible = platformWindowsAccessible.find(detection.platformName);
    return {.isRunning = knownActiveMeetingPIDs.contains(detection.platformName),
            .isAccessible = accessible != platformWindowsAccessible.end() && accessible->second};
}

} // namespace quorva
