#include "sources/InvitationSource.h"

#include "catalogue/CalendarBotDatabase.h"
#include "platform/PreferenceKeys.h"
#include "sources/FindingTexts.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorva {

const FindingKind invitationFindings{
    .name = "calendar",
    .source = DetectionSource::calendar,
    .notificationCategory = "CALENDAR_BOT",
    .notificationPrefix = "cal-bot-",
    .alertRank = 3,
    .objectionRank = 2,
    .sharedPlace = {},
    .columns = {"INVITED", "CATEGORY", "CONFIDENCE", "STARTS", "MATCHED BY", "MATCHED VALUE",
                "CALENDAR"},
};

const SourceProfile invitationProfile{
    .name = "calendar",
    .place = "calendars",
    .allowedAt = "in invitations",
    .chip = "Calendar",
    .symbol = "calendar",
    .logName = "calendar",
    .switchedBy = preferenceKeys::calendarMonitorEnabled.name,
    .kinds = {&invitationFindings},
};

namespace {

using namespace std::string_view_literals;

constexpr auto byAddress = "attendee's address"sv;
constexpr auto byName = "attendee's name"sv;
constexpr auto byMailbox = "mailbox name"sv;

class InvitationFinding final : public Finding {
public:
    explicit InvitationFinding(CalendarBotDetection found) : bot(std::move(found)) {}

    [[nodiscard]] const FindingKind& kind() const override { return invitationFindings; }
    [[nodiscard]] const std::string& id() const override { return bot.id; }
    [[nodiscard]] std::string allowKey() const override { return bot.signatureId; }
    [[nodiscard]] std::optional<std::string> meetingContext() const override { return bot.botName; }

    [[nodiscard]] DetectionEvent record() const override {
        return {.botName = bot.botName,
                .category = std::string(rawValue(bot.category)),
                .confidence = bot.confidence,
                .method = std::string(rawValue(DetectionMethod::calendarAttendee)),
                .detectedAt = bot.detectedAt,
                .source = std::string(rawValue(DetectionSource::calendar)),
                .eventStartDate = bot.eventStartDate,
                .eventTitle = bot.eventTitle};
    }
    [[nodiscard]] BotAlert alert() const override {
        return {bot.botName, "Calendar", std::string(displayName(bot.category))};
    }
    [[nodiscard]] NotificationRequest announcement(Time now) const override {
        return notification(kind(), bot.signatureId + "-" + bot.eventIdentifier,
                            calendarText(bot, now), NotificationUrgency::normal);
    }
    [[nodiscard]] FindingText text(Time now) const override {
        const std::string name = bot.matchedName ? *bot.matchedName + ", " : "";
        return {.title = bot.botName,
                .category = std::string(displayName(bot.category)),
                .place = clockTime(bot.eventStartDate),
                .badge = bot.timeUntilStartLabel(now),
                .match = fmt::format("Matched attendee: {}{} in {} ({})", name, bot.matchedEmail,
                                     bot.eventTitle, bot.calendarName)};
    }
    [[nodiscard]] nlohmann::ordered_json fields() const override {
        using Json = nlohmann::ordered_json;
        return {{"id", bot.id},
                {"signatureId", bot.signatureId},
                {"botName", bot.botName},
                {"category", rawValue(bot.category)},
                {"confidence", bot.confidence},
                {"matchedEmail", bot.matchedEmail},
                {"matchedName", bot.matchedName ? Json(*bot.matchedName) : Json()},
                {"eventTitle", bot.eventTitle},
                {"eventStartDate", iso8601(bot.eventStartDate)},
                {"eventEndDate", iso8601(bot.eventEndDate)},
                {"eventIdentifier", bot.eventIdentifier},
                {"calendarName", bot.calendarName},
                {"detectedAt", iso8601(bot.detectedAt)}};
    }
    [[nodiscard]] std::vector<std::string> cells(Time now) const override {
        const auto start = bot.timeUntilStartLabel(now);
        return {bot.botName,
                std::string(displayName(bot.category)),
                fmt::format("{} %", bot.confidence),
                start == "now" ? start : "in " + start,
                std::string(howMatched()),
                howMatched() == byName ? bot.matchedName.value_or("") : bot.matchedEmail,
                bot.calendarName};
    }

private:
    /// Which text of the attendee matched.
    [[nodiscard]] std::string_view howMatched() const {
        if (bot.category == BotCategory::unknown)
            return byMailbox;
        return CalendarBotDatabase::shared().matchEmail(bot.matchedEmail) ? byAddress : byName;
    }

