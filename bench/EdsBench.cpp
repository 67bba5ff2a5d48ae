// The cost of fetching the next day's events from the desktop's calendar service when it stores
// many events, relative to the same fetch when it stores only these. It is a real service, in a
// private session.
#include "Measuring.h"
#include "platform/linux/calendars/EdsCalendarStore.h"
#include "platform/linux/glib/GLibMainLoop.h"

#include <fmt/chrono.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <libecal/libecal.h>
#include <optional>
#include <stdexcept>

namespace quorva::bench {
namespace {

using namespace std::chrono_literals;

constexpr int rounds = 50;
constexpr int roundsAmongSeries = 10; ///< these fetches are slow
constexpr int fetchesOfTurn = 5;      ///< timed together
constexpr double fetchBound = 2.0;
constexpr int eventsOfDay = 20;
constexpr int manyEvents = 10'000;
constexpr int batch = 500;
const Time day(std::chrono::seconds(1'774'656'000)); // 2026-03-28, a Saturday

class NoLog final : public Log {
public:
    void write(LogLevel, std::string_view, QuorvaLogCategory, CallSite) override {}
};

/// A failure of the service, which ends the benchmark.
void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// The calendars to compare. In one with `series`, every tenth event is an endless weekly meeting
/// on another day.
struct Calendar {
    const char* identifier;
    int events;
    bool hasSeries;
};
constexpr Calendar small{"small", eventsOfDay, false};
constexpr Calendar large{"large", manyEvents, false};
constexpr Calendar serial{"serial", manyEvents, true};
constexpr std::array calendars{small, large, serial};

/// The event with this number: the first 20 are on the day, the others are spread over four years.
std::string vevent(int number, bool hasSeries) {
    const bool isOfDay = number < eventsOfDay;
    const bool isSeries = hasSeries && !isOfDay && number % 10 == 0;
    const int distance =
        2 + number % 730; // days; at least two, because a part of an adjacent day may count
    const auto start = isOfDay    ? day + 1h * number
                       : isSeries ? day - 24h * (7 * (1 + number % 50) + 3) // a Wednesday
                                  : day + 24h * (number % 2 == 0 ? distance : -distance) + 12h;
    return fmt::format("BEGIN:VEVENT\r\nUID:{}\r\nDTSTAMP:20260101T000000Z\r\nSUMMARY:Meeting\r\n"
                       "DTSTART:{:%Y%m%dT%H%M%SZ}\r\nDURATION:PT30M\r\n{}"
                       "ATTENDEE;CN=A:mailto:a@example.org\r\n"
                       "ATTENDEE;CN=B:mailto:b@example.org\r\nEND:VEVENT\r\n",
                       number, std::chrono::floor<std::chrono::seconds>(start),
                       isSeries ? "RRULE:FREQ=WEEKLY\r\n" : "");
}

/// The session's calendar service. Files define its calendars before it is started.
class Service {
public:
    Service() {
        const auto folder =
            std::filesystem::path(std::getenv("XDG_CONFIG_HOME")) / "evolution" / "sources";
        std::filesystem::create_directories(folder);
        for (const auto& calendar : calendars)
            std::ofstream(folder / fmt::format("{}.source", calendar.identifier))
                << "[Data Source]\nDisplayName=" << calendar.identifier
                << "\nEnabled=true\nParent=local-stub\n\n[Calendar]\nBackendName=local\n";
        require(fetch().calendars >= calendars.size(), "the service does not have the calendars");
        // Created by the store: the library has one registry in a process.
        registry.reset(e_source_registry_new_sync(nullptr, nullptr));
        require(registry != nullptr, "the service's registry is gone");
        for (const auto& calendar : calendars)
            fill(calendar);
    }

    /// Makes this calendar the only enabled one.
    void select(const Calendar& calendar) {
        auto* const sources =
            e_source_registry_list_sources(registry.get(), E_SOURCE_EXTENSION_CALENDAR);
        for (const auto* link = sources; link; link = link->next) {
            auto* const source = static_cast<ESource*>(link->data);
            const bool isWanted = std::string_view(e_source_get_uid(source)) == calendar.identifier;
            if (isWanted == (e_source_get_enabled(source) != FALSE))
                continue;
            e_source_set_enabled(source, isWanted);
            require(e_source_write_sync(source, nullptr, nullptr), "a calendar can't be switched");
        }
        g_list_free_full(sources, g_object_unref);

        const auto deadline = std::chrono::steady_clock::now() + 60s;
        while (!isSelected(fetch(), calendar))
            require(std::chrono::steady_clock::now() < deadline, "the calendar isn't found");
    }

    /// The day's events of the enabled calendars.
    CalendarWindow fetch() {
        std::optional<CalendarWindow> answer;
        const auto subscription = store.fetchEvents(
            day, day + 24h, [&](CalendarWindow window) { answer = std::move(window); });
        while (!answer) // ends: the store gives up after 10 seconds
            g_main_context_iteration(nullptr, TRUE);
        return std::move(*answer);
    }

    static bool isSelected(const CalendarWindow& window, const Calendar& calendar) {
        return window.calendars == 1 && window.failed.empty() &&
               window.events.size() == eventsOfDay &&
               window.events.front().calendarName == calendar.identifier;
    }

private:
    void fill(const Calendar& calendar) {
        const GObjectPtr<ESource> source(
            e_source_registry_ref_source(registry.get(), calendar.identifier));
        const GObjectPtr<EClient> client(e_cal_client_connect_sync(
            source.get(), E_CAL_CLIENT_SOURCE_TYPE_EVENTS, 30, nullptr, nullptr));
        require(client != nullptr, "a calendar can't be opened");
        for (int first = 0; first < calendar.events; first += batch) {
            GSList* components = nullptr;
            for (int i = first; i < std::min(first + batch, calendar.events); ++i)
                components = g_slist_prepend(
                    components,
                    i_cal_component_new_from_string(vevent(i, calendar.hasSeries).c_str()));
            const bool isStored = e_cal_client_create_objects_sync(
                E_CAL_CLIENT(client.get()), components, E_CAL_OPERATION_FLAG_NONE, nullptr, nullptr,
                nullptr);
            g_slist_free_full(components, g_object_unref);
            require(isStored, "events can't be stored");
        }
        GSList* stored = nullptr;
        require(e_cal_client_get_object_list_sync(E_CAL_CLIENT(client.get()), "#t", &stored,
                                                  nullptr, nullptr),
                "the stored events can't be counted");
        const auto count = g_slist_length(stored);
        g_slist_free_full(stored, g_object_unref);
        require(count == static_cast<guint>(calendar.events), "not all events are stored");
    }

    GLibMainLoop loop;
    NoLog log;
    EdsCalendarStore store{loop, log};
    GObjectPtr<ESourceRegistry> registry;
};

/// Not timed: switching to a calendar, the first fetch from it, and checking the result.
void fetch(benchmark::State& state, const Calendar& calendar,
           const std::function<void(const Comparison&)>& report) {
    const auto timed = [&](const Calendar& which) {
        static Service service; // of the process
        service.select(which);
        CalendarWindow last;
        const auto seconds = secondsOf([&] {
            for (int i = 0; i < fetchesOfTurn; ++i)
                last = service.fetch();
        });
        require(Service::isSelected(last, which), "a fetch did not find the events");
        return seconds / fetchesOfTurn;
    };
    try {
        const auto compared = compare(
            state, [&] { return timed(small); }, [&] { return timed(calendar); });
        state.counters["ratio"] = compared.ratio;
        report(compared);
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

} // namespace

void registerEdsBenchmarks(Summary& summary) {
    if (!std::getenv("QUORVA_PRIVATE_SESSION"))
        return;
    const auto add = [&](const char* name, const Calendar& calendar, const char* what,
                         double bound) {
        benchmark::RegisterBenchmark(name,
                                     [&summary, calendar, what, bound](benchmark::State& state) {
                                         fetch(state, calendar, [&](const Comparison& compared) {
                                             summary.add(
                                                 fmt::format("calendar service, {} / of 20", what),
                                                 compared.ratio, "x", bound);
                                             summary.add(fmt::format("calendar service, {}", what),
                                                         compared.candidate * 1e3, "ms");
                                         });
                                     })
            ->Iterations(calendar.hasSeries ? roundsAmongSeries : rounds)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    };
    add("edsFetch", large, "20 events of 10,000", fetchBound);
    add("edsFetchAmongSeries", serial, "20 events of 10,000 with 998 endless series", 0);
}

} // namespace quorva::bench
