#include "drill/CalendarDrill.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

using namespace std::chrono_literals;

constexpr auto identifier = "quorva-drill@quorva.invalid";
constexpr auto attendee = "drill-attendee@quorva.invalid"; // a domain that cannot be registered
constexpr auto lookAhead = 24h;
constexpr int confidence = 90;

std::vector<CalendarBotSignature> onlyRow() {
    return {CalendarBotSignature("quorva-drill", "Quorva drill", BotCategory::unknown, {attendee},
                                 {}, {}, {}, confidence)};
}

bool isDrill(const CalendarEvent& event) {
    return event.eventIdentifier == identifier && !event.attendees.empty();
}

} // namespace

CalendarDrill::CalendarDrill(MainLoop& loop_, Log& log_, Sha256 sha256_, DrillStandIns& standIns_)
    : Drill(loop_, DrillLink::calendar),
      log(log_),
      sha256(sha256_),
      standIns(standIns_),
      catalogue(onlyRow(), {}) {}

void CalendarDrill::begin() {
    const auto start = loop.now() + 1h;
    standIn = standIns.writeCalendar(
        {.identifier = identifier, .start = start, .end = start + 1h, .attendee = attendee},
        lifetime.guard([this](const CalendarStandIn& written) { read(written); }));
}

void CalendarDrill::read(const CalendarStandIn& written) {
    if (written.store == nullptr)
        return fail({"write a calendar", written.problem});
    store = written.store;
    step = Step::read;
    pass("wrote an event");
    reading =
        store->fetchEvents(loop.now(), loop.now() + lookAhead,
                           lifetime.guard([this](const CalendarWindow& window) { check(window); }));
}

void CalendarDrill::check(const CalendarWindow& window) {
    const BrokenStep failed{"read the calendar", ""};
    if (!window.failed.empty())
        return fail({failed.step, window.failed.front().reason});
    if (std::none_of(window.events.begin(), window.events.end(), isDrill))
        return fail({failed.step, fmt::format("calendars read: {}; the event is in none of them: "
                                              "this is a fault of the program, please report it",
                                              window.calendars)});
    pass("read");
    step = Step::match;
    loop.post(lifetime.guard([this] { look(); })); // not within the store's call
}

void CalendarDrill::look() {
    monitor.emplace(loop, *store, preferences, log, sha256, catalogue);
    monitor->onBotDetected = [this](const CalendarBotDetection& detection) {
        pass(fmt::format("matched \"{}\"", detection.matchedEmail));
        askService();
    };
    monitor->startMonitoring();
}

void CalendarDrill::askService() {
    step = Step::ask;
    question = standIns.askCalendarService(
        lifetime.guard([this](CalendarServiceState service) { handle(service); }));
}

void CalendarDrill::handle(CalendarServiceState service) {
    if (service == CalendarServiceState::silent)
        return fail(unfinished());
    pass(service == CalendarServiceState::answers
             ? "the calendar service answers"
             : "there is no calendar service here: only folders of .ics files are read");
    finish();
}

BrokenStep CalendarDrill::unfinished() {
    switch (step) {
    case Step::write:
        return {"write a calendar", "it takes longer than 10 seconds: the disk may be busy"};
    case Step::read:
        return {"read the calendar", "it takes longer than 10 seconds: the disk may be busy"};
    case Step::match:
        return {"match the invitation",
                "the event was read, and not detected: this is a fault of the program, please "
                "report it"};
    case Step::ask:
        break;
    }
    return {"ask the calendar service",
            "it is there and does not answer, so that its calendars can't be looked at: restart it "
            "with \"systemctl --user restart evolution-source-registry\", or log in again"};
}

} // namespace quorva
