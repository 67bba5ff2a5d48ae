// What is kept of folders and their files between two looks; for the sources of IcsFolders only.
#pragma once

#include "base/Text.h"
#include "platform/linux/calendars/IcsFolders.h"
#include "platform/linux/glib/Utf8.h"

#include <sys/stat.h>

namespace quorva {

/// What tells whether a file or folder is the one that was read.
struct IcsStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    Time modified = Time::min();

    bool operator==(const IcsStamp&) const = default;
};

struct IcsFolders::File {
    IcsStamp stamp;
    bool isSettled = false;
    std::optional<std::string> failure; ///< why it could not be read
    std::unique_ptr<const ICalendar> calendar;
    std::string calendarName; ///< where the file is a calendar of its own
    std::vector<Entry> entries;
    bool isIndexed = false;
    ICalendarProblems problems; ///< of computing the entries
};

struct IcsFolders::Folder {
    Path path;
    IcsStamp stamp;
    bool isSettled = false;
    bool isOfFiles = false; ///< not a calendar itself: its files are, or nothing is
    bool isRequired = true; ///< its absence is a failure
    std::optional<std::string> failure;
    std::string name;
    std::map<std::string, File> files;
    std::vector<std::string> subfolders;
    bool mustStat = true;
    bool isUnsettled = false; ///< some of its files are

    [[nodiscard]] bool isCalendar() const {
        return !isOfFiles && (!files.empty() || subfolders.empty());
    }
};

/// A file name, or a name from a file, as valid UTF-8 without blanks around it.
[[nodiscard]] inline std::string validName(const std::string& bytes) {
    return std::string(trimmed(validUtf8(bytes)));
}

} // namespace quorva
