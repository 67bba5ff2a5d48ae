// Finds note-takers and recorders that run on this computer: lists the applications and all other
// processes, matches each against the catalogue, keeps one detection per product through short
// gaps, and tells its owner when a product appears and when it is gone. Main thread only.
#pragma once

#include "base/MainLoop.h"
#include "base/Published.h"
#include "catalogue/BotSignatureDatabase.h"
#include "catalogue/Records.h"
#include "detectors/Retention.h"
#include "platform/Applications.h"
#include "platform/ProcessTable.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorva {

/// What the last scan could look at, so that "found nothing" and "could not look" stay apart.
struct ProcessCoverage {
    bool listed = false;       ///< the processes could be listed
    std::size_t processes = 0; ///< how many there were
    std::size_t denied = 0;    ///< of these, how many kept their executable to themselves

    bool operator==(const ProcessCoverage&) const = default;
};

class ProcessMonitor {
public:
    /// The services and the database must outlive the monitor. Nothing is scanned yet.
    ProcessMonitor(MainLoop& loop, Applications& applications, ProcessTable& processTable,
                   const BotSignatureDatabase& database = BotSignatureDatabase::shared());

    /// One detection per product, the highest confidence first.
    Published<std::vector<DetectedBot>, ProcessMonitor> detectedBots;
    /// Whether scans come by themselves: the timer runs and launches and quits are followed.
    Published<bool, ProcessMonitor> isMonitoring{false};
    /// When the last scan ended.
    Published<std::optional<Time>, ProcessMonitor> lastScanDate;
    /// What the last scan could look at.
    Published<ProcessCoverage, ProcessMonitor> coverage;

    /// A product was found, or found again under another process. Called within a scan, before
    /// `detectedBots` changes; may be empty.
    std::function<void(const DetectedBot&)> onBotDetected;
    /// A product has been gone for its grace period. Called as above.
    std::function<void(const DetectedBot&)> onBotDisappeared;

    /// Scans at once, or as soon as the applications can be listed, then every 3 seconds and
    /// whenever an application starts or ends or a detected process ends. Does nothing when
    /// monitoring already.
    void startMonitoring();

    /// Ends that. What was detected stays listed, and is not announced again by the next start.
    void stopMonitoring();

    /// One full scan. Returns at once when called from within a scan, by a callback, and while the
    /// applications cannot be listed yet.
    void scan();

    /// A scan without memory: what it does not see is gone at once, and what it sees starts anew to
    /// earn its longer grace period.
    void forceRescan();

private:
    struct ProcessMatch {
        BotMatch match;
        DetectionMethod method;
        std::string matchedValue;
    };

    std::vector<DetectedBot> findBots();
    void findApplications(std::vector<DetectedBot>& found);
    void findProcesses(std::vector<DetectedBot>& found);
    const std::optional<ProcessMatch>& matchProcess(const std::string& path);
    DetectedBot makeBot(const BotMatch& match, DetectionMethod method, ProcessIdentifier process,
                        std::string matchedValue) const;
    void announce(const std::vector<DetectedBot>& next);
    void announceOnce(const DetectedBot& bot);
    void watchExits();
    Task scanTask();

    MainLoop& loop;
    Applications& applications;
    ProcessTable& processTable;
    const BotSignatureDatabase& database;

    const Seconds pollInterval{3.0};
    const std::size_t maxRememberedPaths = 4096;

    Timer pollTimer;
    std::vector<Subscription> notificationCancellables;
    std::unordered_map<ProcessIdentifier, Subscription> exitWatches;
    std::unordered_set<std::string> knownDetections;
    std::unordered_map<std::string, std::optional<ProcessMatch>> matchOfPath;
    bool isScanning = false;
    Retention<DetectedBot> retained;

    Lifetime lifetime;
};

} // namespace quorva
