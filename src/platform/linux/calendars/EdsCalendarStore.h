// The calendars of the desktop's calendar service, Evolution Data Server. It gates nothing: whether
// the user lets the program read calendars is decided by whoever owns this.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "platform/CalendarStore.h"
#include "platform/Log.h"
#include "platform/linux/calendars/EdsRegistry.h"

#include <map>
#include <memory>
#include <set>

namespace quorva {

struct EdsConnection;
struct EdsReading;

/// The reading part of a CalendarStore, with the same contracts. Main thread only; one at a time in
/// a process. Never waits: not for a service that is absent, stopped or killed either. Asks nothing
/// of the service before the first call. The loop and the log must outlive this.
class EdsCalendarStore {
public:
    using Service = EdsRegistry::State;

    EdsCalendarStore(MainLoop& loop, Log& log);
    ~EdsCalendarStore();

    EdsCalendarStore(const EdsCalendarStore&) = delete;
    EdsCalendarStore& operator=(const EdsCalendarStore&) = delete;

    /// Whether there is a calendar service, as far as is known.
    [[nodiscard]] Service service() const { return registry.state(); }

    /// Looks for the service, unless it was found before, and calls `done` once, on the main loop
    /// or within this call; with `failed` when it does not answer within 10 seconds. Dropping the
    /// subscription ends the wait without a call.
    [[nodiscard]] Subscription findService(std::function<void(Service)> done);

    /// As CalendarStore::fetchEvents. Without a service there are no calendars; one that is there
    /// and does not answer is reported as an unread calendar of its name.
    [[nodiscard]] Subscription fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done);

    /// As CalendarStore::sources: empty before the first answer, which is then told as a change.
    [[nodiscard]] std::vector<CalendarSource> sources() const {
        return registry.sources().accounts;
    }

    /// As CalendarStore::onChange. Events are followed in the calendars that were fetched.
    [[nodiscard]] Subscription onChange(Task callback);

private:
    struct Fetch;
    using FetchPtr = std::shared_ptr<Fetch>;

    void noteService(const std::string& problem);
    void noteChange();
    void ask(const FetchPtr& fetch);
    void read(const FetchPtr& fetch, std::size_t position);
    void take(const FetchPtr& fetch, std::size_t position, std::optional<EdsReading> reading);
    void readSuspects(const FetchPtr& fetch);
    void drop(FetchPtr fetch);
    void complete(const FetchPtr& fetch);

    MainLoop& loop;
    Log& log;
    EdsRegistry registry;
    std::map<std::string, std::shared_ptr<const EdsConnection>> connections; // by calendar
    std::set<std::string> failing; // the calendars that were not read last time
    std::set<FetchPtr> fetches;
    std::string serviceProblem;
    CallbackList<> answers; // the service was found, or is not there
    CallbackList<> changes;
    Timer pendingChange;
    Lifetime lifetime;
};

} // namespace quorva
