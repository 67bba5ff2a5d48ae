// All of the user's calendars as one store: those of the desktop's calendar service and those in
// folders of .ics files.
#pragma once

#include "base/Lifetime.h"
#include "platform/CalendarStore.h"
#include "platform/linux/calendars/CalendarPlaces.h"
#include "platform/linux/calendars/EdsCalendarStore.h"
#include "platform/linux/calendars/IcsFolderStore.h"

namespace quorva {

class LinuxCalendarStore final : public CalendarStore {
public:
    /// The user's mail addresses at the time.
    using OwnAddresses = std::function<std::vector<std::string>()>;

    /// `consent` says what the user allows, and asks. Calendars whose places could not be found out
    /// are reported as failed with every fetch. An attendee is the user in every calendar whose
    /// address is among `ownAddresses` (of which the first 100 count), or is that of an account of
    /// the calendar service. The loop and the log must outlive this.
    LinuxCalendarStore(MainLoop& loop, Log& log, CalendarPlaces places, CalendarConsent consent,
                       OwnAddresses ownAddresses);

    /// Restricted, even if the user consents, once it is known that there is neither a calendar
    /// service nor a folder.
    [[nodiscard]] CalendarAuthorization authorizationStatus() const override;
    /// After a grant, looks for the service before it answers, so that `authorizationStatus` tells
    /// then whether there is anything to read.
    void requestFullAccess(std::function<void(AccessAnswer)> done) override;
    void lookForCalendars() override;
    [[nodiscard]] Subscription fetchEvents(Time start, Time end,
                                           std::function<void(CalendarWindow)> done) override;

    /// The service's accounts, then the folders.
    [[nodiscard]] std::vector<CalendarSource> sources() const override;
    [[nodiscard]] Subscription onChange(Task callback) override;

    /// As EdsCalendarStore::findService. Needs no consent, because no calendar is read.
    [[nodiscard]] Subscription findService(std::function<void(EdsCalendarStore::Service)> done) {
        return service.findService(std::move(done));
    }

private:
    struct Request;

    void addPart(const std::weak_ptr<Request>& request, CalendarWindow part);
    void markUser(std::vector<CalendarEvent>& events) const;

    const CalendarConsent consent;
    const OwnAddresses ownAddresses;
    const std::vector<FailedCalendar> withoutPlace;
    EdsCalendarStore service;
    IcsFolderStore folders;
    Subscription search; ///< for the service
    Subscription grant;  ///< the same, before a grant is told
    Lifetime lifetime;   // last: goes first
};

} // namespace quorva
