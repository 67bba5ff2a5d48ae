#include "detectors/MeetingWindowWalks.h"

#include "base/Text.h"
#include "catalogue/ParticipantMatching.h"
#include "detectors/Retention.h"
#include "detectors/WindowScan.h"

#include <fmt/format.h>

#include <optional>

namespace quorva {
namespace {

/// Only the native client of Teams has windows with a meeting's title that are none.
bool showsMeeting(const MeetingPlatform& platform, const CollectedTexts& collected) {
    return platform.name != "Teams" || platform.isBrowser ||
           hasActiveMeetingSignals(collected.texts);
}

std::optional<ParticipantBotDetection> findBot(std::string_view text, std::string_view platformName,
                                               const std::string& windowTitle) {
    auto match = matchParticipant(text);
    if (!match)
        return std::nullopt;
    return ParticipantBotDetection{
        .id = fmt::format("{}-{}", platformName, lowerCased(text)),
        .platformName = std::string(platformName),
        .matchedParticipantName = std::string(text),
        .botPatternMatched = std::string(match->pattern),
        .botDisplayName = std::move(match->displayName),
        .category = match->category,
        .confidence = match->confidence,
        .windowTitle = windowTitle,
    };
}

std::optional<RecordingIndicatorDetection> findIndicator(std::string_view text,
                                                         std::string_view platformName,
                                                         const std::string& windowTitle) {
    const auto match = matchIndicator(text, platformName);
    if (!match)
        return std::nullopt;
    return RecordingIndicatorDetection{
        .id = fmt::format("{}-{}", platformName, match->phrase),
        .platformName = std::string(platformName),
        .indicatorText = std::string(text),
        .indicatorType = match->type,
        .windowTitle = windowTitle,
    };
}

MeetingWindowFindings findIn(const MeetingPlatform& platform, const MeetingCandidate& meeting) {
    const auto& extent = meeting.extent;
    const auto collected = collectTexts(*meeting.tree, extent);
    MeetingWindowFindings findings{
        .textCount = collected.texts.size(),
        .isCutShort = collected.elementCount >= extent.maxElements,
        .isMeeting = showsMeeting(platform, collected),
    };
    if (!findings.isMeeting)
        return findings;
    for (const auto text : collected.texts) {
        if (auto bot = findBot(text, platform.name, meeting.title))
            findings.bots.push_back(std::move(*bot));
        if (auto indicator = findIndicator(text, platform.name, meeting.title))
            findings.indicators.push_back(std::move(*indicator));
    }
    findings.bots = firstOfEachKey(std::move(findings.bots));
    findings.indicators = firstOfEachKey(std::move(findings.indicators));
    return findings;
}

} // namespace

const MeetingWindowFindings& MeetingWindowWalks::walk(const MeetingPlatform& platform,
                                                      const MeetingCandidate& meeting, Time now) {
    const auto* const key = meeting.tree.get();
    if (auto known = previous.extract(key))
        current.insert(std::move(known));
    auto& walk = current[key];
    if (walk.platform != &platform || walk.windowTitle != meeting.title)
        walk = {meeting.tree, &platform, meeting.title, findIn(platform, meeting)};
    for (auto& bot : walk.findings.bots)
        bot.detectedAt = now;
    for (auto& indicator : walk.findings.indicators)
        indicator.detectedAt = now;
    return walk.findings;
}

void MeetingWindowWalks::endPass() {
    previous = std::exchange(current, {});
}

} // namespace quorva
