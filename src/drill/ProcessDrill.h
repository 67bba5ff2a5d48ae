// Tries the way from a running program to its detection: starts a stand-in, has the process monitor
// look for it with a catalogue of that one row.
#pragma once

#include "detectors/ProcessMonitor.h"
#include "drill/Drill.h"
#include "platform/DrillStandIns.h"

#include <memory>
#include <string>

namespace quorva {

class ProcessDrill final : public Drill {
public:
    /// The services must outlive the drill. `name` is the stand-in's, known to no catalogue.
    ProcessDrill(MainLoop& loop, Applications& applications, ProcessTable& processTable,
                 DrillStandIns& standIns, std::string name);

private:
    void begin() override;
    [[nodiscard]] BrokenStep unfinished() override;
    void look(const RunningStandIn& started);
    void take(const DetectedBot& bot);

    ProcessTable& processTable;
    DrillStandIns& standIns;
    const std::string name;
    const BotSignatureDatabase catalogue;
    ProcessMonitor monitor;
    ProcessIdentifier process = 0; ///< 0: the stand-in does not run yet
    Subscription standIn;
};

} // namespace quorva
