// One .ics file on disk: parsed once, and read again only after it has changed.
#pragma once

#include "platform/linux/icalendar/ICalendarReader.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace quorva {

/// Identifies the version of a file or folder that was read.
struct IcsStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    Time modified = Time::min();

    bool operator==(const IcsStamp&) const = default;
};

[[nodiscard]] IcsStamp stampOf(const struct stat& status);

/// Whether a file system's clock is too coarse for a later change to alter this time stamp.
[[nodiscard]] bool mayChangeUnnoticed(Time modified);

/// Not for the main thread: waits for the disk. One thread at a time.
class IcsFile {
public:
    static constexpr std::size_t maxSize = std::size_t{64} * 1'048'576;

    /// Looks at the file, and reads it if it has changed since it was read. Returns whether what
    /// the file is known to hold, or the failure, may be another now.
    ///
    /// A file that ends in the middle of a component and was changed in the last seconds is taken
    /// to be half written: the calendar known before stays, and without one that is a failure.
    bool refresh(const std::filesystem::path& path, const ICalendarReading& reading);

    /// Has the next `refresh` read the file even if it has not changed.
    void invalidate() { state = State::stale; }

    /// Whether `refresh` need not be called before the file's folder reports a change.
    [[nodiscard]] bool isSettled() const { return state == State::settled; }

    [[nodiscard]] bool isHalfWritten() const { return state == State::halfWritten; }

    /// The last version that could be parsed; null when the file could not be read.
    [[nodiscard]] const std::shared_ptr<const ICalendar>& calendar() const { return parsed; }

    /// Why the file could not be read; absent when it could.
    [[nodiscard]] const std::optional<std::string>& failure() const { return problem; }

private:
    enum class State { stale, halfWritten, settled };

    bool fail(const IcsStamp& found, std::string reason);

    State state = State::stale;
    IcsStamp stamp;
    std::shared_ptr<const ICalendar> parsed;
    std::optional<std::string> problem;
};

} // namespace quorva
