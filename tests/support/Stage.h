// The whole program but for its main file, over a computer in memory: what the user interface is
// looked at and tried on.
#pragma once

#include "core/AppDelegate.h"
#include "core/CalendarConsentDialog.h"
#include "core/Updates.h"
#include "support/FakeComputer.h"
#include "ui/windows/UserInterface.h"

#include <QCoreApplication>
#include <string>
#include <utility>

namespace quorva {

struct Stage {
    FakeComputer computer;
    FakeUpdateService updateService;
    AppState state{computer.services};
    AppDelegate delegate{state, computer.loop};
    CalendarConsentDialog consent{computer.preferences};
    Updates updates{computer.loop, computer.preferences, updateService};
    UserInterface ui{state, delegate, consent, updates, computer.loop};

    Stage() { settle(); }

    /// Runs what is to be done now, of the program and of Qt.
    void settle() {
        for (int round = 0; round < 3; ++round) {
            computer.loop.runPosted();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void showProcess(const std::string& name, BotCategory category) {
        auto bots = state.detectedBots.get();
        bots.push_back({.id = name + "-1",
                        .signatureId = name,
                        .name = name,
                        .category = category,
                        .confidence = 95,
                        .method = DetectionMethod::processPath,
                        .processIdentifier = 100,
                        .matchedValue = "/opt/" + name,
                        .detectedAt = computer.loop.now()});
        state.detectedBots = std::move(bots);
    }
    void showParticipant(const std::string& name, BotCategory category,
                         const std::string& platform = "Zoom") {
        auto bots = state.participantBotDetections.get();
        bots.push_back({.id = platform + "-" + name,
                        .platformName = platform,
                        .matchedParticipantName = name + " Notetaker",
                        .botPatternMatched = name,
                        .botDisplayName = name,
                        .category = category,
                        .confidence = 90,
                        .windowTitle = platform + " Meeting",
                        .detectedAt = computer.loop.now()});
        state.participantBotDetections = std::move(bots);
    }
    void showInvited(const std::string& name, std::chrono::minutes until) {
        auto detections = state.calendarDetections.get();
        const auto start = computer.loop.now() + until;
        detections.push_back({.id = name + "-cal",
                              .signatureId = name + "-cal",
                              .botName = name,
                              .category = BotCategory::transcription,
                              .confidence = 95,
                              .matchedEmail = "notetaker@example.com",
                              .eventTitle = "Case review",
                              .eventStartDate = start,
                              .eventEndDate = start + std::chrono::hours(1),
                              .eventIdentifier = "event",
                              .calendarName = "Work",
                              .detectedAt = computer.loop.now()});
        state.calendarDetections = std::move(detections);
    }
    void showIndicator(IndicatorType type, const std::string& platform) {
        auto indicators = state.recordingIndicators.get();
        indicators.push_back({.id = platform + std::string(rawValue(type)),
                              .platformName = platform,
                              .indicatorText = "recording in progress",
                              .indicatorType = type,
                              .windowTitle = platform + " Meeting",
                              .detectedAt = computer.loop.now()});
        state.recordingIndicators = std::move(indicators);
    }
    void permit(bool hasCalendars, bool hasAccessibility) {
        state.permissions.hasCalendarAccess = hasCalendars;
        state.permissions.hasAccessibilityPermission = hasAccessibility;
        state.permissions.needsCalendarAccountSetup = false;
    }
};

} // namespace quorva
