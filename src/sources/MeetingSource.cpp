#include "sources/MeetingSource.h"

#include "detectors/Remedies.h"
#include "platform/PreferenceKeys.h"
#include "sources/FindingTexts.h"
#include "sources/MeetingFindings.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace quorva {

const SourceProfile meetingProfile{
    .name = "meeting",
    .place = "meetings",
    .allowedAt = {},
    .chip = "Meeting",
    .symbol = "person.2",
    .logName = "participant",
    .switchedBy = preferenceKeys::participantMonitorEnabled.name,
    .kinds = {&participantFindings, &bannerFindings},
};

namespace {

constexpr Seconds readingTimeout{10.0};

std::string describeWindow(const UnseenMeetingWindow& window) {
    auto what = window.applicationName;
    if (!window.windowTitle.empty())
        what += fmt::format(" \"{}\"", window.windowTitle);
    return what + ": " + (window.problem.empty() ? "no answer yet" : window.problem);
}

std::string describe(const UnseenMeeting& meeting) {
    const auto& application = meeting.applicationName;
    switch (meeting.cause) {
    case UnseenMeeting::Cause::inBackgroundTab:
        return fmt::format("{} is in a background tab of {}: who joins it is not seen. Give it a "
                           "window of its own.",
                           meeting.platformName, application);
    case UnseenMeeting::Cause::notInFront:
        return fmt::format("{} is in a window of {} that is hidden: who joins it is not seen. "
                           "Bring it to the front once.",
                           meeting.platformName, application);
    case UnseenMeeting::Cause::beyondBudget:
        return fmt::format("{} in {} shows more than is looked at: a bot in the rest is not seen.",
                           meeting.platformName, application);
    case UnseenMeeting::Cause::silentInstance:
        break;
    }
    return fmt::format("{} runs twice, and once without showing its windows: bots in meetings "
                       "there are not seen. Start it again.",
                       application);
}

std::string describeAll(const std::vector<UnseenMeeting>& meetings) {
    constexpr std::size_t most = 3;
    std::string all;
    for (std::size_t i = 0; i < std::min(meetings.size(), most); ++i)
        all += (all.empty() ? "" : " ") + describe(meetings[i]);
    if (meetings.size() > most)
        all += fmt::format(" There are {} more like this.", meetings.size() - most);
    return all;
}

/// What was there and was not seen, or not wholly.
std::string describeGaps(const MeetingCoverage& looked) {
    auto gaps = describeAll(looked.unseen);
    if (!looked.failed.empty())
        gaps += fmt::format(
            "{}Windows that can't be looked at: {}. Bots in their meetings are not seen.",
            gaps.empty() ? "" : " ", someOf(looked.failed, [](const UnseenMeetingWindow& window) {
                return fmt::format("{} ({})", window.applicationName, window.problem);
            }));
    return gaps;
}

} // namespace

MeetingSource::MeetingSource(Platform& platform)
    : Source(meetingProfile, platform.loop),
      monitor(platform.loop, platform.applications, platform.accessibility, platform.log),
      applications(platform.applications),
      tree(platform.accessibility),
      processTable(platform.processTable) {
    monitor.onBotDetected = [this](const ParticipantBotDetection& bot) {
        appeared(std::make_shared<ParticipantFinding>(bot));
    };
    monitor.onBotDisappeared = [this](const ParticipantBotDetection& bot) {
        gone(std::make_shared<ParticipantFinding>(bot));
    };
    monitor.onRecordingIndicatorDetected = [this](const RecordingIndicatorDetection& banner) {
        appeared(std::make_shared<BannerFinding>(banner));
    };
    monitor.onRecordingIndicatorDisappeared = [this](const RecordingIndicatorDetection& banner) {
        gone(std::make_shared<BannerFinding>(banner));
    };
    monitor.onSightLost = [this](const UnseenMeeting& meeting) { sightLost(describe(meeting)); };
    followList(monitor.participantBotDetections);
    followList(monitor.recordingIndicators);
    followState(monitor.coverage);
    followState(monitor.lastScanDate);
    followPermission(monitor.hasAccessibilityPermission);
}

/// The pass comes when the windows have been read, or when that takes too long.
void MeetingSource::look(Task done) {
    awaitLook([this, done = std::move(done)] {
        monitor.performScan();
        done();
    });
}

void MeetingSource::awaitLook(Task done) {
    if (!mayLook())
        return done();
    awaited = std::move(done);
    const auto finish = [this] {
        if (const Task next = std::exchange(awaited, nullptr))
            next();
    };
    const auto check = [this, finish] {
        if (awaited && monitor.readAhead())
            finish();
    };
    subscriptions.push_back(applications.onReady(lifetime.guard(check)));
    subscriptions.push_back(tree.onRead(lifetime.guard(check)));
    subscriptions.push_back(loop.after(readingTimeout, lifetime.guard(finish)));
    check();
}

SourceState MeetingSource::sight() const {
    using enum SourceState::Kind;
    if (!*monitor.lastScanDate)
        return {looking, {}};
    const auto& looked = *monitor.coverage;
    if (!canListProcesses())
        return {notAvailable,
                "The processes of this computer can't be listed: bots in meetings are not seen."};
    if (!looked.failed.empty() || !looked.unseen.empty())
        return {partlyBlind, describeGaps(looked)};
    if (!looked.notReadYet.empty())
        return {looking, {}};
    return {ok, {}};
}

SourceState MeetingSource::obstacle() const {
    return {SourceState::Kind::notAllowed,
            "The desktop's accessibility is switched off: bots in meetings are not seen."};
}

std::string MeetingSource::detail() const {
    if (!mayLook())
        return remedies::accessibilityIsOff;
    if (!canListProcesses())
        return remedies::processesCannotBeListed;
    const auto& looked = *monitor.coverage;
    auto unread = looked.failed;
    unread.insert(unread.end(), looked.notReadYet.begin(), looked.notReadYet.end());
    auto detail = unread.empty()
                      ? fmt::format("applications that may hold meetings: {}; meeting windows: {}",
                                    looked.applications, looked.windows)
                      : fmt::format("windows that can't be read: {}", unread.size());
    for (const auto& window : unread)
        detail += "; " + describeWindow(window);
    if (!looked.unseen.empty())
        detail += "; " + describeAll(looked.unseen);
    return detail;
}

/// Without them it is not known which applications run.
bool MeetingSource::canListProcesses() const {
    const auto listed = processTable.processIdentifiers();
    return listed && !listed->empty();
}

Findings MeetingSource::list() const {
    auto found = findingsOf<ParticipantFinding>(*monitor.participantBotDetections);
    const auto banners = findingsOf<BannerFinding>(*monitor.recordingIndicators);
    found.insert(found.end(), banners.begin(), banners.end());
    return found;
}

} // namespace quorva
