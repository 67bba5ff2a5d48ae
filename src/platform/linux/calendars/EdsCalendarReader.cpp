#include "platform/linux/calendars/EdsCalendarReader.h"

#include "base/Text.h"
#include "platform/linux/icalendar/ICalendarReader.h"

#include <fmt/format.h>

#include <iterator>
#include <libecal/libecal.h>
#include <utility>

namespace quorva {
namespace {

/// Does not wait for the server of a remote calendar: its local copy is sufficient.
constexpr auto noWait = static_cast<guint32>(-1);

/// The error of a call. Its text can be read once.
struct Failure {
    GError* error = nullptr;

    std::string text() {
        const GErrorPtr owned(std::exchange(error, nullptr));
        return owned ? owned->message : "unknown error";
    }

    /// Clears the error if it says that the requested object does not exist; returns whether it
    /// did.
    bool clearIfNotFound() {
        if (!g_error_matches(error, E_CAL_CLIENT_ERROR, E_CAL_CLIENT_ERROR_OBJECT_NOT_FOUND))
            return false;
        g_clear_error(&error);
        return true;
    }
};

/// Connects a signal with at most one argument to a task.
template <typename Handler>
void connectTask(gpointer object, const char* signal, Handler handler, const Task& task) {
    g_signal_connect_data(
        object, signal, G_CALLBACK(handler), new Task(task),
        [](gpointer data, GClosure*) { delete static_cast<Task*>(data); },
        static_cast<GConnectFlags>(0));
}

/// Has the calendar report changes from now on, but not its present content.
GObjectPtr<ECalClientView> follow(ECalClient* client, const Task& onChange,
                                  GCancellable* cancellable) {
    ECalClientView* created = nullptr;
    if (!e_cal_client_get_view_sync(client, "#t", &created, cancellable, nullptr))
        return nullptr;
    GObjectPtr<ECalClientView> view(created);
    const auto note =
        +[](ECalClientView*, gpointer, gpointer task) { (*static_cast<Task*>(task))(); };
    for (const auto* signal : {"objects-added", "objects-modified", "objects-removed"})
        connectTask(view.get(), signal, note, onChange);

    GSList* const fields = g_slist_prepend(nullptr, const_cast<char*>("UID"));
    e_cal_client_view_set_fields_of_interest(view.get(), fields, nullptr);
    g_slist_free(fields);
    e_cal_client_view_set_flags(view.get(), E_CAL_CLIENT_VIEW_FLAGS_NONE, nullptr);
    Failure failure;
    e_cal_client_view_start(view.get(), &failure.error);
    if (failure.error) {
        g_clear_error(&failure.error);
        return nullptr;
    }
    return view;
}

EdsReading connect(const EdsRequest& request, GCancellable* cancellable) {
    Failure failure;
    auto* const client =
        e_cal_client_connect_sync(request.calendar.source.get(), E_CAL_CLIENT_SOURCE_TYPE_EVENTS,
                                  noWait, cancellable, &failure.error);
    if (!client)
        return {.failure = failure.text()};
    auto connection = std::make_shared<EdsConnection>();
    connection->client.reset(E_CAL_CLIENT(client));
    connectTask(
        client, "backend-died", +[](EClient*, gpointer task) { (*static_cast<Task*>(task))(); },
        request.onGone);
    connection->view = follow(connection->client.get(), request.onChange, cancellable);
    return {.connection = std::move(connection)};
}

std::set<std::string> addressesOf(const EdsRequest& request, EClient* client,
                                  GCancellable* cancellable) {
    auto addresses = request.calendar.ownAddresses;
    gchar* address = nullptr;
    if (e_client_get_backend_property_sync(client, E_CAL_BACKEND_PROPERTY_CAL_EMAIL_ADDRESS,
                                           &address, cancellable, nullptr)) {
        const GCharsPtr owned(address);
        if (owned && *owned)
            addresses.insert(lowerCased(owned.get()));
    }
    return addresses;
}

/// Assembles the text of a calendar file from the components that the service returns.
class CalendarText {
public:
    CalendarText(ECalClient* client_, GCancellable* cancellable_)
        : client(client_), cancellable(cancellable_) {}

    void add(ECalComponent* component) {
        if (const GCharsPtr event(e_cal_component_get_as_string(component)); event)
            text += event.get();
        else
            lost.addLoss("event that the calendar service could not write out");
        i_cal_component_foreach_tzid(e_cal_component_get_icalcomponent(component), addZone, this);
    }

    [[nodiscard]] std::string finish() const {
        return "BEGIN:VCALENDAR\r\n" + text + "END:VCALENDAR\r\n";
    }

