// The one coordinator of the running program: owns the sources of detections, has what they find
// recorded and announced, keeps settings and logs, starts and stops monitoring. Views show its
// fields and call its operations.
#pragma once

#include "core/AlertPanel.h"
#include "core/AllowList.h"
#include "core/Announcer.h"
#include "core/DetectionTrial.h"
#include "core/Limitations.h"
#include "core/NotificationManager.h"
#include "core/Objections.h"
#include "core/Permissions.h"
#include "core/RecordLog.h"
#include "core/Settings.h"
#include "core/Verdict.h"
#include "platform/Platform.h"
#include "platform/SystemSettings.h"
#include "sources/Sources.h"

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
    /// Loads the settings and logs, looks up the permissions and starts monitoring if the settings
    /// say so. 3 seconds later an alert names the first bot that is already there.
    explicit AppState(const AppServices& services);

    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    // Services first: the members below are made of them.
private:
    AppServices services;

public:
    Settings settings;
    AllowList allowList;
    RecordLog<DetectionEvent> detectionLog; ///< one entry for each announced
                                            ///< detection, and loss of sight
    Objections objections;
    Sources sources;
    NotificationManager notificationManager;
    AlertPanel alertPanel;
    Permissions permissions;
    Limitations limitations;
    DetectionTrial detectionTrial;

    Published<bool, AppState> isMonitoring{false};
    /// The findings of all sources that the user has not switched off, without the allowed
    /// products, in the order of the sources.
    Published<Findings, AppState> findings;
    Published<bool, AppState> showingLogSheet{false}; ///< whether the popover shows the history
    Published<bool, AppState> calendarWindow{false};  ///< whether that window is shown

    /// The number of findings of all kinds.
    [[nodiscard]] std::size_t totalThreatCount() const { return findings->size(); }
    [[nodiscard]] bool hasActiveThreats() const { return totalThreatCount() > 0; }

    [[nodiscard]] Verdict verdict() const;
    /// The verdict in one line, with the places that cannot be seen.
    [[nodiscard]] std::string stateText() const;

    /// Starts the sources that are switched on and may look. Does nothing while monitoring.
    void startMonitoring();
    /// Stops all sources. Their findings stay listed.
    void stopMonitoring();
    /// Makes every source that is on look once more. The process source forgets earlier sightings
    /// first.
    void refreshAllScans();

    /// Flips the setting, stores it, and starts or stops the source.
    void toggleCalendarMonitor();
    void toggleParticipantMonitor();

    /// Stores the user's own mail addresses, and looks at the calendars with them.
    void setMyAddresses(std::vector<std::string> addresses);

    /// Stores the settings and registers or unregisters the login item.
    void saveSettings();

    /// Hides a product from now on, or shows it again.
    void allow(const std::string& key);
    void removeFromAllowList(const std::string& key);

    /// As Objections::fileObjection.
    bool fileObjection(const ObjectionOccasion& occasion);

    /// Files an objection to the listed finding of this kind and identifier. Does nothing if it is
    /// gone.
    void objectTo(const FindingKind& kind, const std::string& id);

    /// Files an objection to the first participant, else invited bot, else process, else to nothing
    /// in particular.
    bool objectToFirst();

    /// Copies the recommendation to the clipboard.
    void share();

    void showHistory() { showingLogSheet = true; }
    void closeHistory() { showingLogSheet = false; }

    /// Shows the calendar permission window, asks for access after half a second, and closes the
    /// window 0.8 seconds after access was granted, unless there is nothing to read, which it says.
    void showCalendarPermissionWindow();
    void closeCalendarPermissionWindow();

    /// Ends the first run, and starts monitoring.
    void completeOnboarding();

    /// Opens a pane of the desktop's settings. False if this desktop does not have it.
    bool openInternetAccountsSettings();
    bool openSettingsPane(SettingsPane pane);
    bool openAddress(const std::string& address);

    /// The present time, for texts such as "2 min. ago".
    [[nodiscard]] Time now() const;

private:
    void wire(Source& source);
    void begin();
    [[nodiscard]] bool isSwitchedOn(const Source& source) const;
    [[nodiscard]] bool isWanted(const Source& source) const;
    void applySwitches();
    void filterFindings();
    void objectToNotification(const std::string& identifier);

    Announcer announcer;
    std::vector<Subscription> subscriptions;
    Timer startupAlertTimer;
    Timer calendarWindowTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
