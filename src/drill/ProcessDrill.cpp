#include "drill/ProcessDrill.h"

#include "detectors/Remedies.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorva {
namespace {

constexpr int confidence = 95;

std::vector<BotSignature> onlyRow(const std::string& name) {
    return {BotSignature("quorva-drill", "Quorva drill", BotCategory::unknown, confidence, {name},
                         {}, {})};
}

} // namespace

ProcessDrill::ProcessDrill(MainLoop& loop_, Applications& applications, ProcessTable& processTable_,
                           DrillStandIns& standIns_, std::string name_)
    : Drill(loop_, DrillLink::process),
      processTable(processTable_),
      standIns(standIns_),
      name(std::move(name_)),
      catalogue(onlyRow(name)),
      monitor(loop_, applications, processTable_, catalogue) {}

void ProcessDrill::begin() {
    standIn = standIns.startProgram(
        name, lifetime.guard([this](const RunningStandIn& started) { look(started); }));
}

void ProcessDrill::look(const RunningStandIn& started) {
    if (!started.problem.empty())
        return fail({"start the stand-in", started.problem});
    process = started.process;
    pass(fmt::format("started a stand-in (process {})", process));
    monitor.onBotDetected = [this](const DetectedBot& bot) { handle(bot); };
    monitor.startMonitoring();
}

void ProcessDrill::handle(const DetectedBot& bot) {
    if (bot.processIdentifier != process)
        return;
    pass(fmt::format("listed among {} processes", monitor.coverage->processes));
    pass(fmt::format("matched \"{}\"", bot.matchedValue));
    finish();
}

BrokenStep ProcessDrill::unfinished() {
    if (process == 0)
        return {"start the stand-in", "it takes longer than 10 seconds: the disk may be busy"};
    const auto listed = processTable.processIdentifiers();
    if (!listed || listed->empty())
        return {"list the processes", remedies::processesCannotBeListed};
    if (!std::binary_search(listed->begin(), listed->end(), process))
        return {"list the processes",
                fmt::format("the stand-in, process {}, has ended or is hidden: programs in a "
                            "container or sandbox see no others, run this outside of it",
                            process)};
    const auto [status, path] = processTable.executable(process);
    if (status != Executable::Status::read)
        return {"read the executable of the stand-in",
                "the system does not let this program read /proc/PID/exe of the user's own "
                "processes: a security module or a sandbox may forbid it"};
    return {"match the stand-in",
            fmt::format("process {} was listed as \"{}\", and not detected: this is a fault of the "
                        "program, please report it",
                        process, path)};
}

} // namespace quorva
