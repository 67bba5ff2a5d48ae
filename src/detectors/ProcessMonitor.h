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

/// What the last scan could look at. Distinguishes "found nothing" from "could not look".
struct ProcessCoverage {
    bool listed = false;       ///< whether the processes could be listed
    std::size_t processes = 0; ///< number of processes
    std::size_t denied = 0;    ///< of these, processes whose executable the kernel does not show

    bool operator==(const ProcessCoverage&) const = default;
};

class ProcessMonitor {
public:
    /// The services and the database must outlive the monitor. Nothing is scanned yet.
    ProcessMonitor(MainLoop& loop, Applications& applications, ProcessTable& processTable,
                   const BotSignatureDatabase& database = BotSignatureDatabase::shared());

    /// One detection for each product, by falling confidence.
    Published<std::vector<DetectedBot>, ProcessMonitor> detectedBots;
    /// Whether scans run by themselves: by timer, and when applications start and end.
    Published<bool, ProcessMonitor> isMonitoring{false};
    /// When the last scan ended.
    Published<std::optional<Time>, ProcessMonitor> lastScanDate;
    /// What the last scan could look at.
    Published<ProcessCoverage, ProcessMonitor> coverage;

    /// Called when a product is found, or is found under another process. Called within a scan,
    /// before `detectedBots` changes; may be empty.
    std::function<void(const DetectedBot&)> onBotDetected;
    /// Called when a product has been gone for its grace period. As above.
    std::function<void(const DetectedBot&)> onBotDisappeared;

    /// Scans at once, or as soon as the applications can be listed, then every 3 seconds and
    /// whenever an application starts or ends or a detected process ends. Does nothing when
    /// monitoring already.
    void startMonitoring();

    /// Stops scans. Detections stay listed, and the next start does not announce them again.
    void stopMonitoring();

    /// One full scan. Returns at once when called from within a scan, by a callback, and while the
    /// applications cannot be listed yet.
    void scan();

    /// Scans without memory: a product that this scan does not see is gone at once, and one that it
    /// sees starts again to earn the longer grace period.
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
