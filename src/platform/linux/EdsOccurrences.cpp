#include "platform/linux/EdsOccurrences.h"

#include "catalogue/Text.h"

#include <algorithm>
#include <libecal/libecal.h>
#include <libical/ical.h>
#include <string_view>

namespace quorva {
namespace {

std::optional<std::string> textOf(const char* text) {
    return text && *text ? std::optional<std::string>(text) : std::nullopt;
}

/// The address without its scheme, in lower case.
std::string bareAddress(std::string_view url) {
    auto address = lowerCased(url);
    constexpr std::string_view scheme = "mailto:";
    if (address.starts_with(scheme))
        address.erase(0, scheme.size());
    const auto isSpace = [](char c) { return c == ' ' || c == '\t'; };
    address.erase(address.begin(), std::find_if_not(address.begin(), address.end(), isSpace));
    address.erase(std::find_if_not(address.rbegin(), address.rend(), isSpace).base(),
                  address.end());
    return address;
}

ParticipantStatus statusOf(icalproperty* attendee) {
    auto* const parameter = icalproperty_get_first_parameter(attendee, ICAL_PARTSTAT_PARAMETER);
    switch (parameter ? icalparameter_get_partstat(parameter) : ICAL_PARTSTAT_NEEDSACTION) {
    case ICAL_PARTSTAT_NEEDSACTION:
        return ParticipantStatus::pending;
    case ICAL_PARTSTAT_ACCEPTED:
        return ParticipantStatus::accepted;
    case ICAL_PARTSTAT_DECLINED:
        return ParticipantStatus::declined;
    case ICAL_PARTSTAT_TENTATIVE:
        return ParticipantStatus::tentative;
    case ICAL_PARTSTAT_DELEGATED:
        return ParticipantStatus::delegated;
    default:
        return ParticipantStatus::unknown;
    }
}

CalendarParticipant participantOf(icalproperty* property, const char* address,
                                  const std::set<std::string>& ownAddresses) {
    auto* const name = icalproperty_get_first_parameter(property, ICAL_CN_PARAMETER);
    CalendarParticipant participant{
        .name = name ? textOf(icalparameter_get_cn(name)) : std::nullopt,
        .url = address ? address : "",
    };
    participant.isCurrentUser = ownAddresses.contains(bareAddress(participant.url));
    return participant;
}

/// Those invited and, if not among them, the organizer.
std::vector<CalendarParticipant> participantsOf(icalcomponent* event,
                                                const std::set<std::string>& ownAddresses) {
    std::vector<CalendarParticipant> participants;
    for (auto* property = icalcomponent_get_first_property(event, ICAL_ATTENDEE_PROPERTY); property;
         property = icalcomponent_get_next_property(event, ICAL_ATTENDEE_PROPERTY)) {
        participants.push_back(
            participantOf(property, icalproperty_get_attendee(property), ownAddresses));
        participants.back().status = statusOf(property);
    }
    auto* const property = icalcomponent_get_first_property(event, ICAL_ORGANIZER_PROPERTY);
    if (!property)
        return participants;
    auto organizer = participantOf(property, icalproperty_get_organizer(property), ownAddresses);
    const bool isListed =
        std::any_of(participants.begin(), participants.end(), [&](const auto& participant) {
            return bareAddress(participant.url) == bareAddress(organizer.url);
        });
    if (!isListed && !organizer.url.empty())
        participants.push_back(std::move(organizer));
    return participants;
}

CalendarEvent eventOf(icalcomponent* event, const EdsReadingContext& context, Time start,
                      Time end) {
    return {
        .eventIdentifier = textOf(icalcomponent_get_uid(event)),
        .title = textOf(icalcomponent_get_summary(event)),
        .start = start,
        .end = end,
        .isAllDay = icalcomponent_get_dtstart(event).is_date != 0,
        .attendees = participantsOf(event, context.ownAddresses),
        .calendarName = context.calendarName,
    };
}

/// The time zone of this computer, which floating times and whole days are in.
ICalTimezone* localZone() {
    const std::unique_ptr<GTimeZone, Release<g_time_zone_unref>> local(g_time_zone_new_local());
    if (auto* const zone =
            i_cal_timezone_get_builtin_timezone(g_time_zone_get_identifier(local.get())))
        return zone;
    auto* const system = e_cal_util_get_system_timezone();
    return system ? system : i_cal_timezone_get_utc_timezone();
}

Time timeOf(const ICalTime* time, ICalTimezone* local) {
    auto* const own = i_cal_time_get_timezone(time);
    auto* const zone = i_cal_time_is_utc(time) ? i_cal_timezone_get_utc_timezone()
                       : own                   ? own
                                               : local;
    return std::chrono::system_clock::from_time_t(i_cal_time_as_timet_with_zone(time, zone));
}

/// The start, by the rule, of the occurrence that a changed one stands for.
std::optional<Time> replacedStart(ECalComponent* component, const EdsReadingContext& context,
                                  ICalTimezone* local, GCancellable* cancellable) {
    auto* const range = e_cal_component_get_recurid(component);
    if (!range)
        return std::nullopt;
    std::optional<Time> start;
    auto* const moment = e_cal_component_range_get_datetime(range);
    if (auto* const value = moment ? e_cal_component_datetime_get_value(moment) : nullptr) {
        const auto* const zone = e_cal_component_datetime_get_tzid(moment);
        if (zone && !i_cal_time_is_utc(value))
            i_cal_time_set_timezone(
                value, e_cal_client_tzlookup_cb(zone, context.client, cancellable, nullptr));
        start = timeOf(value, local);
    }
    e_cal_component_range_free(range);
    return start;
}

using ICalTimePtr = GObjectPtr<ICalTime>;

ICalTimePtr utcTime(Time time) {
    return ICalTimePtr(i_cal_time_new_from_timet_with_zone(
        std::chrono::system_clock::to_time_t(time), FALSE, i_cal_timezone_get_utc_timezone()));
}

struct Expansion {
    const EdsReadingContext& context;
    ICalTimezone* local;
    const std::set<Time>& replaced;
    bool isChanged = false; ///< whether what is expanded stands for one occurrence of a series
    std::vector<CalendarEvent>& events;
};

gboolean addOccurrence(ICalComponent* component, ICalTime* startTime, ICalTime* endTime,
                       gpointer data, GCancellable*, GError**) {
    const auto& expansion = *static_cast<const Expansion*>(data);
    const auto start = timeOf(startTime, expansion.local);
    const auto end = timeOf(endTime, expansion.local);
    const auto& context = expansion.context;
    const bool overlaps = start < context.end && (end > context.start || start >= context.start);
    if (overlaps && (expansion.isChanged || !expansion.replaced.contains(start)))
        expansion.events.push_back(
            eventOf(static_cast<icalcomponent*>(i_cal_object_get_native(I_CAL_OBJECT(component))),
                    context, start, end));
    return TRUE;
}

} // namespace

std::vector<CalendarEvent> occurrencesOf(const EdsComponents& event,
                                         const EdsReadingContext& context,
                                         GCancellable* cancellable) {
    auto* const local = localZone();
    std::set<Time> replaced;
    for (const auto& component : event)
        if (const auto start = replacedStart(component.get(), context, local, cancellable))
            replaced.insert(*start);

    std::vector<CalendarEvent> events;
    const auto from = utcTime(context.start);
    const auto to = utcTime(context.end + std::chrono::seconds(1));
    for (const auto& component : event) {
        if (e_cal_component_get_status(component.get()) == I_CAL_STATUS_CANCELLED)
            continue;
        Expansion expansion{context, local, replaced,
                            e_cal_component_is_instance(component.get()) != FALSE, events};
        e_cal_recur_generate_instances_sync(
            e_cal_component_get_icalcomponent(component.get()), from.get(), to.get(), addOccurrence,
            &expansion, e_cal_client_tzlookup_cb, context.client, local, cancellable, nullptr);
    }
    return events;
}

} // namespace quorva
