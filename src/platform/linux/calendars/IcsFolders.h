// The calendars of several folders, in the vdir convention: each folder is a calendar, each file
// "*.ics" in it holds one or more of its events, a file "displayname" the calendar's name. Files
// are parsed once and kept, with an index of what lies in the days ahead, so that a look costs as
// much as there is to find and not as there is stored.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/linux/icalendar/ICalendarReader.h"
#include "platform/linux/storage/FolderWatch.h"

#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quorva {

struct IcsPlaces {
    std::filesystem::path root;                 ///< each folder below it is a calendar
    std::vector<std::filesystem::path> folders; ///< further calendars: folders, or single files
};

/// Not for the main thread: everything here waits for the disk. One thread at a time, but for the
/// counters and `abandon`.
class IcsFolders {
public:
    static constexpr std::uintmax_t maxFileSize = std::uintmax_t{64} * 1'048'576;

    IcsFolders(IcsPlaces places, std::vector<std::string> userAddresses);
    ~IcsFolders();

    /// What has been seen from outside since the last look.
    struct Hints {
        std::set<std::filesystem::path> changed; ///< folders in which something may have changed
        std::set<std::filesystem::path> watched; ///< folders of which every change is told
    };

    struct Findings {
        CalendarWindow window;
        std::vector<CalendarSource> sources;
        std::vector<WatchedFolder> watch; ///< where changes matter from now on
        bool isUnsettled = false;         ///< a file was being written: look again in a few seconds
    };

    /// Reads what has changed and finds the events of the period.
    [[nodiscard]] Findings look(Time start, Time end, const Hints& hints);

    /// Only finds out which calendars there are.
    [[nodiscard]] Findings list();

    /// Lets a look under way return soon, with what it has. Any thread.
    void abandon() { isAbandoned = true; }

    /// How often files were read, and looked at. Any thread.
    [[nodiscard]] std::size_t reads() const { return readCount; }
    [[nodiscard]] std::size_t stats() const { return statCount; }

private:
    using Path = std::filesystem::path;
    struct File;
    struct Folder;
    /// What one series has in the covered period: at least one occurrence, from `start` to `end`.
    struct Entry {
        Time start;
        Time end;
        const ICalendarSeries* series;
        const std::string* calendarName;
    };

    void walk(const Hints& hints);
    void visit(const Path& path, int depth, const Hints& hints, std::set<Path>& seen);
    void visitFile(const Path& path, const Hints& hints, std::set<Path>& seen);
    void list(Folder& folder);
    void refreshFiles(Folder& folder);
    void refreshFile(Folder& folder, const std::string& name, File& file);
    void readFile(const Path& path, File& file);
    void take(File& file, const std::string& bytes, bool isYoung);
    void await(const Path& path);
    void followUserZone();

    void cover(Time start, Time end);
    void indexFile(const Folder& folder, File& file);
    void rebuildIndex();
    void collect(Time start, Time end, CalendarWindow& window);
    void findUnreadFiles();
    void report(CalendarWindow& window) const;
    [[nodiscard]] std::vector<CalendarSource> sources() const;

    const IcsPlaces places;
    ICalendarReading reading;
    std::string zoneName;
    std::map<Path, std::unique_ptr<Folder>> folders;
    std::vector<WatchedFolder> watch;
    std::vector<Entry> index; ///< by start
    std::vector<UnreadCalendar> unreadFiles;
    TimeSpan covered{.start = Time::max(), .end = Time::min()};
    bool isIndexStale = true;
    bool isUnsettled = false;
    Time nextFullLook = Time::min();
    ExpansionBudget budget;
    std::atomic<bool> isAbandoned = false;
    std::atomic<std::size_t> readCount = 0;
    std::atomic<std::size_t> statCount = 0;
};

} // namespace quorva
