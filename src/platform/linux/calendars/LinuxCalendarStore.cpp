#include "platform/linux/calendars/LinuxCalendarStore.h"

#include "platform/linux/icalendar/ICalendarReader.h"

#include <algorithm>
#include <iterator>

namespace quorva {

/// A fetch that waits for both parts. Lives as long as its subscription.
struct LinuxCalendarStore::Request {
    std::function<void(CalendarWindow)> done;
    int missing = 2;
    CalendarWindow window;
    Subscription fromService;
    Subscription fromFolders;
};

LinuxCalendarStore::LinuxCalendarStore(MainLoop& loop, Log& log, CalendarPlaces places,
                                       CalendarConsent consent_, OwnAddresses ownAddresses_)
    : consent(std::move(consent_)),
      ownAddresses(std::move(ownAddresses_)),
      withoutPlace(std::move(places.failed)),
      service(loop, log),
      folders(loop, std::move(places.files)) {}

CalendarAuthorization LinuxCalendarStore::authorizationStatus() const {
    const bool isNothingThere = service.service() == EdsCalendarStore::Service::absent &&
                                folders.sources().empty() && withoutPlace.empty();
    return isNothingThere ? CalendarAuthorization::restricted : consent.status();
}

void LinuxCalendarStore::requestFullAccess(std::function<void(AccessAnswer)> done) {
    consent.request(lifetime.guard([this, done = std::move(done)](const AccessAnswer& answer) {
        if (!answer.granted)
            return done(answer);
        grant = service.findService([done, answer](EdsCalendarStore::Service) { done(answer); });
    }));
}

/// Both parts tell of a change themselves.
void LinuxCalendarStore::lookForCalendars() {
    folders.lookForCalendars();
    search = service.findService([](EdsCalendarStore::Service) {});
}

Subscription LinuxCalendarStore::fetchEvents(Time start, Time end,
                                             std::function<void(CalendarWindow)> done) {
    auto request = std::make_shared<Request>();
    request->done = std::move(done);
    request->window = {.events = {}, .failed = withoutPlace, .calendars = withoutPlace.size()};
    const auto add = lifetime.guard([this, weak = std::weak_ptr(request)](CalendarWindow part) {
        addPart(weak, std::move(part));
    });
    request->fromFolders = folders.fetchEvents(start, end, add);
    request->fromService = service.fetchEvents(start, end, add);
    return Subscription([request]() mutable { request.reset(); });
}

void LinuxCalendarStore::addPart(const std::weak_ptr<Request>& request, CalendarWindow part) {
    const auto waiting = request.lock();
    if (!waiting)
        return;
    auto& whole = waiting->window;
    std::move(part.events.begin(), part.events.end(), std::back_inserter(whole.events));
    std::move(part.failed.begin(), part.failed.end(), std::back_inserter(whole.failed));
    whole.calendars += part.calendars;
    if (--waiting->missing > 0)
        return;
    std::stable_sort(whole.events.begin(), whole.events.end(),
                     [](const auto& a, const auto& b) { return a.start < b.start; });
    markUser(whole.events);
    std::exchange(waiting->done, nullptr)(std::move(whole));
}

void LinuxCalendarStore::markUser(std::vector<CalendarEvent>& events) const {
    constexpr std::size_t mostAddresses = 100;
    auto own = service.ownAddresses();
    auto named = ownAddresses();
    named.resize(std::min(named.size(), mostAddresses));
    for (const auto& address : named)
        own.insert(comparableAddress(address));
    if (own.empty())
        return;
    for (auto& event : events)
        for (auto& attendee : event.attendees)
            if (own.contains(comparableAddress(attendee.url)))
                attendee.isCurrentUser = true;
}

std::vector<CalendarSource> LinuxCalendarStore::sources() const {
    auto all = service.sources();
    const auto more = folders.sources();
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

Subscription LinuxCalendarStore::onChange(Task callback) {
    auto both = std::make_shared<std::pair<Subscription, Subscription>>(service.onChange(callback),
                                                                        folders.onChange(callback));
    return Subscription([both]() mutable { both.reset(); });
}

} // namespace quorva
