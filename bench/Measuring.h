// How the benchmarks measure: a candidate and its reference alternate in one run, so that noise
// affects both, and the median of the ratios is reported.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>
#include <string>
#include <vector>

namespace quorva::bench {

/// The wall time of `work`, in seconds.
template <typename Work>
[[nodiscard]] double secondsOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The processor time of this process for `work`, in seconds.
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

/// The median of at least one value.
[[nodiscard]] double medianOf(std::vector<double> values);

/// Medians over all rounds, in seconds a call; `ratio` is the median of the ratios of the rounds.
struct Comparison {
    double reference = 0;
    double candidate = 0;
    double ratio = 0;
};

/// A round, one iteration of `state`, runs reference, candidate, candidate, reference, so that
/// neither profits from going first. Each call returns the seconds that count, so that set-up and
/// clean-up can be left out. `state` reports the candidate's time; its benchmark must use manual
/// time.
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

/// The summary after all benchmarks: one figure a line, some with a bound.
class Summary {
public:
    /// `bound` 0 means none.
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

/// Each registers benchmarks, which add to the summary when they run.
void registerScanBenchmarks(Summary& summary);
void registerLogBenchmarks(Summary& summary);
void registerCalendarBenchmarks(Summary& summary);
void registerMatchingBenchmarks(Summary& summary);
void registerMeetingBenchmarks(Summary& summary);
void registerParticipantBenchmarks(Summary& summary);
void registerCoreBenchmarks(Summary& summary);
/// Run these only in tests/support/private-session.sh: they write to the session's calendars.
void registerEdsBenchmarks(Summary& summary);

} // namespace quorva::bench
