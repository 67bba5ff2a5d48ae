// The one coordinator of the running program: owns the detectors, turns what they find into
// history, notifications and alerts, keeps settings and logs, starts and stops monitoring. Views
// show its fields and call its operations.
#pragma once

#include "core/AlertPanel.h"
#include "core/AllowList.h"
#include "core/AnnouncementQueue.h"
#include "core/DetectionTrial.h"
#include "core/Limitations.h"
#include "core/NotificationManager.h"
#include "core/Objections.h"
#include "core/Permissions.h"
#include "core/RecordLog.h"
#include "core/Settings.h"
#include "detectors/CalendarMonitor.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "detectors/ProcessMonitor.h"
#include "platform/Platform.h"
#include "platform/SystemSettings.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// All that the program needs of the computer. Everything must outlive the AppState.
struct AppServices {
    Platform& platform;
    Preferences& preferences;
    NotificationCenter& notifications;
    SpeechSynthesizer& speech;
    AudioDevices& audioDevices;
    Clipboard& clipboard;
    LoginItem& loginItem;
    SystemSettings& systemSettings;
    DetectionTest& detectionTest;
};

/// Main thread only.
class AppState {
public:
    /// Loads the settings and logs, looks up the permissions and, where the settings say so, starts
    /// monitoring. 3 seconds later an alert shows what is there already.
    explicit AppState(const AppServices& services);

    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    // Services first: what follows is made of them.
private:
    AppServices services;

public:
    Settings settings;
    AllowList allowList;
    RecordLog<DetectionEvent> detectionLog; ///< one entry per announced detection
    Objections objections;
    ProcessMonitor processMonitor;
    CalendarMonitor calendarMonitor;
    MeetingParticipantMonitor participantMonitor;
    NotificationManager notificationManager;
    AlertPanel alertPanel;
    Permissions permissions;
    DetectionTrial detectionTrial;

    Published<bool> isMonitoring{false};
    Published<std::vector<DetectedBot>> detectedBots;                ///< without the allowed ones
    Published<std::vector<CalendarBotDetection>> calendarDetections; ///< the same
    Published<std::vector<ParticipantBotDetection>> participantBotDetections; ///< the same
    Published<std::vector<RecordingIndicatorDetection>> recordingIndicators;
    Published<bool> isCalendarMonitoring{false};
    Published<bool> isParticipantMonitoring{false};
    Published<std::optional<std::string>> activeMeetingPlatform;
    Published<std::optional<Time>> lastProcessScanDate;
    Published<bool> hasActiveThreats{false};
    Published<bool> showingLogSheet{false}; ///< the popover shows the history
    Published<bool> calendarWindow{false};  ///< the calendar permission window shows
    Published<bool> hasTray{true};          ///< the desktop shows the tray icon; set by the views
    /// What cannot be done just now. Changes are logged.
    Published<std::vector<Limitation>> limitations;

    /// How many detections are listed, of all kinds.
    [[nodiscard]] std::size_t totalThreatCount() const;

    /// The state in words, with what could not be looked at.
    [[nodiscard]] std::string stateText() const;

    /// Starts the monitors that are switched on and may look. Nothing when monitoring already.
    void startMonitoring();
    /// Stops all monitors. What was detected stays listed.
    void stopMonitoring();
    /// Scans once with each monitor, the process monitor without memory.
    void refreshAllScans();

    /// Flips the setting, stores it, and starts or stops the monitor.
    void toggleCalendarMonitor();
    void toggleParticipantMonitor();

    /// Stores the settings and registers or unregisters the login item.
    void saveSettings();

    /// Hides a product from now on, or shows it again.
    void allow(const std::string& key);
    void removeFromAllowList(const std::string& key);

    /// As Objections::fileObjection.
    bool fileObjection(const ObjectionOccasion& occasion);

    /// An objection to whatever is there: the participant, the invited bot, or the process that is
    /// first in its list.
    bool objectToFirst();

    /// Puts the recommendation on the clipboard.
    void share();

    /// Shows the calendar permission window, asks after half a second, and closes it 0.8 seconds
    /// after a grant.
    void showCalendarPermissionWindow();
    void closeCalendarPermissionWindow();

    /// Ends the first run, and starts monitoring.
    void completeOnboarding();

    /// Opens the desktop's settings; false when this desktop has no such pane.
    bool openInternetAccountsSettings();
    bool openSettingsPane(SettingsPane pane);
    bool openAddress(const std::string& address);

    /// The present time, for texts such as "2 min. ago".
    [[nodiscard]] Time now() const;

private:
    void wireProcessMonitor();
    void wireCalendarMonitor();
    void wireParticipantMonitor();
    void wireLimitations();
    void refreshPermissions();
    void startCalendarMonitorIfWanted();
    void startParticipantMonitorIfWanted();
    void updateThreats();
    void showStartupAlert();
    void objectToNotification(const std::string& identifier);

    void takeDetection(const DetectedBot& bot);
    void takeDetection(const CalendarBotDetection& detection);
    void takeDetection(const ParticipantBotDetection& detection);
    void takeDetection(const RecordingIndicatorDetection& indicator);
    void record(DetectionEvent event, BotAlert alert, Task notify);

    template <typename Detection>
    [[nodiscard]] std::function<void(const Detection&)>
    laterOnLoop(std::function<void(const Detection&)> handler);

    void filterDetections();
    void scheduleLimitations();
    void updateLimitations();

    AnnouncementQueue announcements;
    std::vector<Subscription> cancellables;
    Timer startupAlertTimer;
    Timer calendarWindowTimer;
    bool isLimitationUpdateDue = false;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
