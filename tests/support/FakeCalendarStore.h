// Calendars in memory, which answer at once or when the test lets them.
#pragma once

#include "platform/CalendarStore.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace quorva {

class FakeCalendarStore final : public CalendarStore {
public:
    using Done = std::function<void(CalendarWindow)>;

    CalendarAuthorization status = CalendarAuthorization::fullAccess;
    AccessAnswer answer{.granted = true, .error = std::nullopt};
    std::vector<CalendarEvent> events;
    std::size_t calendars = 2;          ///< the failed ones included
    std::vector<FailedCalendar> failed; ///< the events of these are left out
    std::vector<CalendarSource> accounts;
    CallbackList<> changes;
    bool answersAtOnce = true;
    std::vector<std::pair<Time, Time>> fetches; ///< the periods asked for
    int searches = 0;                           ///< for calendars that may have come

    /// Answers the fetches under way, with what the calendars hold now.
    void answerFetch() {
        for (const auto& fetch : std::exchange(pending, {}))
            if (const auto done = std::exchange(fetch->done, nullptr))
                done(window(fetch->start, fetch->end));
    }
    [[nodiscard]] bool isFetching() const {
        return std::any_of(pending.begin(), pending.end(),
                           [](const auto& fetch) { return fetch->done != nullptr; });
    }

    [[nodiscard]] CalendarAuthorization authorizationStatus() const override { return status; }
    void requestFullAccess(std::function<void(AccessAnswer)> done) override { done(answer); }
    void lookForCalendars() override { ++searches; }
    [[nodiscard]] Subscription fetchEvents(Time start, Time end, Done done) override {
        fetches.emplace_back(start, end);
        auto fetch = std::make_shared<Fetch>(Fetch{start, end, std::move(done)});
        pending.push_back(fetch);
        if (answersAtOnce)
            answerFetch();
        return Subscription([fetch = std::move(fetch)] { fetch->done = nullptr; });
    }
    [[nodiscard]] std::vector<CalendarSource> sources() const override { return accounts; }
    [[nodiscard]] Subscription onChange(Task callback) override {
        return changes.add(std::move(callback));
    }

private:
    struct Fetch {
        Time start;
        Time end;
        Done done;
    };

    [[nodiscard]] CalendarWindow window(Time start, Time end) const {
        CalendarWindow window{.events = events, .failed = failed, .calendars = calendars};
        // Without an identifier, a calendar is known by its name.
        for (auto& event : window.events)
            if (event.calendarIdentifier.empty())
                event.calendarIdentifier = event.calendarName + "/";
        for (auto& calendar : window.failed)
            if (calendar.identifier.empty())
                calendar.identifier = calendar.calendarName + "/";
        std::erase_if(window.events, [&](const CalendarEvent& event) {
            const bool hasFailed = std::any_of(window.failed.begin(), window.failed.end(),
                                               [&](const FailedCalendar& calendar) {
                                                   return calendar.covers(event.calendarIdentifier);
                                               });
            return hasFailed || !overlaps(event.start, event.end, start, end);
        });
        std::stable_sort(window.events.begin(), window.events.end(),
                         [](const auto& a, const auto& b) { return a.start < b.start; });
        return window;
    }

    std::vector<std::shared_ptr<Fetch>> pending;
};

} // namespace quorva
