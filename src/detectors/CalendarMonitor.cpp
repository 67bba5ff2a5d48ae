#include "detectors/CalendarMonitor.h"

#include "base/Text.h"
#include "detectors/Difference.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace quorva {
namespace {

constexpr std::size_t mostKeys = 1000;
constexpr std::size_t keysAfterPruning = 500;
constexpr int genericConfidence = 55;
constexpr std::string_view mailScheme = "mailto:";

bool holdsAt(std::string_view text) {
    return text.find('@') != std::string_view::npos;
}

std::string without(std::string text, std::string_view part) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at))
        text.erase(at, part.size());
    return text;
}

/// The attendee's address in lower case, from wherever the inviter's server has put it.
std::optional<std::string> attendeeEmail(const CalendarParticipant& attendee) {
    const std::string_view url = attendee.url;
    if (lowerCased(url.substr(0, mailScheme.size())) == mailScheme) {
        const auto address = trimmed(url.substr(mailScheme.size()));
        if (holdsAt(address))
            return lowerCased(address);
    }
    if (holdsAt(url))
        return lowerCased(trimmed(without(without(attendee.url, mailScheme), "MAILTO:")));
    if (attendee.name && holdsAt(*attendee.name))
        return lowerCased(trimmed(*attendee.name));
    return std::nullopt;
}

std::string eventKey(const CalendarEvent& event) {
    if (event.eventIdentifier)
        return *event.eventIdentifier;
    return event.title.value_or("untitled") + "-" + iso8601Seconds(event.start);
}

std::string detectionKey(const CalendarBotDetection& detection) {
    return detection.signatureId + "|" + detection.eventIdentifier;
}

CalendarBotDetection asProduct(CalendarBotDetection detection, const CalendarBotMatch& match) {
    detection.id = match.signature.id + "-" + detection.eventIdentifier;
    detection.signatureId = match.signature.id;
    detection.botName = match.signature.name;
    detection.category = match.signature.category;
    detection.confidence = match.confidence;
    return detection;
}

CalendarBotDetection asUnknownBot(CalendarBotDetection detection, std::string_view prefix) {
    detection.id = "generic-bot-" + detection.eventIdentifier;
    detection.signatureId = fmt::format("generic-{}", prefix);
    detection.botName = fmt::format("Unknown Bot ({}@...)", prefix);
    detection.category = BotCategory::unknown;
    detection.confidence = genericConfidence;
    return detection;
}

/// Whether monitoring may run: the user gives access, even if there is nothing to read now.
bool allowsMonitoring(CalendarAuthorization status) {
    return status == CalendarAuthorization::fullAccess ||
           status == CalendarAuthorization::restricted;
}

/// Whether one of these calendars satisfies the condition.
template <typename Condition>
bool anyOf(const std::vector<FailedCalendar>& calendars, Condition condition) {
    return std::any_of(calendars.begin(), calendars.end(), condition);
}

} // namespace

CalendarMonitor::CalendarMonitor(MainLoop& loop_, CalendarStore& eventStore_,
                                 Preferences& preferences_, Log& log_, Sha256 sha256_,
                                 const CalendarBotDatabase& database_)
    : authorizationStatus(eventStore_.authorizationStatus()),
      loop(loop_),
      eventStore(eventStore_),
      preferences(preferences_),
      log(log_),
      sha256(sha256_),
      database(database_),
      alertedDetections(loadKeys(preferenceKeys::calendarAlerted)),
      dismissedDetections(loadKeys(preferenceKeys::calendarDismissed)) {}

void CalendarMonitor::requestAccess(std::function<void(bool)> done) {
    eventStore.requestFullAccess(
        lifetime.guard([this, done = std::move(done)](const CalendarStore::AccessAnswer& answer) {
            if (answer.error)
                log.error(Printable::format("Error requesting calendar access: {}", *answer.error),
                          logCategory::calendar);
            refreshAuthorization();
            done(!answer.error && answer.granted);
        }));
}

void CalendarMonitor::startMonitoring() {
    if (isMonitoring)
        return;
    if (!allowsMonitoring(authorizationStatus)) {
        log.info("Cannot start monitoring: no calendar access", logCategory::calendar);
        return;
    }
    isMonitoring = true;
    prune(alertedDetections);
    prune(dismissedDetections);
    saveKeys();
    scanCalendar();
    if (!isMonitoring)
        return; // the scan found that access is gone
    storeChangedObserver = eventStore.onChange(lifetime.guard([this] { noteChange(); }));
    scanTimer = loop.every(scanInterval, lifetime.guard([this] { scanCalendar(); }));
}

void CalendarMonitor::stopMonitoring() {
    isMonitoring = false;
    scanTimer.reset();
    deferredScan.reset();
    storeChangedObserver.reset();
    isScanWaiting = false;
    if (scanState == ScanState::fetching) {
        fetch.reset();
        scanState = ScanState::none;
    }
}

