// Tests detection in meetings: a stand-in shows a meeting window with a bot among its participants,
// and the meeting monitor looks at it as if it were a meeting application's window.
#pragma once

#include "detectors/MeetingParticipantMonitor.h"
#include "drill/Drill.h"
#include "platform/DrillStandIns.h"

#include <optional>
#include <string>

namespace quorva {

/// Lists the stand-in as the only application, under the identifier of a meeting application. No
/// other code takes it for one.
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
    /// The services must outlive the drill. It replaces the requests made of `accessibility` while
    /// it runs, so a monitor that runs meanwhile needs a tree of its own.
    MeetingDrill(MainLoop& loop, Log& log, ProcessTable& processTable,
                 AccessibilityTree& accessibility, DrillStandIns& standIns);
    ~MeetingDrill() override;

private:
    void begin() override;
    [[nodiscard]] BrokenStep unfinished() override;
    void look(const RunningStandIn& shown);
    void handle(const ParticipantBotDetection& bot);

    Log& log;
    AccessibilityTree& accessibility;
    DrillStandIns& standIns;
    DrillApplications applications;
    std::optional<MeetingParticipantMonitor> monitor;
    Subscription standIn;
};

} // namespace quorva
