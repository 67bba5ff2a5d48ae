#include "scan/Scan.h"

#include "drill/Remedies.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorva {
namespace {

std::string describeUnread(const UnreadMeetingWindow& unread) {
    auto what = unread.applicationName;
    if (!unread.windowTitle.empty())
        what += fmt::format(" \"{}\"", unread.windowTitle);
    return what + ": " + (unread.problem.empty() ? "no answer yet" : unread.problem);
}

} // namespace

Scan::Scan(const ScanOptions& options_, Platform& platform)
    : options(options_),
      loop(platform.loop),
      processTable(platform.processTable),
      accessibility(platform.accessibility),
      processes(platform.loop, platform.applications, platform.processTable),
      calendar(platform.loop, platform.calendars, preferences, platform.log, platform.sha256),
      meetings(platform.loop, platform.applications, platform.accessibility, platform.log) {}

void Scan::look(std::function<void(ScanReport)> done) {
    finished = [this, done = std::move(done)] {
        done({.sources = reports(),
              .lookedAt = loop.now(),
              .processes = processes.detectedBots,
              .invitations = calendar.calendarDetections,
              .participants = meetings.participantBotDetections,
              .indicators = meetings.recordingIndicators});
    };
    expectAnswers();
    if (options.asksFor(ScanSource::process))
        processes.scan();
    answered(ScanSource::process);
    whenCalendarsAnswered([this] { calendar.scanCalendar(); });
    whenMeetingsRead([this] { meetings.performScan(); });
}

void Scan::watch(Print print, std::function<void(std::vector<SourceReport>)> done) {
    finished = [this, done = std::move(done)] { done(reports()); };
    const auto printer = [this, print = std::move(print)](std::string_view event,
                                                          ScanSource source) {
        return [this, print, event, source](const auto& detection) {
            print(watchLine(event, source, describe(detection), loop.now()));
        };
    };
    processes.onBotDetected = printer("appeared", ScanSource::process);
    processes.onBotDisappeared = printer("disappeared", ScanSource::process);
    calendar.onBotDetected = printer("appeared", ScanSource::calendar);
    calendar.onBotDisappeared = printer("disappeared", ScanSource::calendar);
    meetings.onBotDetected = printer("appeared", ScanSource::meeting);
    meetings.onBotDisappeared = printer("disappeared", ScanSource::meeting);
    meetings.onRecordingIndicatorDetected = printer("appeared", ScanSource::meeting);
    meetings.onRecordingIndicatorDisappeared = printer("disappeared", ScanSource::meeting);

    expectAnswers();
    if (options.asksFor(ScanSource::process))
        processes.startMonitoring();
    answered(ScanSource::process);
    whenCalendarsAnswered([this] { calendar.startMonitoring(); });
    if (options.asksFor(ScanSource::meeting))
        meetings.startMonitoring();
    whenMeetingsRead([] {}); // the monitor looks at them by itself
}

void Scan::expectAnswers() {
    awaited = {ScanSource::process, ScanSource::calendar, ScanSource::meeting};
}

/// Starts the scan of the calendars, where it is asked for and allowed; it is over when they have
/// answered, or when there turn out to be none.
void Scan::whenCalendarsAnswered(const Task& start) {
    if (!options.asksFor(ScanSource::calendar) ||
        *calendar.authorizationStatus != CalendarAuthorization::fullAccess)
        return answered(ScanSource::calendar);
    subscriptions.push_back(calendar.lastScanDate.observe([this](const std::optional<Time>& date) {
        if (date)
            answered(ScanSource::calendar);
    }));
    subscriptions.push_back(calendar.authorizationStatus.observe([this](auto status) {
        if (status != CalendarAuthorization::fullAccess)
            answered(ScanSource::calendar);
    }));
    start();
}

