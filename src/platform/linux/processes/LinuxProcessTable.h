// The processes in /proc (proc(5)), and their ends by process file descriptors (pidfd_open(2)).
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

/// Reads every process's executable link once a turn of the main loop, and everything else on
/// request. The results are cached for as long as a process runs the same executable. A failure is
/// logged when it begins.
class LinuxProcessTable final : public ProcessTable {
public:
    /// A process in this turn's snapshot.
    struct Process {
        ProcessIdentifier identifier = 0;
        std::uint64_t instance = 0; ///< inode of its /proc folder, which no later process shares
        Executable::Status status = Executable::Status::none;
        std::string link;                 ///< bytes of /proc/PID/exe
        std::string executable;           ///< where the link leads
        bool interprets = false;          ///< `executable` is a general interpreter
        std::string program;              ///< the script it interprets, else `executable`
        unsigned looks = 0;               ///< how often it has been seen with this executable
        std::optional<Ancestry> ancestry; ///< once requested
    };

    LinuxProcessTable(MainLoop& loop, Log& log, std::filesystem::path procRoot = "/proc");

    [[nodiscard]] std::optional<std::vector<ProcessIdentifier>> processIdentifiers() override;
    [[nodiscard]] Executable executable(ProcessIdentifier process) override;
    [[nodiscard]] Subscription onExit(ProcessIdentifier process, Task callback) override;

    /// All processes, by identifier; null when they could not be listed. Valid in this turn.
    [[nodiscard]] const std::vector<Process>* look();

    /// The listed process with this identifier; null when there is none. Valid in this turn.
    [[nodiscard]] const Process* find(ProcessIdentifier process);

    /// The parent and start of a listed process; nothing when they cannot be read.
    [[nodiscard]] std::optional<Ancestry> ancestry(ProcessIdentifier process);

    /// The first 64 KiB of a file in the process's folder in /proc; nothing when it cannot be
    /// read.
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
