// Opens a calendar of Evolution Data Server, follows its changes and reads a period of it, through
// the service's blocking calls.
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

/// An open calendar; it is closed, without waiting, when this goes. Callable from any thread.
struct EdsConnection {
    GObjectPtr<_ECalClient> client;
    GObjectPtr<_ECalClientView> view; ///< tells of changes; null when the calendar has none
};

/// What one reading of a calendar needs, and has to itself.
struct EdsRequest {
    EdsCalendar calendar;
    std::shared_ptr<const EdsConnection> connection; ///< null: open the calendar
    Time start;
    Time end;
    Task onChange; ///< on the main loop, after events were added, changed or removed
    Task onGone;   ///< on the main loop, when the process that serves the calendar has ended
};

struct EdsReading {
    std::shared_ptr<const EdsConnection> connection; ///< null when it is not to be used again
    std::vector<CalendarEvent> events;
    std::optional<std::string> failure; ///< why the calendar could not be read
};

/// Reads the occurrences that overlap the period. On a worker thread: blocks until the service has
/// answered or `cancellable` is cancelled. A connection that has broken is made anew once. The two
/// tasks of the request belong to the connection and are called while that lasts.
[[nodiscard]] EdsReading readEdsCalendar(const EdsRequest& request, GCancellable* cancellable);

} // namespace quorva
