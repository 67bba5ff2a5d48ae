// quorva-scan: looks for note-takers and recorders from the command line, for scripts, servers and
// support. Puts the Linux services together and hands them to the scan.
#include "core/QuorvaLog.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/GLibMainLoop.h"
#include "platform/linux/JournalLog.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/SystemdUnitSignals.h"
#include "scan/Scan.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <unistd.h>

namespace {

using namespace quorva;

constexpr int wrongUse = 2;
constexpr int notLookedAt = 3;

/// The services of this computer, as one look or a watch needs them.
struct LinuxServices {
    GLibMainLoop loop;
    JournalLog journal;
    LinuxFileSystem files;
    QuorvaLog log{loop, journal};
    LinuxProcessTable processTable{loop, log};
    DesktopEntries entries{loop, log, DesktopEntries::standardPlaces()};
    LinuxApplications applications{loop, processTable, entries, ApplicationScopes()};
    Platform platform{loop, log, processTable, applications};
};

void startLogFile(LinuxServices& services) {
    const std::filesystem::path state = g_get_user_state_dir();
    services.log.bootstrap(std::make_shared<FileLogMirror>(
        services.files, services.loop, state / "Logs" / "Quorva",
        BuildInfo{QUORVA_VERSION, QUORVA_BUILD, ::getpid()},
        [](std::string_view message) { fmt::print(stderr, "{}\n", message); }));
}

int lookOnce(const ScanOptions& options, LinuxServices& services) {
    const auto report = look(options, services.platform);
    fmt::print("{}", options.json ? dump(report.toJson()) + "\n" : report.toText());
    return report.exitStatus();
}

/// The session bus; null where there is none.
GObjectPtr<GDBusConnection> sessionBus() {
    return GObjectPtr<GDBusConnection>(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
}

int watch(const ScanOptions& options, LinuxServices& services) {
    const auto quit = [&] { services.loop.quit(); };
    const auto onInterrupt = GLibMainLoop::onSignal(SIGINT, quit);
    const auto onTerminate = GLibMainLoop::onSignal(SIGTERM, quit);
    startLogFile(services);
    std::optional<SystemdUnitSignals> units;
    if (auto bus = sessionBus()) {
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
        units.emplace(
            std::move(bus), [&] { services.applications.noteLaunch(); },
            [&] { services.applications.noteQuit(); });
    }
    ScanWatch scanWatch(options, services.platform, [](const std::string& line) {
        fmt::print("{}\n", line);
        std::fflush(stdout);
    });
    const auto reports = scanWatch.start();
    for (const auto& report : reports)
        if (report.status != SourceStatus::ok)
            fmt::print(stderr, "quorva-scan: the source {} is not watched: {}\n",
                       nameOf(report.source), report.detail);
    const bool watchesSomething = std::any_of(
        reports.begin(), reports.end(), [](const auto& r) { return r.status == SourceStatus::ok; });
    if (!watchesSomething)
        return notLookedAt;

    services.loop.run();
    return 0;
}

int run(const std::vector<std::string_view>& arguments) {
    const auto [options, problem] = parseScanOptions(arguments);
    if (!options) {
        fmt::print(stderr, "quorva-scan: {}\n\n{}", problem, scanUsage());
        return wrongUse;
    }
    if (options->help || options->version) {
        fmt::print("{}", options->help ? scanUsage() : "quorva-scan " QUORVA_VERSION "\n");
        return 0;
    }
    LinuxServices services;
    return options->watch ? watch(*options, services) : lookOnce(*options, services);
}

} // namespace

int main(int count, char* texts[]) {
    try {
        const int status = run({texts + 1, texts + count});
        if (std::fflush(stdout) != 0)
            throw std::system_error(errno, std::system_category(), "the output can't be written");
        return status;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "quorva-scan: %s\n", failure.what());
        return wrongUse;
    }
}
