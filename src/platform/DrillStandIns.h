// Harmless stand-ins for what the detectors look for, so that the whole way from a service of this
// computer to a detection can be tried: a program that does nothing, a calendar of its own, a
// window that lists made-up participants. None of them is taken for the real thing by anybody else.
#pragma once

#include "base/Subscription.h"
#include "platform/CalendarStore.h"
#include "platform/ProcessTable.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// A stand-in that runs, or why there is none.
struct RunningStandIn {
    ProcessIdentifier process = 0;
    std::string problem; ///< empty: it is there
};

/// A calendar with one event, as a store of calendars gives it out.
struct CalendarStandIn {
    CalendarStore* store = nullptr; ///< valid as long as the stand-in is there; null: it is not
    std::string problem;            ///< why it is not
};

/// The one event of a calendar.
struct DrillEvent {
    std::string identifier;
    Time start;
    Time end;
    std::string attendee; ///< an address, without "mailto:"
};

/// Whether the desktop's calendar service can be asked.
enum class CalendarServiceState {
    absent, ///< there is none, which is no fault: calendars may lie in folders
    silent, ///< there is one, and it does not answer as it should
    answers,
};

/// Main thread only; no operation waits. Each calls `done` once, on the main loop, never within the
/// call. What it has put up goes, files included, when the subscription is dropped, which also ends
/// the wait without a call; what goes is little, so that it is gone when that returns.
class DrillStandIns {
public:
    virtual ~DrillStandIns() = default;

    /// Runs a program that does nothing, as a copy of an executable under this file name.
    [[nodiscard]] virtual Subscription
    startProgram(const std::string& name, std::function<void(const RunningStandIn&)> done) = 0;

    /// Runs a program that shows a screen reader, and nobody else, one window with this title and
    /// this list of participants.
    [[nodiscard]] virtual Subscription
    showWindow(const std::string& title, const std::vector<std::string>& participants,
               std::function<void(const RunningStandIn&)> done) = 0;

    /// Writes a calendar with this event. The user's own calendars are no part of its store.
    [[nodiscard]] virtual Subscription
    writeCalendar(const DrillEvent& event, std::function<void(const CalendarStandIn&)> done) = 0;

    /// Asks whether the calendar service is there, and for none of its events. It is given 10
    /// seconds to answer.
    [[nodiscard]] virtual Subscription
    askCalendarService(std::function<void(CalendarServiceState)> done) = 0;
};

} // namespace quorva