    [[nodiscard]] const ICalendarProblems& problems() const { return lost; }

private:
    /// Adds the definition of a zone that the system does not know: the inviting program's own.
    static void addZone(ICalParameter* parameter, gpointer data) {
        auto& self = *static_cast<CalendarText*>(data);
        const auto* const name = i_cal_parameter_get_tzid(parameter);
        if (!name || !self.zones.insert(name).second || zoneOfName(name))
            return;
        ICalTimezone* zone = nullptr;
        if (!e_cal_client_get_timezone_sync(self.client, name, &zone, self.cancellable, nullptr) ||
            !zone)
            return;
        const GObjectPtr<ICalComponent> definition(i_cal_timezone_get_component(zone));
        if (definition)
            self.text += GCharsPtr(i_cal_component_as_ical_string(definition.get())).get();
    }

    ECalClient* client;
    GCancellable* cancellable;
    std::string text;
    ICalendarProblems lost;
    std::set<std::string> zones;
};

using Components = std::vector<GObjectPtr<ECalComponent>>;

Components adopt(GSList* list) {
    Components components;
    for (const auto* link = list; link; link = link->next)
        components.emplace_back(static_cast<ECalComponent*>(link->data));
    g_slist_free(list);
    return components;
}

/// The service searches an index by time, in which it files times without a zone as UTC. The user's
/// clock may differ from that by up to 14 hours.
std::string queryOf(const EdsRequest& request) {
    constexpr std::chrono::hours margin(14);
    const auto text = [](Time time) {
        return GCharsPtr(isodate_from_time_t(std::chrono::system_clock::to_time_t(time)));
    };
    return fmt::format(R"((occur-in-time-range? (make-time "{}") (make-time "{}")))",
                       text(request.start - margin).get(), text(request.end + margin).get());
}

/// Whether the event may have parts outside of the period.
bool isOfSeries(ECalComponent* component) {
    return e_cal_component_has_recurrences(component) || e_cal_component_is_instance(component);
}

/// Fetches the events in the period; returns why that failed. The service returns only those parts
/// of a series that lie in the period; an occurrence that was moved out of it shows only in the
/// whole series.
std::optional<std::string> fetch(ECalClient* client, const std::string& query, CalendarText& text,
                                 GCancellable* cancellable) {
    Failure failure;
    GSList* list = nullptr;
    if (!e_cal_client_get_object_list_as_comps_sync(client, query.c_str(), &list, cancellable,
                                                    &failure.error))
        return failure.text();
    std::set<std::string> series;
    for (const auto& component : adopt(list)) {
        if (isOfSeries(component.get()))
            series.insert(e_cal_component_get_uid(component.get()));
        else
            text.add(component.get());
    }
    for (const auto& identifier : series) {
        if (!e_cal_client_get_objects_for_uid_sync(client, identifier.c_str(), &list, cancellable,
                                                   &failure.error)) {
            if (failure.clearIfNotFound())
                continue; // deleted meanwhile
            return failure.text();
        }
        for (const auto& component : adopt(list))
            text.add(component.get());
    }
    return std::nullopt;
}

EdsReading readThrough(std::shared_ptr<const EdsConnection> connection, const EdsRequest& request,
                       GCancellable* cancellable) {
    auto* const client = connection->client.get();
    CalendarText text(client, cancellable);
    EdsReading reading;
    reading.failure = fetch(client, queryOf(request), text, cancellable);
    if (reading.failure)
        return reading;
    const auto addresses = addressesOf(request, E_CLIENT(client), cancellable);
    const auto calendar =
        readICalendar(text.finish(), {.floating = userZone().zone,
                                      .userAddresses = {addresses.begin(), addresses.end()}});
    auto found = occurrencesOf(calendar, request.start, request.end);
    found.problems.add(calendar.problems);
    found.problems.add(text.problems());
    reading.losses = lossesOf(found.problems);
    reading.events = std::move(found.events);
    for (auto& event : reading.events) {
        event.calendarName = request.calendar.name;
        event.calendarIdentifier = request.calendar.identifier;
    }
    if (connection->view)
        reading.connection = std::move(connection);
    return reading;
}

} // namespace

EdsReading readEdsCalendar(const EdsRequest& request, GCancellable* cancellable) {
    if (request.connection) {
        auto reading = readThrough(request.connection, request, cancellable);
        if (!reading.failure || g_cancellable_is_cancelled(cancellable))
            return reading;
    }
    auto opened = connect(request, cancellable);
    return opened.failure ? opened : readThrough(opened.connection, request, cancellable);
}

} // namespace quorva
