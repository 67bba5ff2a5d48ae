#include "sources/Source.h"

#include <utility>

namespace quorva {

Source::Source(const SourceProfile& profile_, MainLoop& loop_) : profile(profile_), loop(loop_) {}

void Source::setOn(bool isOn) {
    if (isOn) {
        mode = Mode::watching;
        if (state->kind == SourceState::Kind::off)
            state = SourceState{SourceState::Kind::looking, {}}; // never "looked" before it has
        startIfWanted();
    } else {
        mode = Mode::off;
        stopWatching();
    }
    schedule(isStateDue);
}

void Source::startIfWanted() {
    if (mode != Mode::watching || (!mayLook() && !mayWait()) || isWatching())
        return;
    awaitsLook = tellsOfLooks;
    startWatching();
}

void Source::lookOnce(Task done) {
    mode = Mode::lookingOnce;
    look(afterUpdate(std::move(done)));
}

void Source::awaitFirstLook(Task done) {
    awaitLook(afterUpdate(std::move(done)));
}

/// Fields tell of a change before it is made, so the list and the state are read a task later.
Task Source::afterUpdate(Task done) {
    return [this, done = std::move(done)] {
        loop.post(lifetime.guard([this, done] {
            findings = list();
            state = currentState();
            done();
        }));
    };
}

void Source::appeared(FindingPtr finding) {
    loop.post(lifetime.guard([this, finding = std::move(finding)] {
        if (onAppeared)
            onAppeared(finding);
    }));
}

void Source::gone(FindingPtr finding) {
    loop.post(lifetime.guard([this, finding = std::move(finding)] {
        if (onGone)
            onGone(finding);
    }));
}

void Source::sightLost(std::string text) {
    loop.post(lifetime.guard([this, text = std::move(text)] {
        if (onSightLost)
            onSightLost(text);
    }));
}

SourceState Source::currentState() const {
    if (mode == Mode::off)
        return {};
    if (!mayLook() || (mode == Mode::watching && !isWatching()))
        return obstacle();
    return awaitsLook ? SourceState{SourceState::Kind::looking, {}} : sight();
}

/// Fields tell of a change before it is made, and several often change together.
void Source::schedule(bool& due) {
    if (isStateDue || isListDue) {
        due = true;
        return;
    }
    due = true;
    loop.post(lifetime.guard([this] { update(); }));
}

void Source::update() {
    const bool isListToUpdate = std::exchange(isListDue, false);
    isStateDue = false;
    if (isListToUpdate)
        findings = list();
    if (auto next = currentState(); !(next == *state))
        state = std::move(next);
}

} // namespace quorva
