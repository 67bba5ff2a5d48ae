// Stand-ins in memory: they come and go in the computer that a test has made up, as well or as
// badly as the test says.
#pragma once

#include "base/MainLoop.h"
#include "platform/DrillStandIns.h"
#include "support/AccessibleElements.h"
#include "support/FakeAccessibilityTree.h"
#include "support/FakeCalendarStore.h"
#include "support/FakeProcesses.h"

#include <optional>
#include <utility>

namespace quorva {

class FakeDrillStandIns final : public DrillStandIns {
public:
    FakeDrillStandIns(MainLoop& loop_, FakeProcessTable& processes_, FakeAccessibilityTree& tree_)
        : loop(loop_), processes(processes_), tree(tree_) {}

    static constexpr ProcessIdentifier process = 4711;

    bool isAnswering = true; ///< false: what is asked for never comes
    std::string problem;     ///< not empty: it can't be put up
    bool isHidden = false;   ///< the process is not listed
    Executable::Status executable = Executable::Status::read;
    std::optional<std::string> otherName;        ///< that the program runs under instead
    std::optional<std::string> otherAttendee;    ///< who is invited instead
    std::optional<std::string> otherParticipant; ///< who is shown instead of the last one
    std::string windowProblem;
    bool isWindowAnswering = true;
    CalendarServiceState service = CalendarServiceState::answers;
    bool isServiceAnswering = true;
    FakeCalendarStore calendar;

    std::vector<std::string> put; ///< what was put up so far
    int present = 0;              ///< how much is there now

    Subscription startProgram(const std::string& name,
                              std::function<void(const RunningStandIn&)> done) override {
        return putUp("program", [this, name, done = std::move(done)] {
            appear("/tmp/" + otherName.value_or(name));
            done({.process = problem.empty() ? process : 0, .problem = problem});
        });
    }

    Subscription showWindow(const std::string& title, const std::vector<std::string>& participants,
                            std::function<void(const RunningStandIn&)> done) override {
        auto shown = participants;
        if (otherParticipant)
            shown.back() = *otherParticipant;
        return putUp("window", [this, title, shown, done = std::move(done)] {
            appear("/usr/bin/quorva-scan");
            tree.applications[process].windows = {{.title = title,
                                                   .tree = meetingWindow(shown),
                                                   .problem = windowProblem,
                                                   .isAnswering = isWindowAnswering}};
            done({.process = problem.empty() ? process : 0, .problem = problem});
        });
    }

    Subscription writeCalendar(const DrillEvent& event,
                               std::function<void(const CalendarStandIn&)> done) override {
        return putUp("calendar", [this, event, done = std::move(done)] {
            calendar.events.push_back(
                {.eventIdentifier = event.identifier,
                 .title = "Drill",
                 .start = event.start,
                 .end = event.end,
                 .attendees = {{std::nullopt, "mailto:" + otherAttendee.value_or(event.attendee)}},
                 .calendarName = "Drill"});
            done({problem.empty() ? &calendar : nullptr, problem});
        });
    }

    Subscription askCalendarService(std::function<void(CalendarServiceState)> done) override {
        if (isServiceAnswering)
            loop.post([this, done = std::move(done)] { done(service); });
        return {};
    }

private:
    Subscription putUp(const std::string& what, Task then) {
        put.push_back(what);
        ++present;
        const auto lifetime = std::make_shared<Lifetime>();
        if (isAnswering)
            loop.post(lifetime->guard(std::move(then)));
        return Subscription([this, lifetime] {
            --present;
            processes.processes.erase(process);
            tree.applications.erase(process);
        });
    }

    void appear(const std::string& path) {
        if (!isHidden && problem.empty())
            processes.processes[process] = {executable, path};
    }

    MainLoop& loop;
    FakeProcessTable& processes;
    FakeAccessibilityTree& tree;
};

} // namespace quorva
