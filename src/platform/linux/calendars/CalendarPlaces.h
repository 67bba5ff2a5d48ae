// Where the user keeps calendars in files: the usual folder, and the places that the preferences
// name; and who the user is in them.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/WholeFile.h"
#include "platform/linux/calendars/IcsFolderTree.h"

#include <vector>

namespace quorva {

struct CalendarPlaces {
    IcsPlaces files;
    std::vector<FailedCalendar> failed; ///< calendars whose places could not be found out
    std::vector<std::string> ownAddresses;
};

/// The folder "calendars" below XDG_DATA_HOME, and the lists "calendarFolders" and "myAddresses" in
/// the preferences, which are only read. Preferences that cannot be read, or in which the first is
/// not a list of texts, are reported as a calendar that could not be read. Waits for the disk.
[[nodiscard]] CalendarPlaces findCalendarPlaces(const WholeFile& preferences);

} // namespace quorva
