// The processes as /proc shows them (proc(5)), and their ends as process file descriptors tell them
// (pidfd_open(2)).
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/Log.h"
#include "platform/ProcessTable.h"
#include "platform/linux/glib/Handles.h"
#include "platform/linux/processes/ProcFormats.h"

#include <filesystem>
#include <string_view>

namespace quorva {

/// Reads every process's executable link once a turn of the main loop, and nothing else unless it
/// is asked for. What a process is, is remembered for as long as it lives and runs the same
/// executable. A failure is logged when it first shows, and again after it has passed.
class LinuxProcessTable final : public ProcessTable {
public:
    /// One process as it was when this turn's look was taken.
    struct Process {
        ProcessIdentifier identifier = 0;
        std::uint64_t instance = 0; ///< inode of its /proc folder: another one, another process
        Executable::Status status = Executable::Status::none;
        std::string link;                 ///< bytes of /proc/PID/exe
        std::string executable;           ///< where the link leads
        bool interprets = false;          ///< `executable` is a general interpreter
        std::string program;              ///< the script it interprets, else `executable`
        unsigned looks = 0;               ///< how often it has been seen with this executable
        std::optional<Ancestry> ancestry; ///< once asked for
    };

    LinuxProcessTable(MainLoop& loop, Log& log, std::filesystem::path procRoot = "/proc");

    [[nodiscard]] std::optional<std::vector<ProcessIdentifier>> processIdentifiers() override;
    [[nodiscard]] Executable executable(ProcessIdentifier process) override;
    [[nodiscard]] Subscription onExit(ProcessIdentifier process, Task callback) override;

    /// All processes, by identifier; null when they could not be listed. Valid in this turn.
    [[nodiscard]] const std::vector<Process>* look();

    /// The listed process with this identifier; null when there is none. Valid in this turn.
    [[nodiscard]] const Process* find(ProcessIdentifier process);

    /// Where a listed process comes from; nothing when that cannot be read.
    [[nodiscard]] std::optional<Ancestry> ancestry(ProcessIdentifier process);

    /// The bytes of a file in the process's folder in /proc, at most 64 KiB; nothing when it cannot
    /// be read.
    [[nodiscard]] std::optional<std::string> read(ProcessIdentifier process, std::string_view file);

private:
    struct Listed {
        ProcessIdentifier identifier;
        std::uint64_t instance;
    };

    Process* findMutable(ProcessIdentifier process);
    std::optional<std::vector<Listed>> list();
    void update(std::vector<Process>& next, const std::vector<Listed>& listed);
    void readExecutable(Process& process);
    void readScript(Process& process);

    MainLoop& loop;
    Log& log;
    const std::filesystem::path procRoot;
    DirectoryPtr directory;
    std::vector<Process> processes; // by identifier; kept from look to look
    bool isListed = false;
    bool isCurrent = false;
    bool complainedOfListing = false;
    bool complainedOfDenied = false;
    bool complainedOfLinks = false;
    std::size_t unreadableLinks = 0;

    Lifetime lifetime;
};

} // namespace quorva
