#include "platform/linux/calendars/IcsFile.h"

#include "platform/linux/glib/ReadFile.h"

#include <cerrno>
#include <cstring>

namespace quorva {
namespace {

constexpr auto clockGrain = std::chrono::seconds(2); // of the coarsest file system clocks
constexpr auto writingTime = std::chrono::seconds(5);

/// Whether `time` is less than `span` ago, or ahead of a clock that was set back.
bool isWithin(Time time, std::chrono::seconds span) {
    const auto now = std::chrono::system_clock::now();
    return time > now - span && time < now + span;
}

} // namespace

IcsStamp stampOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size,
            Time(std::chrono::seconds(status.st_mtim.tv_sec) +
                 std::chrono::nanoseconds(status.st_mtim.tv_nsec))};
}

bool mayChangeUnnoticed(Time modified) {
    return isWithin(modified, clockGrain);
}

bool IcsFile::refresh(const std::filesystem::path& path, const ICalendarReading& reading) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return fail({}, std::strerror(errno));
    const auto found = stampOf(status);
    if (state == State::settled && found == stamp)
        return false;
    if (!S_ISREG(status.st_mode))
        return fail(found, "not a file");
    if (static_cast<std::size_t>(found.size) > maxSize)
        return fail(found, "larger than 64 MB");
    std::error_code error;
    const auto bytes = readWholeFile(path, maxSize, error);
    if (!bytes)
        return fail({}, error.message());

    const bool isSame = ::stat(path.c_str(), &status) == 0 && stampOf(status) == found;
    stamp = found;
    auto calendar = std::make_shared<const ICalendar>(readICalendar(*bytes, reading));
    if (calendar->isCutShort && (!isSame || isWithin(stamp.modified, writingTime))) {
        state = State::halfWritten;
        if (!parsed)
            problem = "it ends in the middle; it may be being written";
        return true;
    }
    state = isSame && !mayChangeUnnoticed(stamp.modified) ? State::settled : State::stale;
    parsed = std::move(calendar);
    problem.reset();
    return true;
}

bool IcsFile::fail(const IcsStamp& found, std::string reason) {
    const bool isNew = problem != reason || parsed;
    state = State::settled;
    stamp = found;
    parsed.reset();
    problem = std::move(reason);
    return isNew;
}

} // namespace quorva
