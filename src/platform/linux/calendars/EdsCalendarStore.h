// The calendars of the desktop's calendar service, Evolution Data Server. Does not check the user's
// consent: that is up to the owner.
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

/// The reading part of a CalendarStore, with the same contracts. Main thread only; at most one
/// exists in a process at a time. Never waits, not even for a service that is absent, stopped or
/// killed. Does not contact the service before the first call. The loop and the log must outlive
/// this.
class EdsCalendarStore {
public:
    using Service = EdsRegistry::State;

    EdsCalendarStore(MainLoop& loop, Log& log);
    ~EdsCalendarStore();

    EdsCalendarStore(const EdsCalendarStore&) = delete;
    EdsCalendarStore& operator=(const EdsCalendarStore&) = delete;

    /// Whether there is a calendar service, as far as known.
    [[nodiscard]] Service service() const { return registry.state(); }

    /// Looks for the service, unless it was found before, and calls `done` once, on the main loop
    /// or within this call; with `failed` if it does not answer within 10 seconds. Dropping the
    /// subscription ends the wait without a call.
    [[nodiscard]] Subscription findService(std::function<void(Service)> done);

    /// As CalendarStore::fetchEvents. Without a service there are no calendars. A service that does
    /// not answer is reported as a calendar that failed.
    [[nodiscard]] Subscription fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done);

    /// As CalendarStore::sources: empty until the first answer, which is reported as a change.
    [[nodiscard]] std::vector<CalendarSource> sources() const {
        return registry.sources().accounts;
    }

    /// The user's mail addresses, in lower case, as far as the service's accounts are known.
    [[nodiscard]] const std::set<std::string>& ownAddresses() const {
        return registry.sources().ownAddresses;
    }

    /// As CalendarStore::onChange. Follows the events of calendars that were fetched before.
    [[nodiscard]] Subscription onChange(Task callback);

private:
    struct Fetch;
    using FetchPtr = std::shared_ptr<Fetch>;

    void noteService(const std::string& problem);
    void noteChange();
    void ask(const FetchPtr& fetch);
    void read(const FetchPtr& fetch, std::size_t position);
    void handle(const FetchPtr& fetch, std::size_t position, std::optional<EdsReading> reading);
    void readSuspects(const FetchPtr& fetch);
    void drop(FetchPtr fetch);
    void complete(const FetchPtr& fetch);

    MainLoop& loop;
    Log& log;
    EdsRegistry registry;
    std::map<std::string, std::shared_ptr<const EdsConnection>> connections; // by calendar
    std::set<std::string> failing; // the calendars whose last reading failed
    std::set<FetchPtr> fetches;
    std::string serviceProblem;
    CallbackList<> answers; // the service was found or is known to be absent
    CallbackList<> changes;
    Timer pendingChange;
    Lifetime lifetime;
};

} // namespace quorva