void CalendarMonitor::noteChange() {
    const auto sinceScan = lastScanTime ? loop.now() - *lastScanTime : minimumScanInterval;
    if (sinceScan >= minimumScanInterval)
        scanCalendar();
    else if (!deferredScan)
        deferredScan = loop.after(minimumScanInterval - std::max(sinceScan, Seconds(0)),
                                  lifetime.guard([this] { scanCalendar(); }));
}

void CalendarMonitor::scanCalendar() {
    deferredScan.reset();
    if (scanState != ScanState::none) {
        isScanWaiting = true;
        return;
    }
    const Time now = loop.now();
    if (!checkAccess())
        return outlast(now);
    lastScanTime = now;
    scanState = ScanState::fetching;
    fetch.reset();
    auto answer = eventStore.fetchEvents(
        now, now + lookAhead, lifetime.guard([this, now](const CalendarWindow& window) {
            scanState = ScanState::completing;
            if (checkAccess())
                complete(window, now);
            else
                outlast(now);
            scanState = ScanState::none;
            if (std::exchange(isScanWaiting, false))
                loop.post(lifetime.guard([this] { scanCalendar(); }));
        }));
    if (scanState == ScanState::fetching) // else it was answered within the call
        fetch = std::move(answer);
}

void CalendarMonitor::refreshAuthorization() {
    const auto before = *authorizationStatus;
    authorizationStatus = eventStore.authorizationStatus();
    if (authorizationStatus == CalendarAuthorization::restricted)
        eventStore.lookForCalendars();
    if (!isMonitoring || allowsMonitoring(authorizationStatus))
        return;
    if (before == CalendarAuthorization::restricted) // it waited for what it may not read
        log.info("Cannot start monitoring: no calendar access", logCategory::calendar);
    else
        log.notice("Calendar access revoked, stopping monitor", logCategory::calendar);
    stopMonitoring();
}

bool CalendarMonitor::checkAccess() {
    refreshAuthorization();
    return authorizationStatus == CalendarAuthorization::fullAccess;
}

/// Without access, takes off the list whose event has ended. Where there are no calendars, none
/// counts as looked at until the next complete scan.
void CalendarMonitor::outlast(Time now) {
    if (authorizationStatus != CalendarAuthorization::restricted)
        return;
    calendarCount = 0;
    failedCalendars = std::vector<FailedCalendar>{};
    const Detections old = *calendarDetections; // a callback may dismiss one
    auto rest = old;
    std::erase_if(rest, [&](const auto& listed) { return listed.eventEndDate < now; });
    forEachMissing<CalendarBotDetection>(old, rest, detectionKey, onBotDisappeared);
    calendarDetections = withoutDismissed(std::move(rest));
}

void CalendarMonitor::complete(const CalendarWindow& window, Time now) {
    Origins freshOrigins;
    auto fresh = withoutDismissed(findBots(window.events, now, freshOrigins));
    keepFailed(fresh, freshOrigins, window.failed, now);
    origins = std::move(freshOrigins);
    const Detections old = *calendarDetections; // a callback may dismiss one
    announce(fresh, old);
    forEachMissing<CalendarBotDetection>(old, fresh, detectionKey, onBotDisappeared);

    std::stable_sort(fresh.begin(), fresh.end(), [](const auto& a, const auto& b) {
        return a.eventStartDate < b.eventStartDate;
    });
    calendarCount = window.calendars;
    reportFailed(window.failed);
    calendarDetections = std::move(fresh);
    lastScanDate = now;
    // After the tasks in which those who were called store what they have been told: a detection
    // that counts as announced, but is in nobody's record, would be lost by a crash in between.
    loop.post(lifetime.guard([this] { saveKeys(); }));
}

CalendarMonitor::Detections CalendarMonitor::findBots(const std::vector<CalendarEvent>& events,
                                                      Time now, Origins& places) const {
    Detections found;
    for (const auto& event : events) {
        if (event.isAllDay || event.end < now)
            continue;
        for (const auto& attendee : event.attendees) {
            if (attendee.isCurrentUser || attendee.status == ParticipantStatus::declined)
                continue;
            auto detection = makeDetection(attendee, event);
            if (!detection)
                continue;
            places.emplace(detectionKey(*detection), event.calendarIdentifier);
            found.push_back(std::move(*detection));
        }
    }
    return found;
}

std::optional<CalendarBotDetection>
CalendarMonitor::makeDetection(const CalendarParticipant& attendee,
                               const CalendarEvent& event) const {
    const auto email = attendeeEmail(attendee);
    const auto name = attendee.name.value_or("");
    const auto draft = [&] {
        return CalendarBotDetection{
            .matchedEmail = email.value_or("unknown"),
            .matchedName = name.empty() ? std::nullopt : std::optional(name),
            .eventTitle = "Calendar Event", // never the real one, which tells of the meeting
            .eventStartDate = event.start,
            .eventEndDate = event.end,
            .eventIdentifier = eventKey(event),
            .calendarName = event.calendarName,
            .detectedAt = loop.now(),
        };
    };
    if (email) {
        if (const auto match = database.matchEmail(*email))
            return asProduct(draft(), *match);
        // Whoever called the meeting is a person: bots are invited to meetings of others.
        if (const auto prefix =
                attendee.isOrganizer ? std::nullopt : database.matchGenericPrefix(*email))
            return asUnknownBot(draft(), *prefix);
    }
    if (!name.empty())
        if (const auto match = database.matchDisplayName(name))
            return asProduct(draft(), *match);
    return std::nullopt;
}

