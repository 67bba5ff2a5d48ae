#include "detectors/MeetingPass.h"

#include "base/Text.h"
#include "detectors/WindowScan.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr int wholeApplication = -1; ///< in place of an index
constexpr auto showsNothing = "it shows nothing to a screen reader";
constexpr std::size_t fewTexts = 20; ///< a page with fewer is only part of a meeting's page

bool hostsMeetings(const std::string& bundleIdentifier) {
    const auto platforms = meetingPlatforms();
    return std::any_of(platforms.begin(), platforms.end(), [&](const MeetingPlatform& platform) {
        return isHostedBy(platform, bundleIdentifier);
    });
}

template <typename Element>
void append(std::vector<Element>& all, const std::vector<Element>& more) {
    all.insert(all.end(), more.begin(), more.end());
}

} // namespace

std::vector<MeetingApplication> meetingApplications(const std::vector<RunningApplication>& running,
                                                    const AccessibilityTree& tree) {
    std::vector<MeetingApplication> found;
    for (const auto& application : running) {
        if (!application.bundleIdentifier || !hostsMeetings(*application.bundleIdentifier))
            continue;
        auto shown = tree.windows(application.processIdentifier);
        auto& added = found.emplace_back(MeetingApplication{
            .process = application.processIdentifier,
            .bundleIdentifier = *application.bundleIdentifier,
            .name = application.localizedName.value_or(*application.bundleIdentifier),
            .state = shown.state,
            .problem = std::move(shown.problem),
            .silentInstances = shown.silentInstances,
            .startingInstances = shown.startingInstances,
        });
        if (shown.state != ReadState::read)
            continue;
        for (const auto& window : shown.windows) {
            append(added.candidates, candidatesIn(window, added.bundleIdentifier));
            append(added.hidden, hiddenMeetings(window, added.bundleIdentifier));
        }
    }
    return found;
}

std::set<MeetingKey> waitingIn(const std::vector<MeetingApplication>& applications) {
    std::set<MeetingKey> waiting;
    for (const auto& application : applications) {
        if (application.state == ReadState::notReadYet || application.startingInstances > 0)
            waiting.insert({application.process, wholeApplication});
        for (const auto& platform : meetingPlatforms())
            if (isHostedBy(platform, application.bundleIdentifier))
                for (std::size_t i = 0; i < application.candidates.size(); ++i)
                    if (kindOf(application.candidates[i], platform) == WindowKind::notReadYet)
                        waiting.insert({application.process, static_cast<int>(i)});
    }
    return waiting;
}

MeetingPass::MeetingPass(const std::vector<MeetingApplication>& applications_,
                         MeetingWindowWalks& walks_, Time now_)
    : applications(applications_), walks(walks_), now(now_) {
    results.coverage.applications = applications.size();
    for (const auto& platform : meetingPlatforms())
        scanPlatform(platform);
    walks.endPass();
    for (const auto& application : applications)
        noteUnseen(application);
    results.coverage.unseen.assign(unseen.begin(), unseen.end());
}

void MeetingPass::scanPlatform(const MeetingPlatform& platform) {
    for (const auto& application : applications) {
        if (!isHostedBy(platform, application.bundleIdentifier))
            continue;
        if (application.state == ReadState::read)
            scanApplication(platform, application);
        else if (application.state == ReadState::couldNotBeRead)
            noteFailing(application, wholeApplication, {}, application.problem);
        else
            noteWaiting(application, wholeApplication);
    }
}

void MeetingPass::scanApplication(const MeetingPlatform& platform,
                                  const MeetingApplication& application) {
    bool isAnyFound = false;
    for (std::size_t i = 0; i < application.candidates.size(); ++i) {
        const MeetingKey key{application.process, static_cast<int>(i)};
        if (platform.isBrowser && claimedPages.contains(key))
            continue;
        const auto& candidate = application.candidates[i];
        switch (kindOf(candidate, platform)) {
        case WindowKind::none:
            break;
        case WindowKind::notReadYet:
            noteWaiting(application, key.second);
            break;
        case WindowKind::couldNotBeRead:
            noteFailing(application, key.second, candidate.title, candidate.problem);
            break;
        case WindowKind::meeting:
            if (platform.isBrowser)
                claimedPages.insert(key);
            isAnyFound = true;
            scanMeeting(platform, application, candidate);
            break;
        }
    }
    if (isAnyFound && platform.isBrowser)
        scanDetachedParts(platform, application);
}

