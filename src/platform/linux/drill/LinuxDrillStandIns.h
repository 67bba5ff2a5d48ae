// The stand-ins of a self-test on Linux: child processes that run this program itself in a mode of
// its own, and an .ics file in a temporary folder.
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
    /// `program` is one that calls runAsDrillStandIn first of all, as this one does; `places` are
    /// the folders for temporary files, of which the first is taken in which programs may be run.
    /// The loop and the calendars must outlive this.
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

    /// The system's folder for temporary files, and the user's for what can be made anew.
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
