// A stand-in's process: this program in its stand-in mode. It ends when its standard input is
// closed, so it never outlives the process that started it, not even when that is killed.
#pragma once

#include "base/Lifetime.h"
#include "platform/DrillStandIns.h"
#include "platform/linux/glib/Handles.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// Main thread only; needs a loop that runs GLib's default main context.
class DrillProcess {
public:
    /// Starts the program and calls `done` once, on the main loop, when the program reports that it
    /// is ready or what went wrong. `isForbidden` says that programs may not be executed from its
    /// folder.
    DrillProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 std::function<void(const RunningStandIn&, bool isForbidden)> done);

    /// Ends the process.
    ~DrillProcess();

    DrillProcess(const DrillProcess&) = delete;
    DrillProcess& operator=(const DrillProcess&) = delete;

private:
    void listen();
    void hear(const std::string& line);

    const std::function<void(const RunningStandIn&, bool)> done;
    GObjectPtr<GSubprocess> process;
    GObjectPtr<GDataInputStream> output;
    Lifetime lifetime;
};

} // namespace quorva
