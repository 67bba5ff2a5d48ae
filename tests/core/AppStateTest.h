// The coordinator over a computer in memory.
#pragma once

#include "core/AppState.h"
#include "support/AccessibleElements.h"
#include "support/FakeComputer.h"

#include <gmock/gmock.h>

namespace quorva {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class AppStateTest : public testing::Test {
protected:
    /// Starts the program, or starts it again, and lets it settle.
    AppState& start() {
        state.reset();
        state.emplace(computer.services);
        computer.loop.runPosted();
        return *state;
    }
    /// Shows a Zoom meeting with these participants.
    void meet(const std::vector<std::string>& texts) {
        computer.applications.running = {{"us.zoom.xos", "Zoom", std::nullopt, 500}};
        computer.accessibility.applications[500].windows = {
            {.title = "Zoom Meeting", .tree = meetingWindow(texts)}};
    }
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> shown;
        for (const auto& request : computer.notifications.posted)
            shown.push_back(request.title);
        return shown;
    }
    [[nodiscard]] std::vector<std::string> identifiers() const {
        std::vector<std::string> shown;
        for (const auto& request : computer.notifications.posted)
            shown.push_back(request.identifier);
        return shown;
    }
    [[nodiscard]] std::vector<std::string> history() const {
        std::vector<std::string> names;
        for (const auto& event : *state->detectionLog.records)
            names.push_back(event.botName + "/" + event.method);
        return names;
    }
    /// What is listed of this kind.
    [[nodiscard]] Findings listed(const FindingKind& kind) const {
        Findings found;
        for (const auto& finding : *state->findings)
            if (&finding->kind() == &kind)
                found.push_back(finding);
        return found;
    }
    [[nodiscard]] std::string stored(std::string_view key) const {
        return computer.preferences.read<PreferenceData>(key)
            .value.value_or(PreferenceData{})
            .bytes;
    }

    FakeComputer computer;
    std::optional<AppState> state;
};

} // namespace quorva
