// Tries the way from a participant in a meeting's window to its detection: has a stand-in show such
// a window, and has the meeting monitor look at it as if it were the meeting application's.
#pragma once

#include "detectors/MeetingParticipantMonitor.h"
#include "drill/Drill.h"
#include "platform/DrillStandIns.h"

#include <optional>
#include <string>

namespace quorva {

/// The stand-in as the only application, under a meeting application's identifier. Other looks at
/// the computer do not take it for one.
class DrillApplications final : public Applications {
public:
    /// The process table must outlive this.
    explicit DrillApplications(ProcessTable& processTable_) : processTable(processTable_) {}

    ProcessIdentifier standIn = 0;

    [[nodiscard]] std::vector<RunningApplication> runningApplications() override;
    [[nodiscard]] std::optional<std::string> ownBundleIdentifier() const override { return {}; }
    [[nodiscard]] Subscription onLaunch(Task) override { return {}; }
    [[nodiscard]] Subscription onQuit(Task) override { return {}; }

private:
    ProcessTable& processTable;
};

class MeetingDrill final : public Drill {
public:
    /// The services must outlive the drill. What is requested of `accessibility` is replaced for as
    /// long as the drill goes on: whoever monitors meetings meanwhile has another one.
    MeetingDrill(MainLoop& loop, Log& log, ProcessTable& processTable,
                 AccessibilityTree& accessibility, DrillStandIns& standIns);
    ~MeetingDrill() override;

private:
    void begin() override;
    [[nodiscard]] BrokenStep unfinished() override;
    void look(const RunningStandIn& shown);
    void take(const ParticipantBotDetection& bot);

    Log& log;
    AccessibilityTree& accessibility;
    DrillStandIns& standIns;
    DrillApplications applications;
    std::optional<MeetingParticipantMonitor> monitor;
    Subscription standIn;
};

} // namespace quorva
