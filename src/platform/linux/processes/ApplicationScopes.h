// The applications that the systemd user manager has started, by process: the control groups of the
// user's "app.slice" (systemd's "Desktop Environment Integration"). Main thread only.
#pragma once

#include "platform/ProcessTable.h"
#include "platform/linux/processes/ProcFormats.h"

#include <filesystem>
#include <string>
#include <unordered_map>

namespace quorva {

class ApplicationScopes {
public:
    /// Reads nothing yet. `cgroupRoot` is where the control groups are mounted; the unified
    /// hierarchy and the older ones are both understood.
    explicit ApplicationScopes(std::filesystem::path cgroupRoot = "/sys/fs/cgroup",
                               std::uint32_t user = ownUser());

    [[nodiscard]] static std::uint32_t ownUser();

    struct Scope {
        std::string unit;
        UnitApplication application;
    };
    using Members = std::unordered_map<ProcessIdentifier, std::shared_ptr<const Scope>>;

    /// The processes that belong to an application now. Empty without a systemd user manager.
    /// Costs in proportion to the applications, not to the processes.
    [[nodiscard]] Members read() const;

private:
    [[nodiscard]] std::filesystem::path applicationSlice() const;

    const std::filesystem::path cgroupRoot;
    const std::uint32_t user;
};

} // namespace quorva
