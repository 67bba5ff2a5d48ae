#include "platform/linux/accessibility/AtspiProcesses.h"

#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/processes/ProcFormats.h"

#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace quorva {
namespace {

constexpr double timeToJoin = 15.0; // seconds
constexpr int maxGenerations = 64;

constexpr std::size_t mostBytes = 64UL * 1024;

std::optional<std::string> contentOf(const std::filesystem::path& path) {
    std::error_code error;
    return readWholeFile(path, mostBytes, error);
}

/// The systemd control group of the process's Flatpak application; empty for none.
std::string applicationGroup(const std::filesystem::path& process) {
    const auto groups = contentOf(process / "cgroup").value_or("");
    const auto start = groups.find("/app-flatpak-");
    return start == std::string::npos ? "" : groups.substr(start, groups.find('\n', start) - start);
}

} // namespace

AtspiProcesses::AtspiProcesses(std::filesystem::path proc_) : proc(std::move(proc_)) {}

bool AtspiProcesses::speaksFor(ProcessIdentifier onBus, ProcessIdentifier main) const {
    auto process = onBus;
    for (int generation = 0; generation < maxGenerations && process > 1; ++generation) {
        if (process == main)
            return true;
        const auto stat = contentOf(proc / std::to_string(process) / "stat");
        const auto ancestry = stat ? parseStat(*stat) : std::nullopt;
        process = ancestry ? ancestry->parent : 0;
    }
    const auto group = applicationGroup(proc / std::to_string(onBus));
    return !group.empty() && group == applicationGroup(proc / std::to_string(main));
}

bool AtspiProcesses::runTheSame(ProcessIdentifier one, ProcessIdentifier other) const {
    const auto programOf = [&](ProcessIdentifier process) {
        std::error_code error;
        return std::filesystem::read_symlink(proc / std::to_string(process) / "exe", error)
            .string();
    };
    const auto program = programOf(one);
    return !program.empty() && !isInterpreter(program) && program == programOf(other);
}

bool AtspiProcesses::isSettled(ProcessIdentifier process) const {
    const auto stat = contentOf(proc / std::to_string(process) / "stat");
    const auto ancestry = stat ? parseStat(*stat) : std::nullopt;
    const auto uptime = contentOf(proc / "uptime");
    if (!ancestry || !uptime)
        return true;
    const double started =
        static_cast<double>(ancestry->startTicks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
    return std::strtod(uptime->c_str(), nullptr) - started >= timeToJoin;
}

} // namespace quorva
