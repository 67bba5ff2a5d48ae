// The folders of .ics files on disk, in the vdir convention: each folder is a calendar, each file
// "*.ics" in it holds one or more of its events, a file "displayname" the calendar's name. Finds
// the folders, reads what has changed in them, and knows where to watch for changes.
#pragma once

#include "platform/CalendarStore.h"
#include "platform/linux/calendars/IcsFile.h"
#include "platform/linux/storage/FolderWatch.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorva {

struct IcsPlaces {
    std::filesystem::path root;                 ///< each folder below it is a calendar
    std::vector<std::filesystem::path> folders; ///< further calendars: folders, or single files
};

/// What was observed since the last look.
struct IcsHints {
    std::set<std::filesystem::path> changed; ///< folders in which something may have changed
    std::set<std::filesystem::path> watched; ///< folders whose every change is reported
};

/// A calendar of a folder, or several.
struct IcsCalendar {
    std::string name;
    std::string identifier; ///< as CalendarEvent::calendarIdentifier
};

/// Begins the identifiers of all calendars in folders.
inline constexpr const char* icsIdentifier = "folders/";

struct IcsFolder {
    std::filesystem::path place; ///< a file's, where it stands for a single file
    std::filesystem::path path;
    IcsStamp stamp;
    bool isSettled = false;           ///< a change of the folder would alter its stamp
    bool isOfFiles = false;           ///< not a calendar itself: its files are, or nothing is
    bool isRequired = true;           ///< its absence is a failure
    std::optional<std::string> error; ///< why it could not be listed
    std::string name;
    std::map<std::string, IcsFile> files; ///< by file name
    std::vector<std::string> subfolders;
    bool mustStatFiles = true;
    bool hasUnsettledFiles = false;

    [[nodiscard]] bool isCalendar() const {
        return !isOfFiles && (!files.empty() || subfolders.empty());
    }
    /// Absent when the folder could be listed or need not exist.
    [[nodiscard]] std::optional<std::string> failure() const {
        return isRequired ? error : std::nullopt;
    }
    /// The calendar that the events of one of its files belong to.
    [[nodiscard]] IcsCalendar calendarOf(const std::string& fileName) const;
    /// Itself, and what is below it.
    [[nodiscard]] IcsCalendar calendar() const;
};

/// Not for the main thread: waits for the disk. One thread at a time, but for `reads`.
class IcsFolderTree {
public:
    using Folders = std::map<std::filesystem::path, IcsFolder>;

    /// `isAbandoned`, which must outlive this, ends `readFiles` early.
    IcsFolderTree(IcsPlaces places, const std::atomic<bool>& isAbandoned);

    /// Finds out which folders and files there are.
    void walk(const IcsHints& hints);

    /// Reads the files that are new or have changed.
    void readFiles();

    [[nodiscard]] const Folders& folders() const { return all; }

    /// Rises whenever a file or a calendar's name has come, changed or gone.
    [[nodiscard]] std::uint64_t revision() const { return currentRevision; }

    /// The calendars: folders and single files.
    [[nodiscard]] std::vector<CalendarSource> sources() const;

    /// Where changes matter, as of the last walk.
    [[nodiscard]] const std::vector<WatchedFolder>& watch() const { return watched; }

    /// Whether a file was being written when it was read.
    [[nodiscard]] bool hasHalfWrittenFiles() const { return isHalfWritten; }

    /// How often files were read. Any thread.
    [[nodiscard]] std::size_t reads() const { return readCount; }

private:
    using Path = std::filesystem::path;
    struct Walk {
        const IcsHints& hints;
        std::set<Path> seen;
    };

    void visit(const Path& path, int depth, Walk& walk);
    void visitFile(const Path& path, Walk& walk);
    void list(IcsFolder& folder);
    void await(const Path& path);
    void followUserZone();
    void readFiles(IcsFolder& folder);

    const IcsPlaces places;
    const std::atomic<bool>& isAbandoned;
    ICalendarReading reading;
    std::string zoneName;
    Folders all;
    std::vector<WatchedFolder> watched;
    std::uint64_t currentRevision = 0;
    bool isHalfWritten = false;
    Time nextFullLook = Time::min();
    std::atomic<std::size_t> readCount = 0;
};

} // namespace quorva
