#include "platform/linux/processes/LinuxProcessTable.h"

#include "platform/linux/glib/GLibMainLoop.h"
#include "platform/linux/glib/ReadFile.h"

#include <fmt/compile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <fcntl.h>
#include <sys/syscall.h>

namespace quorva {
namespace {

/// "PID/FILE", relative to /proc.
struct ProcPath {
    ProcPath(ProcessIdentifier process, std::string_view file) {
        *fmt::format_to_n(text.data(), text.size() - 1, FMT_COMPILE("{}/{}"), process, file).out =
            '\0';
    }
    std::array<char, 64> text{};
};

std::optional<ProcessIdentifier> identifierOf(const char* name) {
    ProcessIdentifier identifier = 0;
    const char* const end = name + std::char_traits<char>::length(name);
    const auto [stop, error] = std::from_chars(name, end, identifier);
    return error == std::errc{} && stop == end ? std::optional(identifier) : std::nullopt;
}

/// Updates `wasFailing`; true when a failure begins, so that it is logged once.
bool beginsToFail(bool& wasFailing, bool fails) {
    return !std::exchange(wasFailing, fails) && fails;
}

} // namespace

LinuxProcessTable::LinuxProcessTable(MainLoop& loop_, Log& log_, std::filesystem::path procRoot_)
    : loop(loop_), log(log_), procRoot(std::move(procRoot_)) {}

std::optional<std::vector<ProcessIdentifier>> LinuxProcessTable::processIdentifiers() {
    if (!look())
        return std::nullopt;
    std::vector<ProcessIdentifier> identifiers;
    identifiers.reserve(processes.size());
    for (const auto& process : processes)
        identifiers.push_back(process.identifier);
    return identifiers;
}

Executable LinuxProcessTable::executable(ProcessIdentifier process) {
    const auto* const found = find(process);
    return found ? Executable{found->status, found->program} : Executable{};
}

Subscription LinuxProcessTable::onExit(ProcessIdentifier process, Task callback) {
    FileDescriptor pidfd(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    return pidfd ? GLibMainLoop::onReadable(std::move(pidfd), std::move(callback)) : Subscription();
}

const std::vector<LinuxProcessTable::Process>* LinuxProcessTable::look() {
    if (!isCurrent) {
        const auto listed = list();
        isListed = listed.has_value();
        if (beginsToFail(complainedOfListing, !isListed))
            log.error(Printable::format("The processes can't be listed: {} can't be read",
                                        procRoot.string()),
                      logCategory::appState);
        if (listed) {
            std::vector<Process> next;
            update(next, *listed);
            processes = std::move(next);
        }
        isCurrent = true;
        loop.post(lifetime.guard([this] { isCurrent = false; }));
    }
    return isListed ? &processes : nullptr;
}

const LinuxProcessTable::Process* LinuxProcessTable::find(ProcessIdentifier process) {
    return look() ? findMutable(process) : nullptr;
}

std::optional<Ancestry> LinuxProcessTable::ancestry(ProcessIdentifier process) {
    auto* const found = look() ? findMutable(process) : nullptr;
    if (!found)
        return std::nullopt;
    if (!found->ancestry)
        if (const auto stat = read(process, "stat"))
            found->ancestry = parseStat(*stat);
    return found->ancestry;
}

std::optional<std::string> LinuxProcessTable::read(ProcessIdentifier process,
                                                   std::string_view file) {
    const ProcPath path(process, file);
    const FileDescriptor fd(::openat(::dirfd(directory.get()), path.text.data(),
                                     O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!fd)
        return std::nullopt;
    std::error_code ignored;
    return readUpTo(fd, std::size_t{64} * 1024, ignored);
}

LinuxProcessTable::Process* LinuxProcessTable::findMutable(ProcessIdentifier process) {
    const auto found =
        std::lower_bound(processes.begin(), processes.end(), process,
                         [](const Process& p, ProcessIdentifier id) { return p.identifier < id; });
    return found != processes.end() && found->identifier == process ? &*found : nullptr;
}

std::optional<std::vector<LinuxProcessTable::Listed>> LinuxProcessTable::list() {
    if (directory)
        ::rewinddir(directory.get());
    else
        directory.reset(::opendir(procRoot.c_str()));
    if (!directory)
        return std::nullopt;
    std::vector<Listed> listed;
    listed.reserve(processes.size() + 64);
    while (const auto* const entry = ::readdir(directory.get()))
        if (const auto identifier = identifierOf(entry->d_name))
            listed.push_back({*identifier, entry->d_ino});
    if (listed.empty()) { // not even this process: it is not a process list
        directory.reset();
        return std::nullopt;
    }
    const auto byIdentifier = [](const Listed& a, const Listed& b) {
        return a.identifier < b.identifier;
    };
    if (!std::is_sorted(listed.begin(), listed.end(), byIdentifier))
        std::sort(listed.begin(), listed.end(), byIdentifier);
    return listed;
}

/// Fills `next` with the listed processes, and moves there the cached results of those that were
/// listed before.
void LinuxProcessTable::update(std::vector<Process>& next, const std::vector<Listed>& listed) {
    next.reserve(listed.size());
    unreadableLinks = 0;
    auto before = processes.begin();
    std::size_t denied = 0;
    for (const auto& [identifier, instance] : listed) {
        while (before != processes.end() && before->identifier < identifier)
            ++before;
        const bool isKnown = before != processes.end() && before->identifier == identifier &&
                             before->instance == instance;
        auto& process = next.emplace_back(isKnown ? std::move(*before) : Process{});
        process.identifier = identifier;
        process.instance = instance;
        readExecutable(process);
        denied += process.status == Executable::Status::denied;
    }
    if (beginsToFail(complainedOfDenied, denied > 0))
        log.notice(
            Printable::format("{} of {} processes keep their executable to themselves (other "
                              "users' or protected): they are not looked at",
                              denied, next.size()),
            logCategory::appState);
    if (beginsToFail(complainedOfLinks, unreadableLinks > 0))
        log.notice(
            Printable::format("The executable paths of {} processes are too long or damaged: they "
                              "are not looked at",
                              unreadableLinks),
            logCategory::appState);
}

void LinuxProcessTable::readExecutable(Process& process) {
    const ProcPath path(process.identifier, "exe");
    std::array<char, PATH_MAX + 1> buffer; // NOLINT(*-member-init): filled by readlinkat
    const auto length =
        ::readlinkat(::dirfd(directory.get()), path.text.data(), buffer.data(), buffer.size());
    if (length <= 0) {
        const bool isGone = length == 0 || errno == ENOENT || errno == ESRCH;
        if (!isGone && errno != EACCES && errno != EPERM)
            ++unreadableLinks;
        process.status = isGone ? Executable::Status::none : Executable::Status::denied;
        process.link.clear();
        process.executable.clear();
        process.program.clear();
        process.interprets = false;
        return;
    }
    const std::string_view link(buffer.data(), static_cast<std::size_t>(length));
    if (process.status != Executable::Status::read || process.link != link) {
        process.status = Executable::Status::read;
        process.link = link;
        process.executable = executableOfLink(link);
        process.interprets = isInterpreter(process.executable);
        process.program = process.executable;
        process.looks = 0;
    }
    const bool isDue = process.looks < 10 || process.looks % 10 == 0;
    ++process.looks;
    if (process.interprets && isDue)
        readScript(process);
}

void LinuxProcessTable::readScript(Process& process) {
    const auto commandLine = read(process.identifier, "cmdline");
    const auto script = commandLine
                            ? scriptOfCommand(process.executable, splitAtZeros(*commandLine))
                            : std::nullopt;
    process.program = script.value_or(process.executable);
}

} // namespace quorva
