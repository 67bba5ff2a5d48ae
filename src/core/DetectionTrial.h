// Runs the detection test that the user can start from the settings, and keeps its output.
#pragma once

#include "base/Lifetime.h"
#include "base/Published.h"
#include "platform/DetectionTest.h"

#include <string>
#include <vector>

namespace quorva {

/// Main thread only.
class DetectionTrial {
public:
    /// The service must outlive this.
    explicit DetectionTrial(DetectionTest& test);

    /// The output of the running test, or of the last one.
    Published<std::vector<std::string>, DetectionTrial> lines;
    Published<bool, DetectionTrial> isRunning{false};

    /// Starts a test and clears the output of the last one. Does nothing while a test is running.
    void start();

private:
    DetectionTest& test;
    Subscription running;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
