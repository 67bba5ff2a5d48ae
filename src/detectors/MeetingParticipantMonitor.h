// Finds note-takers among the participants of the user's meetings, and banners that announce a
// recording or an assistant. Looks at the texts that the windows of meeting applications and
// browsers expose to screen readers, keeps detections through gaps, and calls its owner when one
// appears or is gone. Main thread only. The texts of the windows are not stored.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "catalogue/Records.h"
#include "detectors/MeetingWindowWalks.h"
#include "detectors/MeetingWindows.h"
#include "detectors/Retention.h"
#include "platform/AccessibilityTree.h"
#include "platform/Applications.h"
#include "platform/Log.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorva {

/// A window that a pass could not look at, or an application with all its windows.
struct UnseenMeetingWindow {
    ProcessIdentifier processIdentifier = 0;
    std::string applicationName;
    std::string windowTitle; ///< empty: the application as a whole, or a window without a title
    std::string problem;     ///< empty: it has not been read yet

    bool operator==(const UnseenMeetingWindow&) const = default;
};

/// What the last pass could look at. Distinguishes "found nothing" from "could not look".
struct MeetingCoverage {
    std::size_t applications = 0;                ///< running ones that may hold meetings
    std::size_t windows = 0;                     ///< meeting windows that were looked at
    std::size_t cutShort = 0;                    ///< of these, windows larger than the budget
    std::vector<UnseenMeetingWindow> failed;     ///< could not be read, or were empty
    std::vector<UnseenMeetingWindow> notReadYet; ///< still to be read

    bool operator==(const MeetingCoverage&) const = default;
};

class MeetingParticipantMonitor {
public:
    /// The services must outlive the monitor. It does not look at anything yet.
    MeetingParticipantMonitor(MainLoop& loop, Applications& applications, AccessibilityTree& tree,
                              Log& log);

    /// The bots of the last pass, by falling confidence, then the bots kept from earlier passes.
    Published<std::vector<ParticipantBotDetection>, MeetingParticipantMonitor>
        participantBotDetections;
    /// The banners of the last pass, then the banners kept from earlier passes.
    Published<std::vector<RecordingIndicatorDetection>, MeetingParticipantMonitor>
        recordingIndicators;
    /// Whether passes run by themselves.
    Published<bool, MeetingParticipantMonitor> isMonitoring{false};
    /// Whether windows may be read. Follows the service. This is its one home: everything else
    /// observes it.
    Published<bool, MeetingParticipantMonitor> hasAccessibilityPermission;
    /// The platform of the last meeting window that the last pass found.
    Published<std::optional<std::string>, MeetingParticipantMonitor> activeMeetingPlatform;
    /// When the last pass ended.
    Published<std::optional<Time>, MeetingParticipantMonitor> lastScanDate;
    /// What the last pass could look at.
    Published<MeetingCoverage, MeetingParticipantMonitor> coverage;

    /// Called when a bot appears that the previous pass did not list, or when a listed bot's text
    /// changes. Called within a pass, before the list changes; may be empty.
    std::function<void(const ParticipantBotDetection&)> onBotDetected;
    /// Called when a bot is no longer listed, or no longer with this text. As above.
    std::function<void(const ParticipantBotDetection&)> onBotDisappeared;
    /// The same for banners.
    std::function<void(const RecordingIndicatorDetection&)> onRecordingIndicatorDetected;
    std::function<void(const RecordingIndicatorDetection&)> onRecordingIndicatorDisappeared;

    /// Looks up whether windows may be read.
    void refreshPermission();

    /// Switches the session's accessibility on, at the user's wish.
    void requestPermission();

    /// Runs a pass as a task of its own, then every 5 seconds, and when windows have been read that
    /// the last pass missed. Does nothing while monitoring, or without permission.
    void startMonitoring();

    /// Stops passes and the reading of windows. Detections stay listed.
    void stopMonitoring();

    /// Runs one pass over the windows as they were last read, and requests further reading. Does
    /// nothing without permission, within a pass, and while the applications cannot be listed yet.
    void performScan();

    /// Requests the windows to be read, without a pass. True once every window has been read or has
    /// failed, which means that waiting longer gains nothing.
    bool readAhead();

private:
    struct WatchedApplication {
        ProcessIdentifier process;
        std::string bundleIdentifier;
        std::string name;
        ReadState state;
        std::string problem;
        std::vector<LabelledWindow> windows;
    };
    using WindowKey = std::pair<ProcessIdentifier, int>; ///< and the window's index
    using ProcessesByPlatform = std::map<std::string_view, std::set<ProcessIdentifier>>;
    /// The working state of one pass.
    struct Pass {
        Time now;
        std::set<ProcessIdentifier> running;
        std::vector<WatchedApplication> applications;
        std::set<WindowKey> claimedBrowserWindows;
        std::set<std::string_view> scannedPlatformNames;
        ProcessesByPlatform activeProcesses;
        std::optional<std::string> activeMeetingPlatform;
        std::vector<ParticipantBotDetection> bots;
        std::vector<RecordingIndicatorDetection> indicators;
        MeetingCoverage coverage;
        std::set<WindowKey> failing;
        std::set<WindowKey> waiting;
    };

    [[nodiscard]] Pass beginPass();
    [[nodiscard]] std::vector<WatchedApplication>
    watched(const std::vector<RunningApplication>& running) const;
    [[nodiscard]] static std::set<WindowKey>
    waitingIn(const std::vector<WatchedApplication>& watched);
    void request(const std::vector<WatchedApplication>& watched);
    const std::shared_ptr<const ReadingPlan>& planFor(const std::string& bundleIdentifier);

    void scanPlatform(const MeetingPlatform& platform, Pass& pass);
    void scanApplication(const MeetingPlatform& platform, const WatchedApplication& application,
                         Pass& pass);
    void scanWindow(const MeetingPlatform& platform, const WatchedApplication& application,
                    const AccessibleWindow& window, Pass& pass);
    void enable(const WatchedApplication& application);
    void logDiagnostics(const MeetingPlatform& platform, const MeetingWindowFindings& findings);
    void noteFailing(const WatchedApplication& application, int index,
                     const std::string& windowTitle, const std::string& problem, Pass& pass);
    static void noteWaiting(const WatchedApplication& application, int index, Pass& pass);

    void remember(Pass& pass);
    void publish(Pass& pass);
    template <typename Detection>
    [[nodiscard]] MeetingReach reachOf(const Detection& detection) const;

    void schedulePass();
    void scheduleMissedPass();
    void performMissedPass();

    MainLoop& loop;
    Applications& applications;
    AccessibilityTree& tree;
    Log& log;

    const Seconds pollInterval{5.0};

    Timer pollTimer;
    Subscription readyObserver;
    Subscription readObserver;
    bool isScanning = false;
    bool isMissedPassScheduled = false;
    std::map<std::string, std::shared_ptr<const ReadingPlan>> plans; ///< by bundle identifier
    MeetingWindowWalks walks;
    std::set<WindowKey> failingWindows; ///< that have been logged
    std::set<WindowKey> waitingWindows; ///< that the last pass found not read yet
    Retention<ParticipantBotDetection> retainedBots;
    Retention<RecordingIndicatorDetection> retainedIndicators;
    ProcessesByPlatform knownActiveMeetingPIDs; ///< in which there was a meeting; while they run
    std::map<std::string_view, bool> platformWindowsAccessible; ///< in the last pass

    Lifetime lifetime; // goes first, after the subscription that uses it
    Subscription permissionObserver;
};

} // namespace quorva
