#include "detectors/ProcessMonitor.h"

#include "base/Text.h"
#include "detectors/Difference.h"

#include <algorithm>
#include <tuple>

namespace quorva {
namespace {

std::optional<std::string> lowerCased(const std::optional<std::string>& text) {
    return text ? std::optional(quorva::lowerCased(*text)) : std::nullopt;
}

/// The most confident detection of each product; among equals, the first one found.
std::vector<DetectedBot> bestPerProduct(std::vector<DetectedBot> found) {
    std::stable_sort(found.begin(), found.end(), [](const DetectedBot& a, const DetectedBot& b) {
        return a.confidence > b.confidence;
    });
    return firstOfEachKey(std::move(found));
}

void sortByConfidence(std::vector<DetectedBot>& bots) {
    std::sort(bots.begin(), bots.end(), [](const DetectedBot& a, const DetectedBot& b) {
        return std::tuple(-a.confidence, std::string_view(a.signatureId)) <
               std::tuple(-b.confidence, std::string_view(b.signatureId));
    });
}

} // namespace

ProcessMonitor::ProcessMonitor(MainLoop& loop_, Applications& applications_,
                               ProcessTable& processTable_, const BotSignatureDatabase& database_)
    : loop(loop_), applications(applications_), processTable(processTable_), database(database_) {}

void ProcessMonitor::startMonitoring() {
    if (isMonitoring)
        return;
    isMonitoring = true;
    scan();
    notificationCancellables.push_back(applications.onLaunch(scanTask()));
    notificationCancellables.push_back(applications.onQuit(scanTask()));
    pollTimer = loop.every(pollInterval, scanTask());
    watchExits();
}

void ProcessMonitor::stopMonitoring() {
    isMonitoring = false;
    pollTimer.reset();
    notificationCancellables.clear();
    exitWatches.clear();
}

void ProcessMonitor::scan() {
    if (isScanning || !applications.isReady()) // onLaunch calls when it is
        return;
    isScanning = true;

    auto next = retained.endPass(bestPerProduct(findBots()), loop.now(),
                                 [](const DetectedBot&, const Absence& absence) {
                                     return processGracePeriods.after(absence);
                                 });
    sortByConfidence(next);
    announce(next);

    detectedBots = std::move(next);
    isScanning = false;
    lastScanDate = loop.now();
    if (isMonitoring)
        watchExits();
}

void ProcessMonitor::forceRescan() {
    retained.clear();
    scan();
}

std::vector<DetectedBot> ProcessMonitor::findBots() {
    std::vector<DetectedBot> found;
    findApplications(found);
    findProcesses(found);
    return found;
}

void ProcessMonitor::findApplications(std::vector<DetectedBot>& found) {
    using Database = BotSignatureDatabase;
    using enum DetectionMethod;
    const auto own = lowerCased(applications.ownBundleIdentifier());
    for (auto& application : applications.runningApplications()) {
        if (lowerCased(application.bundleIdentifier) == own)
            continue;
        // The first text that matches counts, in this order.
        const struct {
            std::optional<std::string>& text;
            std::optional<BotMatch> (Database::*match)(std::string_view) const;
            DetectionMethod method;
        } attempts[] = {
            {application.bundleIdentifier, &Database::matchBundleIdentifier, bundleIdentifier},
            {application.localizedName, &Database::matchProcessName, processName},
            {application.executablePath, &Database::matchProcessPath, processPath},
        };
        for (const auto& [text, match, method] : attempts) {
            const auto matched = text ? (database.*match)(*text) : std::nullopt;
            if (!matched)
                continue;
            found.push_back(
                makeBot(*matched, method, application.processIdentifier, std::move(*text)));
            break;
        }
    }
}

void ProcessMonitor::findProcesses(std::vector<DetectedBot>& found) {
    const auto processes = processTable.processIdentifiers();
    ProcessCoverage looked{.listed = processes && !processes->empty()};
    if (looked.listed) {
        std::unordered_set<ProcessIdentifier> matched;
        for (const auto& bot : found)
            matched.insert(bot.processIdentifier);

        looked.processes = processes->size();
        for (const ProcessIdentifier process : *processes) {
            if (process < 1 || matched.contains(process))
                continue;
            const auto [status, path] = processTable.executable(process);
            looked.denied += status == Executable::Status::denied;
            if (status != Executable::Status::read)
                continue;
            if (const auto& known = matchProcess(path))
                found.push_back(makeBot(known->match, known->method, process, known->matchedValue));
        }
    }
    coverage = looked;
}

/// The catalogue's result for a path never changes, so it is cached.
const std::optional<ProcessMonitor::ProcessMatch>&
ProcessMonitor::matchProcess(const std::string& path) {
    if (const auto known = matchOfPath.find(path); known != matchOfPath.end())
        return known->second;
    if (matchOfPath.size() == maxRememberedPaths)
        matchOfPath.clear();

    auto& matched = matchOfPath[path];
    const auto name = lastPathComponent(path);
    if (const auto byPath = database.matchProcessPath(path))
        matched.emplace(ProcessMatch{*byPath, DetectionMethod::processPath, path});
    else if (const auto byName = database.matchProcessName(name);
             byName && !database.isExcludedProcessPath(path))
        matched.emplace(ProcessMatch{*byName, DetectionMethod::processName, std::string(name)});
    return matched;
}

DetectedBot ProcessMonitor::makeBot(const BotMatch& match, DetectionMethod method,
                                    ProcessIdentifier process, std::string matchedValue) const {
    return {
        .id = match.signature.id + "-" + std::to_string(process),
        .signatureId = match.signature.id,
        .name = match.signature.name,
        .category = match.signature.category,
        .confidence = match.confidence,
        .method = method,
        .processIdentifier = process,
        .matchedValue = std::move(matchedValue),
        .detectedAt = loop.now(),
    };
}

/// A product that is found under another process is announced again.
void ProcessMonitor::announce(const std::vector<DetectedBot>& next) {
    forEachMissing<DetectedBot>(next, detectedBots, &DetectedBot::id,
                                [this](const DetectedBot& bot) { announceOnce(bot); });
    forEachMissing<DetectedBot>(detectedBots, next, &DetectedBot::signatureId,
                                [this](const DetectedBot& old) {
                                    knownDetections.erase(old.id);
                                    if (onBotDisappeared)
                                        onBotDisappeared(old);
                                });
}

void ProcessMonitor::announceOnce(const DetectedBot& bot) {
    if (knownDetections.insert(bot.id).second && onBotDetected)
        onBotDetected(bot);
}

/// Watches the end of each detected process, so that a scan follows at once.
void ProcessMonitor::watchExits() {
    std::unordered_map<ProcessIdentifier, Subscription> watches;
    for (const auto& bot : *detectedBots) {
        const auto process = bot.processIdentifier;
        if (const auto watched = exitWatches.find(process); watched != exitWatches.end())
            watches.insert(exitWatches.extract(watched));
        else
            watches.emplace(process, processTable.onExit(process, scanTask()));
    }
    exitWatches = std::move(watches);
}

Task ProcessMonitor::scanTask() {
    return [&mainLoop = loop, scanIfAlive = lifetime.guard([this] { scan(); })] {
        mainLoop.post(scanIfAlive);
    };
}

} // namespace quorva
