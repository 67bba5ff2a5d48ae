#include "core/DetectionTrial.h"

#include <utility>

namespace quorva {

DetectionTrial::DetectionTrial(DetectionTest& test_) : test(test_) {}

void DetectionTrial::start() {
    if (isRunning)
        return;
    isRunning = true;
    lines = std::vector<std::string>();
    running = test.run(lifetime.guard([this](const std::string& line) {
        auto next = *lines;
        next.push_back(line);
        lines = std::move(next);
    }),
                       lifetime.guard([this](bool) { isRunning = false; }));
}

} // namespace quorva
