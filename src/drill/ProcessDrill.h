// Tests detection of processes: starts a stand-in, and runs the process monitor with a catalogue of
// one row.
#pragma once

#include "detectors/ProcessMonitor.h"
#include "drill/Drill.h"
#include "platform/DrillStandIns.h"

#include <memory>
#include <string>

namespace quorva {

class ProcessDrill final : public Drill {
public:
    /// The services must outlive the drill. `name` is the stand-in's; no catalogue contains it.
    ProcessDrill(MainLoop& loop, Applications& applications, ProcessTable& processTable,
                 DrillStandIns& standIns, std::string name);

private:
    void begin() override;
    [[nodiscard]] BrokenStep unfinished() override;
    void look(const RunningStandIn& started);
    void handle(const DetectedBot& bot);

    ProcessTable& processTable;
    DrillStandIns& standIns;
    const std::string name;
    const BotSignatureDatabase catalogue;
    ProcessMonitor monitor;
    ProcessIdentifier process = 0; ///< 0: the stand-in has not been started yet
    Subscription standIn;
};

} // namespace quorva
