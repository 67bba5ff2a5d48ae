// Harmless stand-ins for what the detectors look for, to test the whole way from a service of this
// computer to a detection: a program that does nothing, a calendar of its own, and a window that
// lists made-up participants. No other program takes them for the real thing.
#pragma once

#include "base/Subscription.h"
#include "platform/CalendarStore.h"
#include "platform/ProcessTable.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// A running stand-in, or why there is none.
struct RunningStandIn {
    ProcessIdentifier process = 0;
    std::string problem; ///< empty: it runs
};

/// A calendar with one event, read through a calendar store.
struct CalendarStandIn {
    CalendarStore* store = nullptr; ///< valid as long as the stand-in; null: there is none
    std::string problem;            ///< why there is none
};

/// The one event of a calendar.
struct DrillEvent {
    std::string identifier;
    Time start;
    Time end;
    std::string attendee; ///< an address, without "mailto:"
};

/// Whether the desktop's calendar service answers.
enum class CalendarServiceState {
    absent, ///< not installed, which is not a fault: calendars may be in folders
    silent, ///< it exists, and does not answer as it should
    answers,
};

/// Main thread only; no operation waits. Each calls `done` once, on the main loop, never within the
/// call. Dropping the subscription cancels the operation and removes the stand-in with its files
/// before it returns; `done` is then not called.
class DrillStandIns {
public:
    virtual ~DrillStandIns() = default;

    /// Runs a program that does nothing, from a copy of an executable with this file name.
    [[nodiscard]] virtual Subscription
    startProgram(const std::string& name, std::function<void(const RunningStandIn&)> done) = 0;

    /// Runs a program that shows one window, with this title and these participants, to screen
    /// readers only.
    [[nodiscard]] virtual Subscription
    showWindow(const std::string& title, const std::vector<std::string>& participants,
               std::function<void(const RunningStandIn&)> done) = 0;

    /// Writes a calendar with this event. Its store contains none of the user's own calendars.
    [[nodiscard]] virtual Subscription
    writeCalendar(const DrillEvent& event, std::function<void(const CalendarStandIn&)> done) = 0;

    /// Asks whether the calendar service answers within 10 seconds, without reading any event.
    [[nodiscard]] virtual Subscription
    askCalendarService(std::function<void(CalendarServiceState)> done) = 0;
};

} // namespace quorva
