#include "platform/linux/calendars/EdsCalendarStore.h"

#include "base/Text.h"
#include "platform/linux/calendars/EdsCalendarReader.h"
#include "platform/linux/glib/BlockingWork.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace quorva {
namespace {

constexpr Seconds answerTimeout{10};
constexpr Seconds burst{0.25};
constexpr const char* serviceName = "Evolution Data Server";
constexpr const char* noAnswer = "it did not answer within 10 seconds";

} // namespace

/// One call of fetchEvents, until it is answered or dropped.
struct EdsCalendarStore::Fetch {
    Time start;
    Time end;
    std::function<void(CalendarWindow)> done;
    GObjectPtr<GCancellable> cancellable{g_cancellable_new()};
    Subscription search;
    Service found = Service::unknown;
    Timer deadline;
    std::vector<EdsCalendar> calendars;
    std::vector<EdsReading> readings;  // parallel to `calendars`
    std::vector<std::size_t> suspects; // failed last time: asked after the others
    std::size_t open = 0;              // readings in progress
};

EdsCalendarStore::EdsCalendarStore(MainLoop& loop_, Log& log_)
    : loop(loop_),
      log(log_),
      registry(
          [this] {
              noteService(registry.problem());
              noteChange();
          },
          [this] { answers.call(); }) {}

EdsCalendarStore::~EdsCalendarStore() {
    while (!fetches.empty())
        drop(*fetches.begin());
}

Subscription EdsCalendarStore::findService(std::function<void(Service)> done) {
    if (registry.state() == Service::present) {
        done(Service::present);
        return {};
    }
    struct Search {
        std::function<void(Service)> done;
        Subscription answer;
        Timer deadline;

        void end(Service service) {
            answer.reset();
            deadline.reset();
            if (const auto call = std::exchange(done, nullptr))
                call(service);
        }
    };
    const auto search = std::make_shared<Search>();
    const std::weak_ptr<Search> weak(search); // its own subscriptions must not keep it alive
    search->done = std::move(done);
    search->answer = answers.add(lifetime.guard([this, weak] {
        if (const auto waiting = weak.lock())
            waiting->end(registry.state());
    }));
    search->deadline = loop.after(answerTimeout, lifetime.guard([weak] {
        if (const auto waiting = weak.lock())
            waiting->end(Service::failed);
    }));
    registry.start();
    return Subscription([search] {
        search->done = nullptr;
        search->end(Service::unknown);
    });
}

Subscription EdsCalendarStore::fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done) {
    const auto fetch = std::make_shared<Fetch>();
    fetch->start = start;
    fetch->end = end;
    fetch->done = std::move(done);
    fetches.insert(fetch);
    fetch->deadline = loop.after(
        answerTimeout, lifetime.guard([fetch] { g_cancellable_cancel(fetch->cancellable.get()); }));
    fetch->search = findService(lifetime.guard([this, fetch](Service found) {
        fetch->found = found;
        ask(fetch);
    }));
    return Subscription(lifetime.guard([this, fetch] { drop(fetch); }));
}

Subscription EdsCalendarStore::onChange(Task callback) {
    registry.start();
    return changes.add(std::move(callback));
}

void EdsCalendarStore::noteChange() {
    if (!pendingChange)
        pendingChange = loop.after(burst, lifetime.guard([this] {
            pendingChange.reset();
            changes.call();
        }));
}

/// Asks all calendars at once, except those that failed last time, which follow.
void EdsCalendarStore::ask(const FetchPtr& fetch) {
    if (fetch->found == Service::present)
        fetch->calendars = registry.sources().calendars;
    fetch->readings.resize(fetch->calendars.size());
    for (std::size_t i = 0; i < fetch->calendars.size(); ++i)
        if (failing.contains(fetch->calendars[i].identifier))
            fetch->suspects.push_back(i);
        else
            read(fetch, i);
    if (fetch->open == 0)
        readSuspects(fetch);
}

/// Asked last because a process that hangs while it opens a calendar blocks others in the library.
void EdsCalendarStore::readSuspects(const FetchPtr& fetch) {
    for (const auto position : std::exchange(fetch->suspects, {}))
        read(fetch, position);
    if (fetch->open == 0)
        complete(fetch);
}

void EdsCalendarStore::read(const FetchPtr& fetch, std::size_t position) {
    const auto& calendar = fetch->calendars[position];
    const auto connection = connections.find(calendar.identifier);
    ++fetch->open;
    EdsRequest request{
        .calendar = calendar,
        .connection = connection != connections.end() ? connection->second : nullptr,
        .start = fetch->start,
        .end = fetch->end,
        .onChange = lifetime.guard([this] { noteChange(); }),
        .onGone = lifetime.guard([this, identifier = calendar.identifier] {
            connections.erase(identifier);
            noteChange();
        }),
    };
    runBlocking<EdsReading>(
        fetch->cancellable.get(),
        [request = std::move(request)](GCancellable* cancellable) {
            return readEdsCalendar(request, cancellable);
        },
        lifetime.guard([this, fetch, position](std::optional<EdsReading> reading) {
            handle(fetch, position, std::move(reading));
        }));
}

/// A reading without a value was cancelled.
void EdsCalendarStore::handle(const FetchPtr& fetch, std::size_t position,
                              std::optional<EdsReading> reading) {
    const auto& calendar = fetch->calendars[position];
    if (!reading)
        reading = EdsReading{.failure = noAnswer};
    else if (reading->connection)
        connections[calendar.identifier] = reading->connection;
    else
        connections.erase(calendar.identifier);
    if (!reading->failure)
        failing.erase(calendar.identifier);
    else if (fetch->done) // otherwise it failed because the fetch was dropped
        failing.insert(calendar.identifier);
    fetch->readings[position] = std::move(*reading);
    if (--fetch->open == 0)
        readSuspects(fetch);
}

/// By value: the argument may be an element of the set, from which `complete` removes it.
void EdsCalendarStore::drop(FetchPtr fetch) { // NOLINT(performance-unnecessary-value-param)
    fetch->done = nullptr;
    fetch->suspects.clear();
    g_cancellable_cancel(fetch->cancellable.get());
    complete(fetch);
}

void EdsCalendarStore::complete(const FetchPtr& fetch) {
    if (fetches.erase(fetch) == 0)
        return;
    fetch->deadline.reset();
    fetch->search.reset();
    const auto done = std::exchange(fetch->done, nullptr);
    if (!done)
        return;

    CalendarWindow window{.calendars = fetch->calendars.size()};
    for (std::size_t i = 0; i < fetch->calendars.size(); ++i) {
        auto& reading = fetch->readings[i];
        const auto& [identifier, name, addresses, source] = fetch->calendars[i];
        if (reading.failure)
            window.failed.push_back({name, std::move(*reading.failure), identifier});
        else if (!reading.losses.empty())
            window.failed.push_back({name, std::move(reading.losses), identifier});
        std::move(reading.events.begin(), reading.events.end(), std::back_inserter(window.events));
    }
    if (fetch->found == Service::failed) {
        const auto problem = registry.problem().empty() ? noAnswer : registry.problem();
        noteService(problem);
        window.failed.push_back({serviceName, problem, edsIdentifier});
        ++window.calendars;
    }
    std::stable_sort(window.events.begin(), window.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
    done(std::move(window));
}

void EdsCalendarStore::noteService(const std::string& problem) {
    if (std::exchange(serviceProblem, problem) == problem)
        return;
    log.notice(problem.empty() ? Printable("The calendar service can be reached again")
                               : Printable::format("No calendar service: {}", problem),
               logCategory::calendar);
}

} // namespace quorva