/// The first platform with a meeting in the application gets them.
void MeetingPass::scanDetachedParts(const MeetingPlatform& platform,
                                    const MeetingApplication& application) {
    for (std::size_t i = 0; i < application.candidates.size(); ++i)
        if (isDetachedPart(application.candidates[i]) &&
            claimedPages.insert({application.process, static_cast<int>(i)}).second)
            scanMeeting(platform, application, application.candidates[i]);
}

void MeetingPass::scanMeeting(const MeetingPlatform& platform,
                              const MeetingApplication& application,
                              const MeetingCandidate& meeting) {
    results.platforms.insert(platform.name);
    const auto& findings = walks.walk(platform, meeting, now);
    ++results.coverage.windows;
    if (findings.isCutShort)
        unseen.insert({UnseenMeeting::Cause::beyondBudget, application.name, platform.name});
    if (findings.textCount == 0)
        results.coverage.failed.push_back(
            {application.process, application.name, meeting.title, showsNothing});
    noteDiagnostics(platform, findings);
    results.activeMeetingPlatform = platform.name;
    if (!findings.isMeeting)
        return say(LogLevel::debug, "Teams window without active meeting signals — skipped");
    results.processes[platform.name].insert(application.process);
    append(results.bots, findings.bots);
    append(results.indicators, findings.indicators);
}

void MeetingPass::noteUnseen(const MeetingApplication& application) {
    using enum UnseenMeeting::Cause;
    for (const auto& hidden : application.hidden)
        unseen.insert({hidden.isInFront ? notInFront : inBackgroundTab, application.name,
                       hidden.platformName});
    if (application.startingInstances > 0)
        noteWaiting(application, wholeApplication);
    if (application.silentInstances > 0)
        unseen.insert({silentInstance, application.name, {}});
}

void MeetingPass::noteDiagnostics(const MeetingPlatform& platform,
                                  const MeetingWindowFindings& findings) {
    if (findings.textCount == 0)
        say(LogLevel::notice,
            Printable::format(
                "AX tree empty for {} window — permission or browser AX setting may be off",
                platform.name));
    else if (platform.isBrowser && findings.textCount < fewTexts)
        say(LogLevel::notice,
            Printable::format("AX tree partial for {}: only {} elements (expected 100+)",
                              platform.name, findings.textCount));
    if (findings.isCutShort)
        say(LogLevel::notice,
            Printable::format("Element budget exhausted ({}) scanning {}",
                              platform.isBrowser ? maxElementsBrowser : maxElementsNative,
                              platform.name));
}

/// Lists a window or application that could not be read, once. Titles are private and are not
/// logged.
void MeetingPass::noteFailing(const MeetingApplication& application, int index,
                              const std::string& windowTitle, const std::string& problem) {
    if (!failing.insert({application.process, index}).second)
        return;
    results.coverage.failed.push_back(
        {application.process, application.name, windowTitle, problem});
    say(LogLevel::notice, Printable::format("{} of {} (PID: {}) can't be read: {}",
                                            index == wholeApplication ? "The windows" : "A window",
                                            application.name, application.process, problem));
}

void MeetingPass::noteWaiting(const MeetingApplication& application, int index) {
    if (!results.waiting.insert({application.process, index}).second)
        return;
    const auto title = index == wholeApplication
                           ? std::string()
                           : application.candidates[static_cast<std::size_t>(index)].title;
    results.coverage.notReadYet.push_back({application.process, application.name, title, {}});
}

void MeetingPass::say(LogLevel level, Printable message) {
    results.messages.emplace(level, std::move(message));
}

} // namespace quorva
