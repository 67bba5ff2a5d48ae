// The cost of matching the texts of a new meeting window, relative to a walk through the tables'
// rows for each text.
#include "Measuring.h"
#include "base/Text.h"
#include "catalogue/ParticipantMatching.h"
#include "support/PlainParticipantMatching.h"

#include <array>
#include <random>

namespace quorva::bench {
namespace {

constexpr int rounds = 50;
constexpr std::size_t texts = 5'000;
constexpr std::size_t textsOfBot = 500; ///< one bot or banner per this many texts
constexpr std::string_view platform = "Zoom";

constexpr std::array firstNames{"Ada",       "Jürgen", "Benjamin", "Noémie",   "Priya",
                                "Mary Jane", "Tom",    "Łukasz",   "Samantha", "Иван",
                                "Charlotte", "健",     "Grace"};
constexpr std::array lastNames{"Lovelace", "Müller",   "Robertson", "Okonkwo", "García Márquez",
                               "Chen",     "Andersen", "Bothwell",  "Ivanova", "Smith"};
constexpr std::array roles{"", "", " (Host)", " (Guest)", ", muted", ", video off"};
constexpr std::array labels{"Mute",
                            "Unmute my microphone",
                            "Participants (48)",
                            "Chat",
                            "Share screen",
                            "button",
                            "More options",
                            "Raise hand",
                            "Leave meeting",
                            "list item",
                            "Turn on captions",
                            "Reactions",
                            "10:42",
                            "Settings for this call…",
                            "Audio connected"};
constexpr std::array words{"the",    "minutes", "we",      "agreed",    "about", "budget",
                           "is",     "next",    "quarter", "please",    "read",  "notes",
                           "before", "meeting", "Friday",  "otherwise", "für",   "recording",
                           "again,", "copied",  "assist",  "great!",    "👍",     "question:"};
constexpr std::array found{"Anna's Notetaker (Otter.ai)", "This meeting is being recorded",
                           "Fireflies.ai Notetaker", "Acme Notetaker", "AI Companion is active"};

/// Half of the texts are names, a quarter labels, a quarter lines of a chat; the same in every run.
std::vector<std::string> makeTexts() {
    std::mt19937 random(20260415); // NOLINT(*-msc51-cpp)
    const auto oneOf = [&random](const auto& list) -> std::string {
        return list[random() % list.size()];
    };
    const auto name = [&] { return oneOf(firstNames) + " " + oneOf(lastNames) + oneOf(roles); };
    const auto line = [&] {
        std::string text = oneOf(words);
        for (auto more = 3 + random() % 20; more > 0; --more)
            text += " " + oneOf(words);
        return text;
    };
    std::vector<std::string> made;
    for (std::size_t i = 0; i < texts; ++i) {
        const auto kind = random() % 4;
        made.push_back(kind < 2 ? name() : kind == 2 ? oneOf(labels) : line());
        if (i % textsOfBot == textsOfBot - 1)
            made.back() = found[i / textsOfBot % found.size()];
    }
    return made;
}

struct Finding {
    std::optional<ParticipantBotMatch> bot;
    std::optional<IndicatorMatch> indicator;

    bool operator==(const Finding&) const = default;
};

Finding lookUp(const std::string& text) {
    return {matchParticipant(text), matchIndicator(text, platform)};
}

/// The reference lower-cases a text once.
Finding walk(const std::string& text) {
    const auto lower = lowerCased(text);
    return {plain::matchParticipant(text, lower), plain::matchIndicator(lower, platform)};
}

void participants(benchmark::State& state, Summary& summary) {
    const auto made = makeTexts();
    const auto timed = [&](auto match) {
        return cpuSecondsOf([&] {
            for (const auto& text : made)
                benchmark::DoNotOptimize(match(text));
        });
    };
    const double veryFirst = timed(lookUp); // also builds what is cached between calls
    std::size_t matched = 0;
    for (const auto& text : made) {
        const auto finding = lookUp(text);
        matched += finding.bot || finding.indicator ? 1 : 0;
        if (finding != walk(text))
            return state.SkipWithError("the walk has found something else");
    }
    if (matched != texts / textsOfBot)
        return state.SkipWithError("not the bots and banners and only these were found");

    const auto compared = compare(
        state, [&] { return timed(walk); }, [&] { return timed(lookUp); });
    state.counters["ratio"] = compared.ratio;
    summary.add("matching 5,000 new texts of meeting windows, CPU", compared.candidate * 1e3, "ms");
    summary.add("matching 5,000 new texts / walk through the rows", compared.ratio, "x", 1);
    summary.add("the same for the first of all, once", veryFirst / compared.reference, "x", 1);
}

} // namespace

void registerParticipantBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("participants",
                                 [&](benchmark::State& state) { participants(state, summary); })
        ->Iterations(rounds)
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace quorva::bench
