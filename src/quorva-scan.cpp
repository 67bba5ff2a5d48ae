// quorva-scan: looks for note-takers and recorders from the command line, for scripts, servers and
// support. Puts the Linux services together and hands them to the scan.
#include "log/ProgramLog.h"
#include "platform/linux/accessibility/AtspiAccessibilityTree.h"
#include "platform/linux/calendars/LinuxCalendarStore.h"
#include "platform/linux/drill/DrillMode.h"
#include "platform/linux/drill/LinuxDrillStandIns.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "platform/linux/processes/DesktopEntries.h"
#include "platform/linux/processes/LinuxApplications.h"
#include "platform/linux/processes/LinuxProcessTable.h"
#include "platform/linux/processes/SystemdUnitSignals.h"
#include "platform/linux/storage/JournalLog.h"
#include "platform/linux/storage/JsonPreferences.h"
#include "platform/linux/storage/LinuxFileSystem.h"
#include "platform/linux/storage/LinuxWholeFile.h"
#include "platform/linux/storage/OpenSslSha256.h"
#include "scan/Scan.h"
#include "scan/SelfTestReport.h"

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

/// Naming the calendars on the command line is the user's consent to looking at them.
CalendarConsent consentOf(const ScanOptions& options) {
    CalendarConsent consent;
    if (!options.namesSources)
        consent.status = [] { return CalendarAuthorization::notDetermined; };
    return consent;
}

/// The services of this computer, as one look or a watch needs them.
struct LinuxServices {
    explicit LinuxServices(const ScanOptions& options)
        : calendars(loop, log, places, consentOf(options),
                    [own = places.ownAddresses] { return own; }) {}

    GLibMainLoop loop;
    QuorvaLog log{loop, std::make_shared<JournalLog>()};
    LinuxProcessTable processTable{loop, log};
    DesktopEntries entries{loop, log, DesktopEntries::standardPlaces()};
    LinuxApplications applications{loop, processTable, entries, ApplicationScopes()};
    const CalendarPlaces places =
        findCalendarPlaces(LinuxWholeFile(JsonPreferences::standardPath()));
    LinuxCalendarStore calendars;
    AtspiAccessibilityTree accessibility;
    Platform platform{loop,      log,           processTable, applications,
                      calendars, accessibility, openSslSha256};
};

int lookOnce(const ScanOptions& options, LinuxServices& services) {
    Scan scan(options, services.platform);
    ScanReport report;
    scan.look([&](ScanReport found) {
        report = std::move(found);
        services.loop.quit();
    });
    services.loop.run();
    print(stdout, options.json ? dump(report.toJson()) + "\n" : report.toText());
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
    startLogFile(services.log, std::make_shared<LinuxFileSystem>(), services.loop,
                 g_get_user_state_dir(), {QUORVA_VERSION, QUORVA_BUILD, ::getpid()});
    std::optional<SystemdUnitSignals> units;
    if (auto bus = sessionBus()) {
        g_dbus_connection_set_exit_on_close(bus.get(), FALSE);
        units.emplace(
            std::move(bus), [&] { services.applications.noteLaunch(); },
            [&] { services.applications.noteQuit(); });
    }
    Scan scan(options, services.platform);
    int status = 0;
    const auto print = [](const Printable& line) {
        quorva::print(stdout, line + "\n");
        std::fflush(stdout);
    };
    scan.watch(print, [&](const std::vector<SourceReport>& reports) {
        const auto isWatched = [](const SourceReport& report) {
            return report.isOk() || report.state == SourceState::Kind::partlyBlind;
        };
        for (const auto& report : reports)
            if (!report.isOk())
                quorva::print(stderr,
                              Printable::format("quorva-scan: the source {} is not watched: {}\n",
                                                report.source, report.detail));
        if (std::none_of(reports.begin(), reports.end(), isWatched)) {
            status = notLookedAt;
            quit();
        }
    });
    services.loop.run();
    return status;
}

/// When it is interrupted, it removes its stand-ins and reports that not everything was tried.
int selfTest(const ScanOptions& options, LinuxServices& services) {
    const auto quit = [&] { services.loop.quit(); };
    const auto onInterrupt = GLibMainLoop::onSignal(SIGINT, quit);
    const auto onTerminate = GLibMainLoop::onSignal(SIGTERM, quit);
    LinuxDrillStandIns standIns(services.loop, services.calendars);
    SelfTest test(services.platform, standIns);
    int status = notLookedAt;
    test.run(
        linksOf(options.sources),
        [&](const DrillFinding& finding) {
            if (options.json)
                return;
            print(stdout, describeLink(finding));
            std::fflush(stdout);
        },
        [&](const std::vector<DrillFinding>& findings) {
            status = selfTestStatus(findings);
            print(stdout, options.json ? dump(selfTestToJson(findings)) + "\n"
                                       : describeSelfTest(findings));
            quit();
        });
    services.loop.run();
    return status;
}

int run(const std::vector<std::string_view>& arguments) {
    if (const auto status = runAsDrillStandIn(arguments))
        return *status;
    const auto [options, problem] = parseScanOptions(arguments);
    if (!options) {
        print(stderr, Printable::format("quorva-scan: {}\n\n{}", problem, scanUsage()));
        return wrongUse;
    }
    if (options->help || options->version) {
        print(stdout, options->help ? scanUsage() : "quorva-scan " QUORVA_VERSION "\n");
        return 0;
    }
    LinuxServices services(*options);
    if (options->selfTest)
        return selfTest(*options, services);
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
        print(stderr, Printable::format("quorva-scan: {}\n", failure.what()));
        return wrongUse;
    }
}
