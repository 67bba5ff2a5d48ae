#include "drill/Drill.h"

#include <utility>

namespace quorva {

Drill::Drill(MainLoop& loop_, DrillLink link) : loop(loop_), finding{.link = link} {}

void Drill::run(Done done_) {
    done = std::move(done_);
    begun = loop.now();
    deadline = loop.after(timeout, lifetime.guard([this] { fail(unfinished()); }));
    begin();
}

void Drill::fail(BrokenStep broken) {
    finding.broken = std::move(broken);
    finish();
}

/// Events after the end change nothing.
void Drill::finish() {
    if (!done)
        return;
    deadline.reset();
    finding.took = loop.now() - begun;
    loop.post(
        lifetime.guard([call = std::exchange(done, nullptr), ended = finding] { call(ended); }));
}

} // namespace quorva
