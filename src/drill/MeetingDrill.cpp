#include "drill/MeetingDrill.h"

#include "detectors/Remedies.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr auto hostIdentifier = "us.zoom.xos";
constexpr auto title = "Quorva drill: Zoom Meeting";
constexpr auto participant = "Drill Notetaker"; // matched by the rules for unknown products

} // namespace

std::vector<RunningApplication> DrillApplications::runningApplications() {
    const auto processes = processTable.processIdentifiers();
    if (!processes || !std::binary_search(processes->begin(), processes->end(), standIn))
        return {};
    return {{.bundleIdentifier = hostIdentifier,
             .localizedName = "Quorva drill",
             .executablePath = std::nullopt,
             .processIdentifier = standIn}};
}

MeetingDrill::MeetingDrill(MainLoop& loop_, Log& log_, ProcessTable& processTable,
                           AccessibilityTree& accessibility_, DrillStandIns& standIns_)
    : Drill(loop_, DrillLink::meeting),
      log(log_),
      accessibility(accessibility_),
      standIns(standIns_),
      applications(processTable) {}

MeetingDrill::~MeetingDrill() {
    if (monitor)
        monitor->stopMonitoring();
}

void MeetingDrill::begin() {
    if (!accessibility.isTrusted())
        return fail({"read windows", remedies::accessibilityIsOff});
    standIn =
        standIns.showWindow(title, {"Ann Example", participant},
                            lifetime.guard([this](const RunningStandIn& shown) { look(shown); }));
}

void MeetingDrill::look(const RunningStandIn& shown) {
    if (!shown.problem.empty())
        return fail({"show a window", shown.problem});
    pass(fmt::format("showed a window (process {})", shown.process));
    applications.standIn = shown.process;
    monitor.emplace(loop, applications, accessibility, log);
    monitor->onBotDetected = [this](const ParticipantBotDetection& bot) { handle(bot); };
    monitor->startMonitoring();
}

void MeetingDrill::handle(const ParticipantBotDetection& bot) {
    if (bot.matchedParticipantName != participant)
        return;
    pass(fmt::format("read as a meeting in {}", bot.platformName));
    pass(fmt::format("matched \"{}\"", bot.matchedParticipantName));
    finish();
}

BrokenStep MeetingDrill::unfinished() {
    const std::string notRead = "read the window";
    if (!monitor)
        return {"show a window", "the accessibility bus does not answer: log in again, or restart "
                                 "it with \"systemctl --user restart at-spi-dbus-bus\""};
    const auto& looked = *monitor->coverage;
    if (!accessibility.isTrusted())
        return {notRead, remedies::accessibilityIsOff};
    if (looked.applications == 0)
        return {notRead, "the stand-in has ended or is hidden, or the processes can't be listed"};
    if (!looked.failed.empty())
        return {notRead, looked.failed.front().problem};
    if (looked.windows == 0)
        return {notRead, "no answer came through the accessibility bus: log in again, or restart "
                         "it with \"systemctl --user restart at-spi-dbus-bus\""};
    return {"match the participant",
            "the window was read, and nobody in it detected: this is a fault of the program, "
            "please report it"};
}

} // namespace quorva
