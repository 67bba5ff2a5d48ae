// Calendars in memory, which answer at once or when the test lets them.
#pragma once

#include "platform/CalendarStore.h"

#include <memory>
#include <utility>

namespace quorva {

class FakeCalendarStore final : public CalendarStore {
public:
    using Done = std::function<void(CalendarWindow)>;

    CalendarAuthorization status = CalendarAuthorization::fullAccess;
    AccessAnswer answer{.granted = true, .error = std::nullopt};
    std::vector<CalendarEvent> events;
    std::vector<UnreadCalendar> unread; ///< the events of these are left out
    std::vector<CalendarSource> accounts;
    CallbackList<> changes;
    bool answersAtOnce = true;
    std::vector<std::pair<Time, Time>> fetches; ///< the periods asked for

    /// Answers the fetch under way, with what the calendars hold now.
    void answerFetch() {
        if (const auto done = std::exchange(*pending, nullptr))
            done(window());
    }
    [[nodiscard]] bool isFetching() const { return *pending != nullptr; }

    [[nodiscard]] CalendarAuthorization authorizationStatus() const override { return status; }
    void requestFullAccess(std::function<void(AccessAnswer)> done) override { done(answer); }
    [[nodiscard]] Subscription fetchEvents(Time start, Time end, Done done) override {
        fetches.emplace_back(start, end);
        pending = std::make_shared<Done>(std::move(done));
        if (answersAtOnce)
            answerFetch();
        return Subscription([waiting = pending] { *waiting = nullptr; });
    }
    [[nodiscard]] std::vector<CalendarSource> sources() const override { return accounts; }
    [[nodiscard]] Subscription onChange(Task callback) override {
        return changes.add(std::move(callback));
    }

private:
    [[nodiscard]] CalendarWindow window() const {
        const auto [start, end] = fetches.back();
        CalendarWindow window{.events = {}, .unread = unread, .calendars = 2};
        for (const auto& event : events) {
            bool isRead = true;
            for (const auto& calendar : unread)
                isRead = isRead && calendar.calendarName != event.calendarName;
            if (isRead && event.start < end && event.end > start)
                window.events.push_back(event);
        }
        return window;
    }

    std::shared_ptr<Done> pending = std::make_shared<Done>(); ///< of the last fetch
};

} // namespace quorva
