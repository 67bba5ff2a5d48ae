// A monitor of meetings over applications in memory, of which Zoom, Chrome and Teams are watched.
#pragma once

#include "detectors/MeetingParticipantMonitor.h"
#include "support/AccessibleElements.h"
#include "support/FakeAccessibilityTree.h"
#include "support/FakeProcesses.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace quorva {

inline constexpr ProcessIdentifier zoom = 100;
inline constexpr ProcessIdentifier chrome = 200;
inline constexpr ProcessIdentifier teams = 300;
inline constexpr auto otter = "Otter.ai Notetaker";

class MeetingMonitorTest : public testing::Test {
protected:
    MeetingMonitorTest() {
        applications.running = {{"us.zoom.xos", "Zoom", std::nullopt, zoom},
                                {std::nullopt, "zoom", std::nullopt, 101},
                                {"org.example.editor", "Zoom Meeting", std::nullopt, 102},
                                {"com.google.Chrome", "Chrome", std::nullopt, chrome},
                                {"com.microsoft.teams2", "Teams", std::nullopt, teams}};
        for (const auto process : {zoom, chrome, teams})
            tree.applications[process];
        start();
    }

    /// Starts the program, or starts it again.
    void start() {
        monitor.emplace(loop, applications, tree, log);
        const auto note = [this](const char* what) {
            return [this, what](const auto& detection) { events.push_back(what + detection.id); };
        };
        monitor->onBotDetected = note("+");
        monitor->onBotDisappeared = note("-");
        monitor->onRecordingIndicatorDetected = note("!");
        monitor->onRecordingIndicatorDisappeared = note("/");
    }

    /// One pass over windows that have been read.
    void pass() {
        monitor->readAhead();
        monitor->performScan();
    }
    void shows(ProcessIdentifier process, std::string title, AccessibleElementPtr window) {
        tree.applications[process].windows = {
            {.title = std::move(title), .tree = std::move(window)}};
    }
    void inZoom(const std::vector<std::string>& texts) {
        shows(zoom, "Zoom Meeting", meetingWindow(texts));
    }
    void quit(ProcessIdentifier process) {
        std::erase_if(applications.running, [&](const RunningApplication& application) {
            return application.processIdentifier == process;
        });
        tree.applications.erase(process);
    }
    std::vector<std::string> announced() { return std::exchange(events, {}); }
    std::vector<std::string> bots() const {
        std::vector<std::string> names;
        for (const auto& bot : *monitor->participantBotDetections)
            names.push_back(bot.matchedParticipantName);
        return names;
    }
    std::size_t logged(LogLevel level, const std::string& message) const {
        return static_cast<std::size_t>(std::count(log.messages.begin(), log.messages.end(),
                                                   LoggedMessage{level, message, "participant"}));
    }

    VirtualMainLoop loop;
    FakeApplications applications;
    FakeAccessibilityTree tree{loop};
    RecordingLog log;
    std::optional<MeetingParticipantMonitor> monitor;
    std::vector<std::string> events;
};

} // namespace quorva
