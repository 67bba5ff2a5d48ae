// How the benchmarks measure: a candidate and its reference take turns in one run, so that whatever
// disturbs the machine disturbs both, and what is reported is the median of the ratios.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
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

/// The middle one of at least one value.
[[nodiscard]] double medianOf(std::vector<double> values);

/// Medians over all turns, in seconds; `ratio` is the median of each turn's own ratio.
struct Comparison {
    double reference = 0;
    double candidate = 0;
    double ratio = 0;
};

/// Calls both once each iteration, the one that goes first changing every time. Each does its work
/// and returns the seconds that count, so that preparing and clearing up can be left out.
/// `state` reports the candidate's time; its benchmark must use manual time.
template <typename Reference, typename Candidate>
[[nodiscard]] Comparison compare(benchmark::State& state, Reference&& reference,
                                 Candidate&& candidate) {
    std::vector<double> references;
    std::vector<double> candidates;
    std::vector<double> ratios;
    bool referenceIsFirst = false;
    for ([[maybe_unused]] auto _ : state) {
        referenceIsFirst = !referenceIsFirst;
        double referenceSeconds = referenceIsFirst ? reference() : 0;
        const double candidateSeconds = candidate();
        if (!referenceIsFirst)
            referenceSeconds = reference();
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

} // namespace quorva::bench
