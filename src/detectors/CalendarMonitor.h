// Finds bots that are invited to the user's meetings. Reads the events of the next 24 hours,
// matches every attendee against the catalogue, announces each bot once, also across restarts, and
// leaves out the ones that the user dismissed. Main thread only. Never writes to a calendar.
#pragma once

#include "base/Lifetime.h"
#include "base/MainLoop.h"
#include "base/Published.h"
#include "catalogue/CalendarBotDatabase.h"
#include "catalogue/Records.h"
#include "platform/CalendarStore.h"
#include "platform/Log.h"
#include "platform/PreferenceKeys.h"
#include "platform/Sha256.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorva {

/// The accounts and folders that calendars come from.
struct CalendarSourceSummary {
    std::vector<CalendarSource> sources; ///< in the store's order
    bool hasGoogle = false;
    bool hasExchange = false;
    bool hasICloud = false;
    bool hasOtherCalDAV = false;

    bool operator==(const CalendarSourceSummary&) const = default;
};

class CalendarMonitor {
public:
    /// The services and the database must outlive the monitor. Nothing is scanned yet.
    CalendarMonitor(MainLoop& loop, CalendarStore& eventStore, Preferences& preferences, Log& log,
                    Sha256 sha256,
                    const CalendarBotDatabase& database = CalendarBotDatabase::shared());

    /// The invited bots, by the start of the event.
    Published<std::vector<CalendarBotDetection>, CalendarMonitor> calendarDetections;
    /// Whether scans run by themselves: by timer, and when calendars change.
    Published<bool, CalendarMonitor> isMonitoring{false};
    /// The access to calendars when it was last looked up. This is its one home: everything else
    /// observes it.
    Published<CalendarAuthorization, CalendarMonitor> authorizationStatus;
    /// When the last completed scan began.
    Published<std::optional<Time>, CalendarMonitor> lastScanDate;
    /// How many calendars the last scan asked, the failed ones included.
    Published<std::size_t, CalendarMonitor> calendarCount;
    /// The calendars that the last scan could not read. What was found in them before stays listed
    /// until its event has ended.
    Published<std::vector<FailedCalendar>, CalendarMonitor> failedCalendars;

    /// Called when a bot is found that was never announced before. Called within a scan, before
    /// `calendarDetections` changes; may be empty.
    std::function<void(const CalendarBotDetection&)> onBotDetected;
    /// Called when a listed bot is no longer found. As above.
    std::function<void(const CalendarBotDetection&)> onBotDisappeared;

    /// Looks up the access. Stops monitoring if the user has taken it back. Where there is nothing
    /// to read at present, monitoring goes on, and the store looks for calendars again.
    void refreshAuthorization();

    /// Asks the user for access to calendars, and calls `done` with whether it is granted, on the
    /// main loop or within this call. A failure to ask is logged and counts as refused.
    void requestAccess(std::function<void(bool granted)> done);

    /// Scans at once, then every 5 minutes, and when calendars change, but no sooner than 30
    /// seconds after the last scan began: changes until then are looked at together. Where there is
    /// nothing to read, waits for calendars to come. Does nothing when access is not given, and
    /// when monitoring already.
    void startMonitoring();

    /// Stops scans, and the one that is running. Detections stay listed.
    void stopMonitoring();

    /// Starts one full scan, which completes when the calendars have answered. While one is under
    /// way, another one follows it, however often this is called. Without full access there is no
    /// scan, and `refreshAuthorization` says what becomes of monitoring. Where there is nothing to
    /// read, what was found before stays listed until its event has ended.
    void scanCalendar();

    /// Removes the detection from the list for good, also after a restart.
    void dismiss(const CalendarBotDetection& detection);

    [[nodiscard]] CalendarSourceSummary discoverCalendarSources() const;

private:
    using KeySet = std::set<std::string>;
    using Detections = std::vector<CalendarBotDetection>;
    using Origins = std::map<std::string, std::string>; ///< identifiers of calendars, by key

    bool checkAccess();
    void outlast(Time now);
    void noteChange();
    void complete(const CalendarWindow& window, Time now);
    [[nodiscard]] Detections findBots(const std::vector<CalendarEvent>& events, Time now,
                                      Origins& places) const;
    [[nodiscard]] std::optional<CalendarBotDetection>
    makeDetection(const CalendarParticipant& attendee, const CalendarEvent& event) const;
    [[nodiscard]] Detections withoutDismissed(Detections found) const;
    void keepFailed(Detections& fresh, Origins& places, const std::vector<FailedCalendar>& failed,
                    Time now) const;
    void announce(const Detections& fresh, const Detections& old);
    void reportFailed(const std::vector<FailedCalendar>& failed);
    [[nodiscard]] std::string hashedDetectionKey(const CalendarBotDetection& detection) const;
    [[nodiscard]] KeySet loadKeys(const PreferenceKey<std::vector<std::string>>& key) const;
    void saveKeys();
    static void prune(KeySet& keys);

    MainLoop& loop;
    CalendarStore& eventStore;
    Preferences& preferences;
    Log& log;
    const Sha256 sha256;
    const CalendarBotDatabase& database;

    const Seconds scanInterval{300.0};
    const Seconds minimumScanInterval{30.0};
    const std::chrono::hours lookAhead{24};

    Timer scanTimer;
    Timer deferredScan; ///< for changes too soon after a scan
    Subscription storeChangedObserver;
    std::optional<Time> lastScanTime; ///< when the last scan began; nothing: long ago
    Origins origins;                  ///< of what is listed
    KeySet alertedDetections;         ///< hashed keys, which tell nothing of the events
    KeySet dismissedDetections;

    enum class ScanState { none, fetching, completing };
    ScanState scanState = ScanState::none;
    bool isScanWaiting = false;
    Subscription fetch;

    Lifetime lifetime; // last: goes first
};

} // namespace quorva
