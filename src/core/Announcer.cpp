#include "core/Announcer.h"

#include "base/Text.h"
#include "core/SightNotice.h"
#include "core/Verdict.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorva {
namespace {

constexpr std::size_t mostSightLosses = 20; ///< they must not push all detections from the history
constexpr Seconds periodOfSightLosses{3600.0};

} // namespace

Announcer::Announcer(MainLoop& loop_, Log& log_, const Settings& settings_,
                     const AllowList& allowList_, RecordLog<DetectionEvent>& detectionLog_,
                     NotificationManager& notifications_, AlertPanel& alertPanel_)
    : loop(loop_),
      log(log_),
      settings(settings_),
      allowList(allowList_),
      detectionLog(detectionLog_),
      notifications(notifications_),
      alertPanel(alertPanel_),
      announcements(loop_) {}

/// The entry comes first: an announced detection must be in the history, whatever happens next.
void Announcer::announce(const FindingPtr& finding) {
    if (allowList.allows(*finding))
        return;
    auto event = finding->record();
    log.notice(Printable::format("Detected: {} ({})", event.botName, event.method),
               logCategory::appState);
    if (!settings.showNotifications)
        return detectionLog.add(std::move(event));
    auto announcement = lifetime.guard([this, finding] {
        notifications.post(finding->announcement(loop.now()));
        alertPanel.show(finding->alert());
    });
    detectionLog.add(std::move(event), announcements.add(std::move(announcement)));
}

void Announcer::announceGone(const Finding& finding) {
    if (!settings.showNotifications || allowList.allows(finding))
        return;
    if (auto farewell = finding.farewell())
        notifications.post(std::move(*farewell));
}

void Announcer::announceSightLost(const SourceProfile& source, const std::string& text) {
    const Time now = loop.now();
    log.notice(Printable::format("Not seen: {}", text), logCategory::appState);
    std::erase_if(sightLosses, [&](Time then) { return now - then >= periodOfSightLosses; });
    if (sightLosses.size() == mostSightLosses)
        return;
    sightLosses.push_back(now);
    auto told = text;
    if (sightLosses.size() == mostSightLosses)
        told += " There may be more of this kind: for an hour they are not listed.";
    auto event = sightLostEvent(told, source.kinds.front()->source, now);
    if (!settings.showNotifications)
        return detectionLog.add(std::move(event));
    auto announcement = lifetime.guard([this, told, name = std::string(source.name)] {
        notifications.post({.identifier = "sight-lost-" + name,
                            .title = verdictText(Verdict::notFullyWatching, 0),
                            .body = told,
                            .urgency = NotificationUrgency::low});
    });
    detectionLog.add(std::move(event), announcements.add(std::move(announcement)));
}

void Announcer::alertOfFirst(const Findings& findings) {
    const auto first = std::min_element(findings.begin(), findings.end(),
                                        [](const FindingPtr& a, const FindingPtr& b) {
                                            return a->kind().alertRank < b->kind().alertRank;
                                        });
    if (first != findings.end())
        alertPanel.show((*first)->alert());
}

} // namespace quorva
