// The cost of finding the next day's events in a folder with many events, relative to a folder with
// only these.
#include "Measuring.h"
#include "platform/linux/calendars/IcsFolders.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>

#include <fstream>

namespace quorva::bench {
namespace {

constexpr int rounds = 200;
constexpr double lookBound = 2.0;
constexpr int eventsOfDay = 20;

/// A folder of files, of which 20 contain an event of the requested day. Every tenth of the others
/// is a weekly meeting on another day.
class Store {
public:
    explicit Store(int files) {
        const auto work = folder.path / "calendars" / "work";
        std::filesystem::create_directories(work);
        for (int i = 0; i < files; ++i) {
            const auto path = work / fmt::format("{}.ics", i);
            std::ofstream(path) << text(i);
            std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() -
                                                       std::chrono::hours(1));
        }
        hints.watched = {folder.path / "calendars", work};
        for (const auto& place : hints.watched)
            std::filesystem::last_write_time(place, std::filesystem::file_time_type::clock::now() -
                                                        std::chrono::hours(1));
        (void)look();
    }

    /// The number of events found.
    std::size_t look() {
        const Time start(std::chrono::seconds(1'774'656'000)); // 2026-03-28, a Saturday
        return folders.look(start, start + std::chrono::hours(24), hints).window.events.size();
    }
    [[nodiscard]] std::size_t reads() const { return folders.reads(); }

private:
    static std::string text(int number) {
        const bool isOfDay = number < eventsOfDay;
        return fmt::format("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:{}\r\n"
                           "DTSTART;TZID=Europe/Berlin:{}T120000\r\nDURATION:PT1H\r\n{}"
                           "ATTENDEE;CN=A:mailto:a@example.org\r\n"
                           "ATTENDEE;CN=B:mailto:b@example.org\r\n"
                           "END:VEVENT\r\nEND:VCALENDAR\r\n",
                           number, isOfDay ? "20260328" : "20250409",
                           !isOfDay && number % 10 == 0 ? "RRULE:FREQ=WEEKLY\r\n" : "");
    }

    TemporaryFolder folder;
    IcsFolders folders{{.root = folder.path / "calendars"}};
    IcsFolders::Hints hints;
};

void nextLook(benchmark::State& state, Summary& summary) {
    Store small(eventsOfDay);
    Store large(10'000);
    const auto read = large.reads();
    const auto timed = [](Store& store) {
        return secondsOf([&] { benchmark::DoNotOptimize(store.look()); });
    };
    const auto compared = compare(
        state, [&] { return timed(small); }, [&] { return timed(large); });
    if (large.look() != eventsOfDay || large.reads() != read)
        state.SkipWithError("the look did not find the events, or has read files again");
    state.counters["ratio"] = compared.ratio;
    summary.add("next look, 20 events of 10,000 / of 20", compared.ratio, "x", lookBound);
}

} // namespace

void registerCalendarBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("nextLook",
                                 [&](benchmark::State& state) { nextLook(state, summary); })
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
