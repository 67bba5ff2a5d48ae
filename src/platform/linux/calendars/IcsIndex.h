// What the calendars in folders hold in the days ahead, so that a look at a period costs as much as
// there is in it and not as much as is stored.
#pragma once

#include "platform/linux/calendars/IcsFolderTree.h"
#include "platform/linux/icalendar/ICalendarReader.h"

#include <atomic>
#include <memory>
#include <unordered_map>
#include <vector>

namespace quorva {

/// Takes time, but does not wait for the disk. One thread at a time.
class IcsIndex {
public:
    /// `isAbandoned`, which must outlive this, ends `update` early.
    explicit IcsIndex(const std::atomic<bool>& isAbandoned);

    /// Brings the index up to date with the files, for the period from `start` to `end` at least.
    void update(const IcsFolderTree& tree, Time start, Time end);

    /// Adds the events of a period within the one that `update` was given, by start, and the
    /// calendars of which something was lost.
    void collect(Time start, Time end, CalendarWindow& window) const;

private:
    /// A series that has an occurrence in the covered period.
    struct Entry {
        Time start; ///< of its first occurrence there
        Time end;   ///< of its last
        const ICalendarSeries* series;
        const IcsCalendar* calendar;
    };
    /// What a parsed file has in the covered period.
    struct Content {
        IcsCalendar calendar;
        std::vector<Entry> entries;
        ICalendarProblems problems;
    };
    using Contents = std::unordered_map<std::shared_ptr<const ICalendar>, Content>;

    void rebuild(const IcsFolderTree::Folders& folders);
    void fill(const std::vector<std::pair<const ICalendar*, Content*>>& unknown) const;
    void findFailures(const IcsFolderTree::Folders& folders);

    const std::atomic<bool>& isAbandoned;
    Contents contents;
    std::vector<Entry> entries; ///< of all contents, by start
    std::vector<FailedCalendar> failures;
    TimeSpan covered{.start = Time::max(), .end = Time::min()};
    std::uint64_t revision = 0; ///< of the tree when the index was built
};

} // namespace quorva
