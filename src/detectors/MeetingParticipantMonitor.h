// Finds note-takers among the participants of the user's meetings, and banners that announce a
// recording or an assistant. Looks at the texts that the windows of meeting applications and
// browsers expose to screen readers, keeps detections through gaps, and calls its owner when one
// appears or is gone. Main thread only. The texts of the windows are not stored.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "catalogue/Records.h"
#include "detectors/MeetingPass.h"
#include "detectors/MeetingWindowWalks.h"
#include "detectors/MeetingWindows.h"
#include "detectors/Retention.h"
#include "detectors/SightLosses.h"
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
#include <vector>

namespace quorva {

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
    /// The platform of the last meeting that the last pass found.
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

    /// Called when a meeting has gone out of sight, as `SightLosses` decides. As above.
    std::function<void(const UnseenMeeting&)> onSightLost;

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
    /// nothing within a pass, and while the applications cannot be listed yet. Without permission,
    /// it looks at nothing, and what was listed goes after its grace period.
    void performScan();

    /// Requests the windows to be read, without a pass. True once every window has been read or has
    /// failed, which means that waiting longer gains nothing.
    bool readAhead();

private:
    void enable(const std::vector<MeetingApplication>& present);
    void say(LogLevel level, const Printable& message);
    void request(const std::vector<MeetingApplication>& present);
    const std::shared_ptr<const ReadingPlan>& planFor(const std::string& bundleIdentifier);

    void remember(MeetingPass::Results& pass);
    void publish(MeetingPass::Results pass);
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
    const Seconds missInterval{4.5}; ///< shorter than a poll interval that comes early

    Timer pollTimer;
    Subscription readyObserver;
    Subscription readObserver;
    bool isScanning = false;
    bool isMissedPassScheduled = false;
    std::map<std::string, std::shared_ptr<const ReadingPlan>> plans; ///< by bundle identifier
    MeetingWindowWalks walks;
    std::set<MeetingKey> waitingWindows; ///< that the last pass found not read yet
    std::map<std::string, Time> said;    ///< what was logged lately, and when there was cause last
    SightLosses sightLosses;
    Retention<ParticipantBotDetection> retainedBots{missInterval};
    Retention<RecordingIndicatorDetection> retainedIndicators{missInterval};
    /// The processes in which there was a meeting, by platform, while they run.
    std::map<std::string_view, std::set<ProcessIdentifier>> knownActiveMeetingPIDs;
    std::set<std::string_view> accessiblePlatforms; ///< with a meeting that the last pass looked at
    std::set<std::string_view> hiddenPlatforms;     ///< with one that it knows by its title only

    Lifetime lifetime; // goes first, after the subscription that uses it
    Subscription permissionObserver;
};

} // namespace quorva
