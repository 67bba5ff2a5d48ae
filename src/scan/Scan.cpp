#include "scan/Scan.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace quorva {

Scan::Scan(const ScanOptions& options_, Platform& platform)
    : options(options_),
      loop(platform.loop),
      processes(platform.loop, platform.applications, platform.processTable),
      calendar(platform.loop, platform.calendars, preferences, platform.log, platform.sha256) {}

void Scan::look(std::function<void(ScanReport)> done) {
    finished = [this, done = std::move(done)] {
        done({reports(), loop.now(), processes.detectedBots, calendar.calendarDetections});
    };
    if (options.asksFor(ScanSource::process))
        processes.scan();
    whenCalendarsAnswered([this] { calendar.scanCalendar(); });
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
    if (options.asksFor(ScanSource::process))
        processes.startMonitoring();
    whenCalendarsAnswered([this] { calendar.startMonitoring(); });
}

/// Starts the scan of the calendars, where it is asked for and allowed; it is over when they have
/// answered, or when there turn out to be none.
void Scan::whenCalendarsAnswered(Task start) {
    if (!options.asksFor(ScanSource::calendar) ||
        *calendar.authorizationStatus != CalendarAuthorization::fullAccess)
        return finish();
    subscriptions.push_back(calendar.lastScanDate.observe([this](const std::optional<Time>& date) {
        if (date)
            finish();
    }));
    subscriptions.push_back(calendar.authorizationStatus.observe([this](auto status) {
        if (status != CalendarAuthorization::fullAccess)
            finish();
    }));
    start();
}

/// Published fields tell of a change before it is made: what has been found is read a task later.
void Scan::finish() {
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
            reports.push_back(
                {source, SourceStatus::unavailable, "this version does not read meeting windows"});
            break;
        }
    return reports;
}

SourceReport Scan::processReport() const {
    const auto& [listed, seen, denied] = *processes.coverage;
    if (!listed)
        return {ScanSource::process, SourceStatus::unavailable,
                "the processes can't be listed: /proc is not mounted or can't be read"};
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

} // namespace quorva