/// The first detection of each key, unless the user has dismissed it.
CalendarMonitor::Detections CalendarMonitor::withoutDismissed(Detections found) const {
    KeySet seen;
    std::erase_if(found, [&](const CalendarBotDetection& detection) {
        return !seen.insert(detectionKey(detection)).second ||
               dismissedDetections.contains(hashedDetectionKey(detection));
    });
    return found;
}

/// Adds what was found before in a calendar that could not be read this time: its events may well
/// be as they were.
void CalendarMonitor::keepFailed(Detections& fresh, Origins& places,
                                 const std::vector<FailedCalendar>& failed, Time now) const {
    for (const auto& old : *calendarDetections) {
        const auto key = detectionKey(old);
        const auto known = origins.find(key);
        const bool hasFailed =
            known != origins.end() && anyOf(failed, [&](const FailedCalendar& calendar) {
                return calendar.covers(known->second);
            });
        if (hasFailed && old.eventEndDate >= now && places.emplace(*known).second)
            fresh.push_back(old);
    }
}

/// What was announced in an earlier run, or before it was gone for a while, is not announced again.
void CalendarMonitor::announce(const Detections& fresh, const Detections& old) {
    forEachMissing<CalendarBotDetection>(
        fresh, old, detectionKey, [this](const CalendarBotDetection& detection) {
            if (alertedDetections.insert(hashedDetectionKey(detection)).second && onBotDetected)
                onBotDetected(detection);
        });
}

/// Publishes which calendars could not be read, and logs each when it begins to fail.
void CalendarMonitor::reportFailed(const std::vector<FailedCalendar>& failed) {
    for (const auto& calendar : failed)
        if (!anyOf(*failedCalendars, [&](const FailedCalendar& known) {
                return known.identifier == calendar.identifier &&
                       known.calendarName == calendar.calendarName;
            }))
            log.error(Printable::format("The calendar \"{}\" can't be read: {}",
                                        calendar.calendarName, calendar.reason),
                      logCategory::calendar);
    failedCalendars = failed;
}

void CalendarMonitor::dismiss(const CalendarBotDetection& detection) {
    const auto id = detection.id; // `detection` may be an element of the list
    dismissedDetections.insert(hashedDetectionKey(detection));
    auto rest = *calendarDetections;
    std::erase_if(rest, [&](const auto& listed) { return listed.id == id; });
    calendarDetections = std::move(rest);
    saveKeys();
}

CalendarSourceSummary CalendarMonitor::discoverCalendarSources() const {
    CalendarSourceSummary summary{.sources = eventStore.sources()};
    for (const auto& source : summary.sources) {
        summary.hasExchange |= source.type == CalendarSourceType::exchange;
        if (source.type != CalendarSourceType::calDAV)
            continue; // a file or a subscription is not the account itself, whoever provides it
        const bool isGoogle = source.provider == CalendarProvider::google;
        const bool isICloud = source.provider == CalendarProvider::iCloud;
        summary.hasGoogle |= isGoogle;
        summary.hasICloud |= isICloud;
        summary.hasOtherCalDAV |= !isGoogle && !isICloud;
    }
    return summary;
}

/// The first half of the key's SHA-256 digest in hexadecimal.
std::string CalendarMonitor::hashedDetectionKey(const CalendarBotDetection& detection) const {
    const auto digest = sha256(detectionKey(detection));
    return fmt::format("{:02x}", fmt::join(digest.begin(), digest.begin() + 16, ""));
}

CalendarMonitor::KeySet
CalendarMonitor::loadKeys(const PreferenceKey<std::vector<std::string>>& key) const {
    auto keys = read(preferences, key);
    return {std::make_move_iterator(keys.begin()), std::make_move_iterator(keys.end())};
}

void CalendarMonitor::saveKeys() {
    const auto list = [](const KeySet& keys) {
        return std::vector<std::string>(keys.begin(), keys.end());
    };
    preferences.set(preferenceKeys::calendarAlerted.name, list(alertedDetections));
    preferences.set(preferenceKeys::calendarDismissed.name, list(dismissedDetections));
}

/// Cuts a set that has grown too large. Any of its keys may go.
void CalendarMonitor::prune(KeySet& keys) {
    if (keys.size() > mostKeys)
        keys.erase(std::next(keys.begin(), keysAfterPruning), keys.end());
}

} // namespace quorva