    const CalendarBotDetection bot;
};

std::string failedCalendarsText(const std::vector<FailedCalendar>& calendars) {
    return fmt::format(
        "Calendars that can't be read: {}. Bots invited to their meetings are not seen.",
        someOf(calendars, [](const FailedCalendar& calendar) {
            return fmt::format("{} ({})", calendar.calendarName, calendar.reason);
        }));
}

} // namespace

InvitationSource::InvitationSource(Platform& platform, Preferences& preferences)
    : Source(invitationProfile, platform.loop),
      monitor(platform.loop, platform.calendars, preferences, platform.log, platform.sha256) {
    monitor.onBotDetected = [this](const CalendarBotDetection& bot) {
        appeared(std::make_shared<InvitationFinding>(bot));
    };
    monitor.onBotDisappeared = [this](const CalendarBotDetection& bot) {
        gone(std::make_shared<InvitationFinding>(bot));
    };
    followList(monitor.calendarDetections);
    followState(monitor.failedCalendars);
    followState(monitor.calendarCount);
    followState(monitor.lastScanDate);
    followPermission(monitor.authorizationStatus);
}

void InvitationSource::dismiss(std::string_view id) {
    const auto& listed = *monitor.calendarDetections;
    const auto found = std::find_if(listed.begin(), listed.end(),
                                    [&](const auto& detection) { return detection.id == id; });
    if (found == listed.end())
        return;
    const CalendarBotDetection detection = *found; // the list changes while it is dismissed
    monitor.dismiss(detection);
}

bool InvitationSource::mayLook() const {
    return monitor.authorizationStatus == CalendarAuthorization::fullAccess;
}

void InvitationSource::look(Task done) {
    if (!mayLook())
        return done();
    awaitLook(std::move(done));
    monitor.scanCalendar();
}

/// The look is over when the calendars have answered, or turn out not to be there.
void InvitationSource::awaitLook(Task done) {
    if (!mayLook() || *monitor.lastScanDate)
        return done();
    const auto once = std::make_shared<Task>(std::move(done));
    const auto finish = [once] {
        if (const Task task = std::exchange(*once, nullptr))
            task();
    };
    subscriptions.push_back(monitor.lastScanDate.observeChanges(finish));
    subscriptions.push_back(monitor.authorizationStatus.observeChanges(finish));
}

SourceState InvitationSource::sight() const {
    using enum SourceState::Kind;
    if (!*monitor.lastScanDate)
        return {looking, {}};
    if (monitor.calendarCount.get() == 0)
        return {notAvailable,
                "There is no calendar to look at: bots invited to meetings are not seen."};
    if (!monitor.failedCalendars->empty())
        return {partlyBlind, failedCalendarsText(*monitor.failedCalendars)};
    return {ok, {}};
}

SourceState InvitationSource::obstacle() const {
    using enum SourceState::Kind;
    if (monitor.authorizationStatus == CalendarAuthorization::restricted)
        return {notAvailable, "There is no calendar service and no calendar folder: bots invited "
                              "to meetings are not seen."};
    return {notAllowed, "Quorva may not read the calendars: bots invited to meetings are not "
                        "seen."};
}

std::string InvitationSource::detail() const {
    if (monitor.authorizationStatus == CalendarAuthorization::restricted)
        return "there is no calendar service in this session and no folder of calendars: install "
               "evolution-data-server and run this in the desktop session, or put .ics files into "
               "a folder below ~/.local/share/calendars";
    if (!mayLook())
        return "calendars are read only when they are named: add --source calendar";
    const auto count = monitor.calendarCount.get();
    const auto& failed = *monitor.failedCalendars;
    if (count == 0)
        return "there is no calendar to look at";
    if (failed.empty())
        return fmt::format("looked at the next 24 hours; calendars: {}", count);
    auto detail = fmt::format("calendars that can't be read: {} of {}", failed.size(), count);
    for (const auto& calendar : failed)
        detail += fmt::format("; {}: {}", calendar.calendarName, calendar.reason);
    return detail;
}

std::string InvitationSource::productNamed(std::string_view allowKey) const {
    return nameOf(CalendarBotDatabase::shared().signatures(), allowKey);
}

Findings InvitationSource::list() const {
    return findingsOf<InvitationFinding>(*monitor.calendarDetections);
}

} // namespace quorva
