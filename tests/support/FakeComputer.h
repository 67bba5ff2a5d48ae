// A whole computer in memory, for the coordinator and what shows it.
#pragma once

#include "core/AppState.h"
#include "platform/linux/storage/OpenSslSha256.h"
#include "support/FakeAccessibilityTree.h"
#include "support/FakeCalendarStore.h"
#include "support/FakeDesktop.h"
#include "support/FakeNotificationCenter.h"
#include "support/FakeProcesses.h"
#include "support/MemoryPreferences.h"
#include "support/RecordingLog.h"
#include "support/VirtualMainLoop.h"

namespace quorva {

struct FakeComputer {
    VirtualMainLoop loop;
    RecordingLog log;
    FakeProcessTable processTable;
    FakeApplications applications;
    FakeCalendarStore calendars;
    FakeAccessibilityTree accessibility{loop};
    MemoryPreferences preferences{loop};
    FakeNotificationCenter notifications;
    FakeSpeechSynthesizer speech;
    FakeAudioDevices audioDevices;
    FakeClipboard clipboard;
    FakeLoginItem loginItem{loop};
    FakeSystemSettings systemSettings;
    FakeDetectionTest detectionTest;
    Platform platform{loop,      log,           processTable, applications,
                      calendars, accessibility, openSslSha256};
    AppServices services{platform,  preferences, notifications,  speech,       audioDevices,
                         clipboard, loginItem,   systemSettings, detectionTest};

    FakeComputer() { processTable.run(1, "/usr/lib/systemd/systemd"); }

    /// Starts Otter.ai, as the process 100 or another.
    void startOtter(ProcessIdentifier process = 100) {
        processTable.run(process, "/home/ann/Otter.app/otter-helper");
    }

    /// Invites Otter.ai to a meeting that begins after so long.
    void inviteOtter(const std::string& event, Seconds after) {
        const auto start = loop.now() + std::chrono::round<Time::duration>(after);
        calendars.events.push_back({.eventIdentifier = event,
                                    .title = "Case review",
                                    .start = start,
                                    .end = start + std::chrono::hours(1),
                                    .attendees = {{std::nullopt, "mailto:notetaker@otter.ai"}},
                                    .calendarName = "Work"});
    }
};

} // namespace quorva
