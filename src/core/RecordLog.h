// A list of records that is stored in the preferences as one JSON array after each change.
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

/// The order of a list and its greatest length.
struct RecordLogShape {
    std::string_view key; ///< in the preferences
    std::size_t most;
    bool isNewestFirst;
};

/// Main thread only. Record is DetectionEvent or ObjectionRecord.
template <typename Record>
class RecordLog {
public:
    /// The services must outlive the log. The log is empty until `load`.
    RecordLog(const RecordLogShape& shape, MainLoop& loop, Preferences& preferences, Log& log);

    /// The records, in the order of the shape.
    Published<std::vector<Record>, RecordLog> records;

    /// Reads the newest records of the stored list, up to the greatest length. Entries that cannot
    /// be read are left out. If there are such entries, or the value is not a list, the stored
    /// value is first copied to another key, whose name holds the date, and an error is logged. A
    /// value that was copied at an earlier start is not copied again.
    void load();

    /// Adds a record at the newest end, drops the oldest records beyond the greatest length, and
    /// stores the list. `onDurable`, if given, is called as a task of the main loop once the change
    /// would survive a power cut. It is not called while nothing can be stored.
    void add(Record record, Task onDurable = {});

private:
    void setAside(const PreferenceValue& stored, std::size_t failed);
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
