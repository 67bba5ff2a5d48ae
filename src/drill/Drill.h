// A test of one detector's source with a stand-in. It records the steps that worked, or the step
// that failed and what helps. Main thread only.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"

#include <functional>
#include <string>
#include <vector>

namespace quorva {

/// The sources, each with everything between it and a detection.
enum class DrillLink { process, calendar, meeting };

/// The step that failed.
struct BrokenStep {
    std::string step;    ///< "start the stand-in"
    std::string problem; ///< a sentence: what happened instead, and what helps

    bool operator==(const BrokenStep&) const = default;
};

/// The result of a drill.
struct DrillFinding {
    DrillLink link = DrillLink::process;
    std::vector<std::string> passed; ///< the steps that worked: "started a stand-in"
    BrokenStep broken;               ///< empty: none
    Seconds took{0};

    [[nodiscard]] bool isBroken() const { return !broken.step.empty(); }
};

class Drill {
public:
    using Done = std::function<void(const DrillFinding&)>;

    /// The loop must outlive the drill.
    Drill(MainLoop& loop, DrillLink link);
    virtual ~Drill() = default;

    Drill(const Drill&) = delete;
    Drill& operator=(const Drill&) = delete;

    /// Runs the drill, once, and calls `done` once: after 10 seconds at most, as a task of the main
    /// loop, in which the drill may be destroyed. Destroying it earlier ends it without a call.
    void run(Done done);

protected:
    virtual void begin() = 0;

    /// The step that has not finished, for a drill that ran out of time.
    [[nodiscard]] virtual BrokenStep unfinished() = 0;

    void pass(std::string step) { finding.passed.push_back(std::move(step)); }
    void fail(BrokenStep broken);
    void finish();

    MainLoop& loop;
    Lifetime lifetime;

private:
    const Seconds timeout{10.0};

    DrillFinding finding;
    Done done;
    Time begun{};
    Timer deadline;
};

} // namespace quorva
