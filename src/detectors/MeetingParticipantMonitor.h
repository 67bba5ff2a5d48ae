// Finds note-takers among the participants of the user's meetings, and banners that tell of a
// recording or an assistant: looks at what the windows of meeting applications and browsers show
// to a screen reader, keeps what it found through gaps, and tells its owner what appears and what
// is gone. Main thread only. What is read of the windows is not stored.
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

/// A window, or an application with all its windows, that a pass could not look at.
struct UnreadMeetingWindow {
    ProcessIdentifier processIdentifier = 0;
    std::string applicationName;
    std::string windowTitle; ///< empty: the application as a whole, or a window without a title
    std::string problem;     ///< empty: it has not been read yet

    bool operator==(const UnreadMeetingWindow&) const = default;
};

/// What the last pass could look at, so that "found nothing" and "could not look" stay apart.
struct MeetingCoverage {
    std::size_t applications = 0;                ///< that run and may hold meetings
    std::size_t windows = 0;                     ///< of meetings, that were looked at
    std::size_t cutShort = 0;                    ///< of these, how many hold more than is looked at
    std::vector<UnreadMeetingWindow> unread;     ///< could not be read, or showed nothing
    std::vector<UnreadMeetingWindow> notReadYet; ///< still to be read

    bool operator==(const MeetingCoverage&) const = default;
};

class MeetingParticipantMonitor {
public:
    /// The services must outlive the monitor. Nothing is looked at yet.
    MeetingParticipantMonitor(MainLoop& loop, Applications& applications, AccessibilityTree& tree,
                              Log& log);

    /// The bots of the last pass, the highest confidence first, then those kept from earlier ones.
    Published<std::vector<ParticipantBotDetection>, MeetingParticipantMonitor>
        participantBotDetections;
    /// The banners of the last pass, then those kept from earlier ones.
    Published<std::vector<RecordingIndicatorDetection>, MeetingParticipantMonitor>
        recordingIndicators;
    /// Whether passes come by themselves.
    Published<bool, MeetingParticipantMonitor> isMonitoring{false};
    /// Whether windows may be read, as it was last looked up. This is its one home: everything else
    /// observes it. Followed as the service tells of changes.
    Published<bool, MeetingParticipantMonitor> hasAccessibilityPermission;
    /// The platform whose meeting window the last pass found last.
    Published<std::optional<std::string>, MeetingParticipantMonitor> activeMeetingPlatform;
    /// When the last pass ended.
    Published<std::optional<Time>, MeetingParticipantMonitor> lastScanDate;
    /// What the last pass could look at.
    Published<MeetingCoverage, MeetingParticipantMonitor> coverage;

    /// A participant that is listed for the first time in a row is a bot, or a bot is listed under
    /// another wording. Called within a pass, before the list changes; may be empty.
    std::function<void(const ParticipantBotDetection&)> onBotDetected;
    /// A bot is no longer listed, or no longer under this wording. Called as above.
    std::function<void(const ParticipantBotDetection&)> onBotDisappeared;
    /// The same of banners.
    std::function<void(const RecordingIndicatorDetection&)> onRecordingIndicatorDetected;
    std::function<void(const RecordingIndicatorDetection&)> onRecordingIndicatorDisappeared;

    /// Looks up whether windows may be read.
    void refreshPermission();

    /// Switches the session's accessibility on, at the user's wish.
    void requestPermission();

    /// Starts a pass as a task of its own, then one every 5 seconds, and one when windows have been
    /// read that the last pass missed. Does nothing when monitoring already, or without permission.
    void startMonitoring();

    /// Ends that, and the reading of windows. What was detected stays listed.
    void stopMonitoring();

    /// One pass over the windows as they were last read, and a request to go on reading them.
    /// Returns at once without permission, when called from within a pass, by a callback, and while
    /// the applications cannot be listed yet.
    void performScan();

    /// Asks for the windows to be read, without a pass. Whether a pass would find each of them read
    /// or not readable, so that waiting longer gains nothing.
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

    Lifetime lifetime; // goes first but for what is made with it
    Subscription permissionObserver;
};

} // namespace quorva
