// The calendars in folders of .ics files, read where they have changed and searched by time.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/linux/calendars/IcsFolderTree.h"
#include "platform/linux/calendars/IcsIndex.h"

#include <atomic>
#include <string>
#include <vector>

namespace quorva {

/// Not for the main thread: everything here waits for the disk. One thread at a time, but for
/// `reads` and `abandon`.
class IcsFolders {
public:
    using Hints = IcsHints;

    explicit IcsFolders(IcsPlaces places);

    struct Findings {
        CalendarWindow window;
        std::vector<CalendarSource> sources;
        std::vector<WatchedFolder> watch; ///< where changes matter from now on
        bool isUnsettled = false;         ///< a file was being written: look again in a few seconds
    };

    /// Reads what has changed and finds the events of the period.
    [[nodiscard]] Findings look(Time start, Time end, const Hints& hints);

    /// Finds out which calendars there are, without reading their files.
    [[nodiscard]] Findings list();

    /// Has a look that is under way return soon, with what it has. Any thread.
    void abandon() { isAbandoned = true; }

    /// How often files were read. Any thread.
    [[nodiscard]] std::size_t reads() const { return tree.reads(); }

private:
    void countCalendars(CalendarWindow& window) const;

    std::atomic<bool> isAbandoned = false;
    IcsFolderTree tree;
    IcsIndex index{isAbandoned};
};

} // namespace quorva
