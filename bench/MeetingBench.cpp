// The cost of a pass over a meeting window: with a changed tree, which is walked and matched, and
// with the same tree as in the pass before. The main loop does nothing else in that time.
#include "Measuring.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "detectors/WindowScan.h"
#include "platform/linux/glib/GLibMainLoop.h"
#include "support/AccessibleElements.h"
#include "support/FakeProcesses.h"

#include <fmt/format.h>

#include <array>

namespace quorva::bench {
namespace {

constexpr int rounds = 200;
constexpr double unchangedBound = 5.0; // % of the time for a changed window
constexpr double longestBound = 5.0;   // ms
constexpr ProcessIdentifier browser = 100;
constexpr std::size_t bots = 5;

class NoLog final : public Log {
public:
    void write(LogLevel, std::string_view, QuorvaLogCategory, CallSite) override {}
};

/// One browser with one page that has been read completely.
class OnePage final : public AccessibilityTree {
public:
    AccessibleElementPtr tree;

    [[nodiscard]] bool isTrusted() const override { return true; }
    [[nodiscard]] Subscription onTrustChange(Task) override { return {}; }
    void requestTrust(std::function<void(bool)> done) override { done(true); }
    int enable(ProcessIdentifier, AccessibilitySwitch) override { return 0; }
    [[nodiscard]] AccessibleWindows windows(ProcessIdentifier) const override {
        return {.state = ReadState::read,
                .windows = {{.title = "Meet – weekly",
                             .state = ReadState::read,
                             .pages = {{.title = "Meet – weekly",
                                        .url = "https://meet.google.com/abc-defg-hij",
                                        .isShown = true,
                                        .state = ReadState::read,
                                        .extent = wholePageExtent(),
                                        .tree = tree}}}}};
    }
    void request(std::vector<ReadingRequest>) override {}
    [[nodiscard]] Subscription onRead(Task) override { return {}; }
};

/// A page of the largest size that is walked: participants, each with a name, a line of text and
/// the name of their role.
AccessibleElementPtr makePage() {
    constexpr std::array names{"Ada Lovelace",   "Jürgen Müller", "Noémie García Márquez",
                               "Łukasz Okonkwo", "健 Andersen",   "Mary Jane Robertson (Host)"};
    Elements people;
    for (std::size_t i = 0; people.size() + 2 < maxElementsBrowser; ++i) {
        AccessibleElement person{.role = AccessibilityRole::staticText,
                                 .value =
                                     i % 4 == 0 ? "please read the minutes before we meet" : "",
                                 .title = fmt::format("{} {}", names[i % names.size()], i),
                                 .roleDescription = "list item"};
        if (i % 1'000 == 500)
            person.title = fmt::format("Company {} Notetaker", i);
        people.push_back(std::make_shared<const AccessibleElement>(std::move(person)));
    }
    return element(AccessibilityRole::webArea, {},
                   {element(AccessibilityRole::list, {}, std::move(people))},
                   "https://meet.google.com/abc-defg-hij");
}

void meetingPass(benchmark::State& state, Summary& summary) {
    GLibMainLoop loop;
    NoLog log;
    FakeApplications applications;
    applications.running = {{"com.google.Chrome", "Chrome", std::nullopt, browser}};
    OnePage window;
    window.tree = makePage();
    MeetingParticipantMonitor monitor(loop, applications, window, log);
    double longest = 0;
    const auto pass = [&] { return cpuSecondsOf([&] { monitor.performScan(); }); };
    const auto compared = compare(
        state,
        [&] {
            window.tree = makePage(); // the old tree is freed within the pass
            const double seconds = pass();
            longest = std::max(longest, seconds);
            return seconds;
        },
        pass);
    if (monitor.participantBotDetections->size() != bots || monitor.coverage->windows != 1)
        return state.SkipWithError("not the bots and only these were found");
    state.counters["ratio"] = compared.ratio;
    summary.add("pass over a meeting window of 5,000 elements, CPU", compared.reference * 1e3,
                "ms");
    summary.add("the same, the longest of all", longest * 1e3, "ms", longestBound);
    summary.add("pass over the same window, unchanged / changed", compared.ratio * 100, "%",
                unchangedBound);
}

} // namespace

void registerMeetingBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("meetingPass",
                                 [&](benchmark::State& state) { meetingPass(state, summary); })
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
