// The trial of detection that the user can ask for, and what it has said so far.
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

    /// What the trial has said so far, or the last one said.
    Published<std::vector<std::string>, DetectionTrial> lines;
    Published<bool, DetectionTrial> isRunning{false};

    /// Begins a trial, in place of the last one's lines. Nothing while one is under way.
    void start();

private:
    DetectionTest& test;
    Subscription running;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
