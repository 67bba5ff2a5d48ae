// A stand-in's process: this program in its stand-in mode, held by its standard input. It ends when
// that is closed, so that it does not outlive whoever started it, whatever becomes of that.
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
    /// Starts the program, and calls `done` once, on the main loop, when it has said that it is
    /// ready, or what keeps it from that. `isForbidden` tells that programs can't be run from where
    /// this one lies.
    DrillProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 std::function<void(const RunningStandIn&, bool isForbidden)> done);

    /// Ends it.
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
