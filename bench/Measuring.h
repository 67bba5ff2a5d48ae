// How the benchmarks measure: a candidate and its reference take turns in one run, so that whatever
// disturbs the machine disturbs both, and what is reported is the median of the ratios.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

namespace quorva::bench {

/// The time that `work` takes, in seconds.
template <typename Work>
[[nodiscard]] double secondsOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The processor time that this process spends on `work`, in seconds.
template <typename Work>
[[nodiscard]] double cpuSecondsOf(Work&& work) {
    const auto now = [] {
        timespec time{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

/// The middle one of at least one value.
[[nodiscard]] double medianOf(std::vector<double> values);

/// Medians over all rounds, in seconds for one call; `ratio` is the median of the rounds' ratios.
struct Comparison {
    double reference = 0;
    double candidate = 0;
    double ratio = 0;
};

/// A round, one iteration of `state`, is reference, candidate, candidate, reference: going first is
/// worth the same to both. Each call does its work and returns the seconds that count, so that
/// preparing and clearing up can be left out. `state` reports the candidate's time; its benchmark
/// must use manual time.
template <typename Reference, typename Candidate>
[[nodiscard]] Comparison compare(benchmark::State& state, Reference&& reference,
                                 Candidate&& candidate) {
    std::vector<double> references;
    std::vector<double> candidates;
    std::vector<double> ratios;
    for ([[maybe_unused]] auto _ : state) {
        const double before = reference();
        double candidateSeconds = candidate();
        candidateSeconds = (candidateSeconds + candidate()) / 2;
        const double referenceSeconds = (before + reference()) / 2;
        references.push_back(referenceSeconds);
        candidates.push_back(candidateSeconds);
        ratios.push_back(candidateSeconds / referenceSeconds);
        state.SetIterationTime(candidateSeconds);
    }
    return {medianOf(references), medianOf(candidates), medianOf(ratios)};
}

/// What is told when all benchmarks have run: a figure a line, some of them with a bound.
class Summary {
public:
    /// `bound` 0: there is none.
    void add(std::string what, double figure, std::string unit, double bound = 0);

    [[nodiscard]] std::string toText() const;

private:
    struct Line {
        std::string what;
        std::string figure;
        std::string bound;
        std::string verdict;
    };
    std::vector<Line> lines;
};

/// Each registers its benchmarks, which add to the summary when they run.
void registerScanBenchmarks(Summary& summary);
void registerLogBenchmarks(Summary& summary);
void registerCalendarBenchmarks(Summary& summary);
void registerMatchingBenchmarks(Summary& summary);
void registerMeetingBenchmarks(Summary& summary);
void registerParticipantBenchmarks(Summary& summary);
void registerCoreBenchmarks(Summary& summary);
/// Only within tests/support/private-session.sh, for they write to the session's calendars.
void registerEdsBenchmarks(Summary& summary);

} // namespace quorva::bench
