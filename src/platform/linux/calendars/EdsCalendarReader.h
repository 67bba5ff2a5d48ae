// Opens a calendar of Evolution Data Server, follows its changes and reads a period of it, with the
// blocking calls of libecal.
#pragma once

#include "platform/linux/calendars/EdsSources.h"
#include "platform/linux/glib/Handles.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// NOLINTBEGIN(bugprone-reserved-identifier): the library's names
struct _ECalClient;
struct _ECalClientView;
// NOLINTEND(bugprone-reserved-identifier)

namespace quorva {

/// An open calendar. Closed without waiting when destroyed. Callable from any thread.
struct EdsConnection {
    GObjectPtr<_ECalClient> client;
    GObjectPtr<_ECalClientView> view; ///< reports changes; null when the calendar cannot
};

/// What one reading of a calendar needs. Owned by the reading.
struct EdsRequest {
    EdsCalendar calendar;
    std::shared_ptr<const EdsConnection> connection; ///< null: open the calendar
    Time start;
    Time end;
    Task onChange; ///< on the main loop, after events were added, changed or removed
    Task onGone;   ///< on the main loop, when the process that serves the calendar has ended
};

struct EdsReading {
    std::shared_ptr<const EdsConnection> connection; ///< null when it must not be used again
    std::vector<CalendarEvent> events;
    std::string losses;                 ///< what of it was not understood; empty: nothing
    std::optional<std::string> failure; ///< why the calendar could not be read
};

/// Reads the occurrences that overlap the period. For worker threads: blocks until the service has
/// answered or `cancellable` is cancelled. A broken connection is renewed once. The connection
/// keeps the request's two tasks and calls them for as long as it exists.
[[nodiscard]] EdsReading readEdsCalendar(const EdsRequest& request, GCancellable* cancellable);

} // namespace quorva
