#include "platform/linux/accessibility/AtspiProcesses.h"

#include "platform/linux/glib/ReadFile.h"
#include "platform/linux/processes/ProcFormats.h"

#include <algorithm>
#include <array>
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
        process = parentOf(process);
    }
    const auto group = applicationGroup(proc / std::to_string(onBus));
    return !group.empty() && group == applicationGroup(proc / std::to_string(main));
}

/// 0 when it is not known.
ProcessIdentifier AtspiProcesses::parentOf(ProcessIdentifier process) const {
    const auto stat = contentOf(proc / std::to_string(process) / "stat");
    const auto ancestry = stat ? parseStat(*stat) : std::nullopt;
    return ancestry ? ancestry->parent : 0;
}

/// Empty when it is not known, and for interpreters.
std::string AtspiProcesses::programOf(ProcessIdentifier process) const {
    std::error_code error;
    auto program =
        std::filesystem::read_symlink(proc / std::to_string(process) / "exe", error).string();
    return isInterpreter(program) ? std::string() : program;
}

bool AtspiProcesses::runTheSame(ProcessIdentifier one, ProcessIdentifier other) const {
    const auto program = programOf(one);
    return !program.empty() && program == programOf(other);
}

/// Browsers start themselves with such options for their parts, whose parents may have ended.
bool AtspiProcesses::mayHaveWindows(ProcessIdentifier process) const {
    const auto line = contentOf(proc / std::to_string(process) / "cmdline").value_or("");
    if (line.empty())
        return false;
    constexpr std::array options{"--type=", "-contentproc", "-headless", "-backgroundtask"};
    return std::none_of(options.begin(), options.end(),
                        [&](const char* option) { return line.find(option) != std::string::npos; });
}

std::vector<ProcessIdentifier> AtspiProcesses::instancesOf(ProcessIdentifier main) const {
    std::vector<ProcessIdentifier> instances{main};
    const auto program = programOf(main);
    if (program.empty())
        return instances;
    std::error_code error;
    for (std::filesystem::directory_iterator at(proc, error), end; at != end; at.increment(error)) {
        const auto process = std::atoi(at->path().filename().c_str());
        if (error || process <= 0 || process == main || programOf(process) != program)
            continue;
        if (programOf(parentOf(process)) != program && mayHaveWindows(process))
            instances.push_back(process);
    }
    return instances;
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
