// The self-test's stand-ins on Linux: child processes that run this program in its stand-in mode,
// and an .ics file in a temporary folder.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/DrillStandIns.h"
#include "platform/linux/calendars/LinuxCalendarStore.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace quorva {

class LinuxDrillStandIns final : public DrillStandIns {
public:
    /// `program` must call runAsDrillStandIn first, as this program does. `places` are folders for
    /// temporary files; the first one from which programs may be executed is used. The loop and the
    /// calendars must outlive this.
    LinuxDrillStandIns(MainLoop& loop, LinuxCalendarStore& calendars,
                       std::filesystem::path program = "/proc/self/exe",
                       std::vector<std::filesystem::path> places = temporaryPlaces());

    [[nodiscard]] Subscription
    startProgram(const std::string& name, std::function<void(const RunningStandIn&)> done) override;
    [[nodiscard]] Subscription showWindow(const std::string& title,
                                          const std::vector<std::string>& participants,
                                          std::function<void(const RunningStandIn&)> done) override;
    [[nodiscard]] Subscription
    writeCalendar(const DrillEvent& event,
                  std::function<void(const CalendarStandIn&)> done) override;
    [[nodiscard]] Subscription
    askCalendarService(std::function<void(CalendarServiceState)> done) override;

    /// The system's folder for temporary files, and the user's cache folder.
    [[nodiscard]] static std::vector<std::filesystem::path> temporaryPlaces();

private:
    struct Program;
    struct Calendar;

    void copyProgram(const std::weak_ptr<Program>& weak, std::size_t firstPlace);
    void runCopy(const std::weak_ptr<Program>& weak, std::size_t place);

    MainLoop& loop;
    LinuxCalendarStore& calendars;
    const std::filesystem::path program;
    const std::vector<std::filesystem::path> places;
    Lifetime lifetime;
};

} // namespace quorva