/// Does something when the windows have been read, where that is asked for and allowed, or when it
/// has taken too long.
void Scan::whenMeetingsRead(Task then) {
    if (!options.asksFor(ScanSource::meeting) || !*meetings.hasAccessibilityPermission)
        return answered(ScanSource::meeting);
    const auto endWaiting = [this, then = std::move(then)] {
        then();
        answered(ScanSource::meeting);
    };
    const auto check = [this, endWaiting] {
        if (awaited.contains(ScanSource::meeting) && meetings.readAhead())
            endWaiting();
    };
    subscriptions.push_back(accessibility.onRead(lifetime.guard(check)));
    subscriptions.push_back(loop.after(readingTime, lifetime.guard([this, endWaiting] {
        if (awaited.contains(ScanSource::meeting))
            endWaiting();
    })));
    check();
}

/// Published fields tell of a change before it is made: what has been found is read a task later.
void Scan::answered(ScanSource source) {
    awaited.erase(source);
    if (!awaited.empty())
        return;
    loop.post(lifetime.guard([this] {
        if (const auto once = std::exchange(finished, nullptr))
            once();
    }));
}

std::vector<SourceReport> Scan::reports() const {
    std::vector<SourceReport> reports;
    for (const auto source : options.sources)
        switch (source) {
        case ScanSource::process:
            reports.push_back(processReport());
            break;
        case ScanSource::calendar:
            reports.push_back(calendarReport());
            break;
        case ScanSource::meeting:
            reports.push_back(meetingReport());
            break;
        }
    return reports;
}

SourceReport Scan::processReport() const {
    const auto& [listed, seen, denied] = *processes.coverage;
    if (!listed)
        return {ScanSource::process, SourceStatus::unavailable, remedies::processesCannotBeListed};
    auto detail = fmt::format("looked at {} processes", seen);
    if (denied > 0)
        detail +=
            fmt::format("; {} of them, of other users or protected, can't be looked at", denied);
    return {ScanSource::process, SourceStatus::ok, std::move(detail)};
}

SourceReport Scan::calendarReport() const {
    const auto report = [](SourceStatus status, std::string detail) {
        return SourceReport{ScanSource::calendar, status, std::move(detail)};
    };
    if (*calendar.authorizationStatus == CalendarAuthorization::restricted)
        return report(SourceStatus::unavailable,
                      "there is no calendar service in this session and no folder of calendars: "
                      "install evolution-data-server and run this in the desktop session, or put "
                      ".ics files into a folder below ~/.local/share/calendars");
    if (*calendar.authorizationStatus != CalendarAuthorization::fullAccess)
        return report(SourceStatus::noAccess,
                      "calendars are read only when they are named: add --source calendar");
    if (*calendar.calendarCount == 0)
        return report(SourceStatus::unavailable, "there is no calendar to look at");
    const auto& unread = *calendar.unreadCalendars;
    if (unread.empty())
        return report(SourceStatus::ok, fmt::format("looked at the next 24 hours; calendars: {}",
                                                    *calendar.calendarCount));
    auto detail = fmt::format("calendars that can't be read: {} of {}", unread.size(),
                              *calendar.calendarCount);
    for (const auto& [name, reason] : unread)
        detail += fmt::format("; {}: {}", name, reason);
    return report(SourceStatus::unavailable, std::move(detail));
}

SourceReport Scan::meetingReport() const {
    const auto report = [](SourceStatus status, std::string detail) {
        return SourceReport{ScanSource::meeting, status, std::move(detail)};
    };
    if (!*meetings.hasAccessibilityPermission)
        return report(SourceStatus::noAccess, remedies::accessibilityIsOff);
    if (const auto listed = processTable.processIdentifiers(); !listed || listed->empty())
        return report(SourceStatus::unavailable, remedies::processesCannotBeListed);
    const auto& looked = *meetings.coverage;
    auto detail = fmt::format("applications that may hold meetings: {}; meeting windows: {}",
                              looked.applications, looked.windows);
    if (looked.cutShort > 0)
        detail += fmt::format("; of these, hold more than is looked at: {}", looked.cutShort);
    auto unread = looked.unread;
    unread.insert(unread.end(), looked.notReadYet.begin(), looked.notReadYet.end());
    if (unread.empty())
        return report(SourceStatus::ok, std::move(detail));
    detail = fmt::format("windows that can't be read: {}", unread.size());
    for (const auto& each : unread)
        detail += "; " + describeUnread(each);
    return report(SourceStatus::unavailable, std::move(detail));
}

} // namespace quorva
