// A list of records that is kept in the preferences as one JSON array, whole after each change.
#pragma once

#include "base/MainLoop.h"
#include "base/Published.h"
#include "catalogue/Records.h"
#include "platform/Log.h"
#include "platform/PreferenceKeys.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

/// Where a list grows, which is also its newest end, and how long it may become.
struct RecordLogShape {
    std::string_view key; ///< in the preferences
    std::size_t most;
    bool isNewestFirst;
};

/// Main thread only. Record is DetectionEvent or ObjectionRecord.
template <typename Record>
class RecordLog {
public:
    /// The services must outlive the log. It is empty until `load`.
    RecordLog(const RecordLogShape& shape, MainLoop& loop, Preferences& preferences, Log& log);

    /// The records, in the order of the shape.
    Published<std::vector<Record>, RecordLog> records;

    /// Reads the stored list: the newest records, as many as may be. An entry that can't be read is
    /// left out. Where there is such an entry, or no list at all but something else, what is stored
    /// is copied to another key first, named after this one with the date, and the log says so.
    void load();

    /// Adds a record at the newest end, drops the oldest beyond the most, and stores the list.
    /// `onDurable`, if given, is called as a task of the main loop once it would survive a power
    /// cut; not at all while nothing can be stored.
    void add(Record record, Task onDurable = {});

private:
    void setAside(const PreferenceValue& stored, std::size_t unread);
    void store(Task onDurable);

    const RecordLogShape shape;
    MainLoop& loop;
    Preferences& preferences;
    Log& log;
    std::deque<std::string> encoded; ///< each record as JSON, in the order of the list
};

extern template class RecordLog<DetectionEvent>;
extern template class RecordLog<ObjectionRecord>;

/// At most 500, oldest first.
inline constexpr RecordLogShape detectionLogShape{preferenceKeys::detectionLog.name, 500, false};
/// At most 200, newest first.
inline constexpr RecordLogShape objectionLogShape{preferenceKeys::objectionLog.name, 200, true};

} // namespace quorva
