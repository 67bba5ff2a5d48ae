// The main loop time of a detection, from the detector's callback to the notification, with a full
// history that is stored on a disk each time; and the growth of memory over ten thousand
// detections.
#include "Measuring.h"
#include "core/AppState.h"
#include "platform/linux/storage/JsonPreferences.h"
#include "platform/linux/storage/LinuxWholeFile.h"
#include "support/FakeComputer.h"
#include "support/TemporaryFolder.h"

#include <fmt/format.h>

#include <fstream>
#include <unistd.h>

namespace quorva::bench {
namespace {

constexpr int detections = 10'000;
constexpr int settled = 1'000;
constexpr double taskBound = 2.0;   // ms
constexpr double growthBound = 1.0; // MB: the allocator's bookkeeping

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    double whole = 0;
    double resident = 0;
    file >> whole >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

void detectionBurst(benchmark::State& state, Summary& summary) {
    const TemporaryFolder folder;
    FakeComputer computer;
    LinuxWholeFile file(folder.path / "preferences.json");
    JsonPreferences preferences(computer.loop, computer.log, file);
    AppState app({computer.platform, preferences, computer.notifications, computer.speech,
                  computer.audioDevices, computer.clipboard, computer.loginItem,
                  computer.systemSettings, computer.detectionTest});
    computer.loop.runPosted();
    std::vector<double> seconds;
    double before = 0;
    for ([[maybe_unused]] auto _ : state)
        for (int index = 0; index < detections; ++index) {
            if (index == settled)
                before = residentMegabytes();
            app.sources.process.monitor.onBotDetected({.id = fmt::format("otter-{}", index),
                                                       .signatureId = "otter",
                                                       .name = "Otter.ai",
                                                       .matchedValue = "/opt/otter/otter-helper",
                                                       .detectedAt = computer.loop.now()});
            const auto turn = secondsOf([&] { computer.loop.advance(Seconds(0.01)); });
            computer.notifications.posted.clear();
            if (index >= settled)
                seconds.push_back(turn);
        }
    summary.add("main loop, one detection into a full history", medianOf(seconds) * 1e3, "ms",
                taskBound);
    summary.add("memory, from detection 1,000 to 10,000", residentMegabytes() - before, "MB",
                growthBound);
}

} // namespace

void registerCoreBenchmarks(Summary& summary) {
    benchmark::RegisterBenchmark("detectionBurst", [&summary](benchmark::State& state) {
        detectionBurst(state, summary);
    })->Iterations(1);
}

} // namespace quorva::bench
