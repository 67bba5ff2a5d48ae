#include "drill/SelfTest.h"

#include "drill/CalendarDrill.h"
#include "drill/MeetingDrill.h"
#include "drill/ProcessDrill.h"

#include <fmt/format.h>

#include <algorithm>
#include <random>
#include <utility>

namespace quorva {
namespace {

/// A name of its own for each test, so that a leftover stand-in or another program is not mistaken
/// for this test's stand-in.
std::string uniqueName() {
    return fmt::format("quorva-drill-{:08x}", std::random_device()());
}

} // namespace

SelfTest::SelfTest(Platform& platform_, DrillStandIns& standIns_)
    : platform(platform_), standIns(standIns_) {}

void SelfTest::run(std::vector<DrillLink> links, Progress progress_, Done done_) {
    waiting = std::move(links);
    std::reverse(waiting.begin(), waiting.end());
    findings.clear();
    progress = std::move(progress_);
    done = std::move(done_);
    next();
}

std::unique_ptr<Drill> SelfTest::make(DrillLink link) {
    auto& [loop, log, processTable, applications, calendars, accessibility, sha256] = platform;
    switch (link) {
    case DrillLink::process:
        return std::make_unique<ProcessDrill>(loop, applications, processTable, standIns,
                                              uniqueName());
    case DrillLink::calendar:
        return std::make_unique<CalendarDrill>(loop, log, sha256, standIns);
    case DrillLink::meeting:
        break;
    }
    return std::make_unique<MeetingDrill>(loop, log, processTable, accessibility, standIns);
}

void SelfTest::next() {
    if (waiting.empty()) {
        const auto call = std::exchange(done, nullptr);
        return call(std::exchange(findings, {})); // may destroy this
    }
    drill = make(waiting.back());
    waiting.pop_back();
    drill->run([this](const DrillFinding& finding) { handle(finding); });
}

/// Removes the stand-in of a source before the next source is tested.
void SelfTest::handle(const DrillFinding& finding) {
    findings.push_back(finding);
    if (progress)
        progress(findings.back());
    drill.reset();
    next();
}

} // namespace quorva
