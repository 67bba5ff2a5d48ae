// What the events of a calendar come to in a period: series expanded, moved occurrences in their
// places, cancelled ones left out.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/linux/Handles.h"

#include <set>
#include <string>
#include <vector>

struct _ECalClient;
struct _ECalComponent;

namespace quorva {

/// What the events of one calendar are to be read with.
struct EdsReadingContext {
    _ECalClient* client = nullptr; ///< knows the calendar's time zones; asking it may block
    std::string calendarName;
    std::set<std::string> ownAddresses; ///< in lower case
    Time start;
    Time end;
};

using EdsComponents = std::vector<GObjectPtr<_ECalComponent>>;

/// The occurrences of one event that overlap the period: of a single one, or of a series with all
/// of its changed occurrences. On a worker thread: blocks while the calendar is asked for a time
/// zone, until `cancellable` is cancelled.
[[nodiscard]] std::vector<CalendarEvent> occurrencesOf(const EdsComponents& event,
                                                       const EdsReadingContext& context,
                                                       GCancellable* cancellable);

} // namespace quorva
