// quorva-bench: runs the benchmarks and prints the ratios at the end. Accepts Google Benchmark's
// options, for example --benchmark_filter=nextScan.
#include "Measuring.h"

#include <cstdio>

int main(int count, char* texts[]) {
    benchmark::Initialize(&count, texts);
    if (benchmark::ReportUnrecognizedArguments(count, texts))
        return 2;
    quorva::bench::Summary summary;
    quorva::bench::registerScanBenchmarks(summary);
    quorva::bench::registerLogBenchmarks(summary);
    quorva::bench::registerCalendarBenchmarks(summary);
    quorva::bench::registerMatchingBenchmarks(summary);
    quorva::bench::registerMeetingBenchmarks(summary);
    quorva::bench::registerParticipantBenchmarks(summary);
    registerCoreBenchmarks(summary);
    quorva::bench::registerEdsBenchmarks(summary);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("\n%s", summary.toText().c_str());
}
