#include "core/Limitations.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <array>
#include <string_view>

namespace quorva {
namespace {

constexpr std::size_t mostNamed = 3;

void addProcesses(const CapabilityFacts& facts, std::vector<Limitation>& found) {
    if (facts.lastProcessScanDate && !facts.processes.listed)
        found.push_back({LimitedPart::processes,
                         "The processes of this computer can't be listed: recorders that run on it "
                         "are not seen."});
}

/// Some of the names, and how many there are besides.
template <typename Items, typename Name>
std::string some(const Items& items, Name name) {
    std::string text;
    for (std::size_t index = 0; index < items.size() && index < mostNamed; ++index)
        text += (index > 0 ? ", " : "") + printable(name(items[index]));
    if (items.size() > mostNamed)
        text += fmt::format(" and {} more", items.size() - mostNamed);
    return text;
}

std::string unreadCalendarsText(const std::vector<UnreadCalendar>& calendars) {
    return fmt::format(
        "Calendars that can't be read: {}. Bots invited to their meetings are not seen.",
        some(calendars, [](const UnreadCalendar& calendar) {
            return fmt::format("{} ({})", calendar.calendarName, calendar.reason);
        }));
}

void addCalendars(const CapabilityFacts& facts, std::vector<Limitation>& found) {
    if (!facts.calendarMonitorEnabled)
        return;
    if (facts.calendarAuthorization == CalendarAuthorization::restricted)
        found.push_back({LimitedPart::calendars,
                         "There is no calendar service and no calendar folder: bots invited to "
                         "meetings are not seen."});
    else if (facts.calendarAuthorization != CalendarAuthorization::fullAccess)
        found.push_back({LimitedPart::calendars,
                         "Quorva may not read the calendars: bots invited to meetings are not "
                         "seen."});
    else if (!facts.unreadCalendars.empty())
        found.push_back({LimitedPart::calendars, unreadCalendarsText(facts.unreadCalendars)});
}

void addMeetings(const CapabilityFacts& facts, std::vector<Limitation>& found) {
    if (!facts.participantMonitorEnabled)
        return;
    if (!facts.hasAccessibilityPermission)
        found.push_back({LimitedPart::meetings,
                         "The desktop's accessibility is switched off: bots in meetings are not "
                         "seen."});
    else if (!facts.meetings.unread.empty())
        found.push_back(
            {LimitedPart::meetings,
             fmt::format(
                 "Windows that can't be looked at: {}. Bots in their meetings are not seen.",
                 some(facts.meetings.unread, [](const UnreadMeetingWindow& window) {
                     return fmt::format("{} ({})", window.applicationName, window.problem);
                 }))});
}

void addNotifications(const CapabilityFacts& facts, std::vector<Limitation>& found) {
    if (!facts.showNotifications)
        return;
    using State = NotificationService::State;
    if (facts.notifications.state == State::absent)
        found.push_back({LimitedPart::notifications,
                         "No notification server is running: alerts show in Quorva's own panel "
                         "only."});
    else if (facts.notifications.state == State::silent)
        found.push_back({LimitedPart::notifications,
                         "The notification server does not answer: alerts show in Quorva's own "
                         "panel only."});
    else if (facts.notifications.state == State::present && !facts.notifications.hasActions)
        found.push_back({LimitedPart::notifications,
                         "The notification server shows no buttons: object from Quorva's menu."});
}

constexpr std::array sources{
    std::pair{LimitedPart::processes, std::string_view("this computer")},
    std::pair{LimitedPart::calendars, std::string_view("calendars")},
    std::pair{LimitedPart::meetings, std::string_view("meetings")},
};

/// The sources that could not be looked at, or not wholly.
std::string unseenSources(const std::vector<Limitation>& limitations) {
    std::string unseen;
    for (const auto& [part, name] : sources)
        for (const auto& limitation : limitations)
            if (limitation.part == part)
                unseen += fmt::format("{}{}", unseen.empty() ? "" : ", ", name);
    return unseen;
}

} // namespace

std::vector<Limitation> limitations(const CapabilityFacts& facts) {
    std::vector<Limitation> found;
    if (facts.isMonitoring) {
        addProcesses(facts, found);
        addCalendars(facts, found);
        addMeetings(facts, found);
    }
    addNotifications(facts, found);
    if (facts.speechProblem)
        found.push_back({LimitedPart::speech, fmt::format("Objections are not spoken: {}",
                                                          printable(*facts.speechProblem))});
    if (!facts.hasTray)
        found.push_back({LimitedPart::tray, "This desktop shows no tray icons: start Quorva again "
                                            "to open its window."});
    return found;
}

std::string stateInWords(bool isMonitoring, std::size_t threatCount,
                         const std::vector<Limitation>& limitations) {
    if (!isMonitoring)
        return "Monitoring Off";
    const auto unseen = unseenSources(limitations);
    const auto state = threatCount == 0 ? std::string("All Clear")
                                        : fmt::format("{} Bot{} Detected", threatCount,
                                                      threatCount == 1 ? "" : "s");
    return unseen.empty() ? state : fmt::format("{}, but not seen: {}", state, unseen);
}

} // namespace quorva
