#include "platform/linux/icalendar/ICalendarReader.h"

#include "base/Text.h"
#include "platform/linux/icalendar/ICalendarObjectEvents.h"
#include "platform/linux/icalendar/ICalendarObjectZones.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

/// Follows the components of a file line by line, and passes the properties of events and zones to
/// the iCalendar object that they stand in.
class FileReader {
public:
    explicit FileReader(const ICalendarReading& reading_) : reading(reading_) {}

    ICalendar read(std::string_view bytes) {
        ContentLines lines(bytes);
        while (const auto line = lines.next())
            handle(*line, lines.wasCut());
        if (!open.empty() || skippedDepth > 0) {
            calendar.isCutShort = true;
            calendar.problems.addLoss("file ends within a component");
        }
        closeTo(0);
        closeObject();
        if (!hasComponents) {
            calendar.isCutShort = true;
            calendar.problems.addLoss("not an iCalendar file");
        }
        for (auto& series : calendar.series)
            series.replaced.sort();
        return std::move(calendar);
    }

private:
    struct Object {
        Object(const ICalendarReading& reading, ICalendarObjectEvents::FileState& file)
            : zones(reading.floating), events(reading, file, zones) {}

        ICalendarObjectZones zones;
        ICalendarObjectEvents events;
    };

    void handle(std::string_view line, bool wasCut) {
        const auto name = trimmed(nameOfLine(line));
        const auto value = trimmed(line.substr(std::min(nameOfLine(line).size() + 1, line.size())));
        if (equalsIgnoringCase(name, "BEGIN"))
            begin(upperCased(value.substr(0, 100)));
        else if (equalsIgnoringCase(name, "END"))
            end(upperCased(value.substr(0, 100)));
        else if (skippedDepth == 0 && !open.empty())
            handleProperty(line, name, value, wasCut);
    }

    void begin(const std::string& component) {
        hasComponents = true;
        // Neither may be nested in another of its kind: the END of that one is missing.
        if (component == "VCALENDAR" || component == "VEVENT")
            closeUnended(component);
        if (open.size() >= ICalendarLimits::depth || skippedDepth > 0) {
            if (skippedDepth++ == 0)
                calendar.problems.addLoss("components nested too deep");
            return;
        }
        open.push_back(component);
        if (component == "VCALENDAR")
            closeObject();
        else if (component == "VEVENT")
            object().events.beginEvent();
        else if (component == "VTIMEZONE")
            object().zones.beginZone();
        else if (component == "STANDARD" || component == "DAYLIGHT")
            object().zones.beginObservance();
    }

    void closeUnended(const std::string& component) {
        const auto found = std::find(open.begin(), open.end(), component);
        if (found == open.end())
            return;
        calendar.problems.addLoss("component without an end");
        skippedDepth = 0;
        closeTo(static_cast<std::size_t>(found - open.begin()));
    }

    void end(const std::string& component) {
        if (skippedDepth > 0) {
            --skippedDepth;
            return;
        }
        const auto found = std::find(open.rbegin(), open.rend(), component);
        if (found == open.rend()) {
            calendar.problems.addLoss("end of a component that has not begun");
            return;
        }
        const auto depth = static_cast<std::size_t>(open.rend() - found) - 1;
        if (depth + 1 < open.size())
            calendar.problems.addLoss("component without an end");
        closeTo(depth);
    }

    /// Closes components, the innermost first, until `depth` of them are open.
    void closeTo(std::size_t depth) {
        for (; open.size() > depth; open.pop_back()) {
            if (open.back() == "VEVENT")
                object().events.endEvent(calendar.problems);
            else if (open.back() == "VTIMEZONE")
                object().zones.endZone();
            else if (open.back() == "VCALENDAR")
                closeObject();
        }
    }

    void handleProperty(std::string_view line, std::string_view name, std::string_view value,
                        bool wasCut) {
        const auto& component = open.back();
        if (component == "VCALENDAR" && equalsIgnoringCase(name, "METHOD"))
            object().events.setMethod(value);
        const bool isEvents = component == "VEVENT" && ICalendarObjectEvents::uses(name);
        const bool isZones =
            (component == "VTIMEZONE" || component == "STANDARD" || component == "DAYLIGHT") &&
            ICalendarObjectZones::uses(name);
        if (!isEvents && !isZones)
            return;
        if (wasCut)
            calendar.problems.addLoss("line too long");
        const auto parsed = parseContentLine(line);
        if (!parsed)
            calendar.problems.addLoss("property without a value");
        else if (isEvents)
            object().events.add(*parsed, calendar.problems);
        else
            object().zones.add(*parsed);
    }

    /// Events and zones outside of any VCALENDAR are read as if they stood in one.
    Object& object() {
        if (!current)
            current.emplace(reading, file);
        return *current;
    }

    void closeObject() {
        if (current)
            current->events.finish(calendar);
        current.reset();
    }

    const ICalendarReading& reading;
    ICalendar calendar;
    std::vector<std::string> open; ///< names of the components around the current line
    std::size_t skippedDepth = 0;  ///< how many more there are, nested too deep to be read
    std::optional<Object> current;
    ICalendarObjectEvents::FileState file;
    bool hasComponents = false;
};

} // namespace

std::string comparableAddress(std::string_view address) {
    constexpr std::string_view scheme = "mailto:";
    address = trimmed(address);
    if (equalsIgnoringCase(address.substr(0, scheme.size()), scheme))
        address.remove_prefix(scheme.size());
    return lowerCased(trimmed(address));
}

std::string lossesOf(const ICalendarProblems& problems) {
    std::string reason;
    for (const auto& problem : problems.all())
        if (problem.isLoss)
            reason +=
                fmt::format("{}{} ({})", reason.empty() ? "" : "; ", problem.reason, problem.count);
    return reason;
}

ICalendar readICalendar(std::string_view bytes, const ICalendarReading& reading) {
    return FileReader(reading).read(bytes);
}

} // namespace quorva
