// How what was found in meetings is kept while it is not seen: shortly when nothing else is known,
// longer once it has been seen several times, longest while the meeting goes on but its window
// can't be looked at. Main thread only.
#pragma once

#include "base/Text.h"
#include "base/Time.h"
#include "catalogue/Records.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva {

/// Under which key a detection is kept: the same bot or banner of a platform, however it is worded.
[[nodiscard]] inline std::string retentionKey(const ParticipantBotDetection& bot) {
    return bot.platformName + "-" + lowerCased(bot.botDisplayName);
}
[[nodiscard]] inline std::string retentionKey(const RecordingIndicatorDetection& indicator) {
    return indicator.platformName + "-" + std::string(rawValue(indicator.indicatorType));
}

/// The first detection of each key, in their order.
template <typename Detection>
[[nodiscard]] std::vector<Detection> firstOfEachKey(std::vector<Detection> found) {
    std::unordered_set<std::string> seen;
    std::erase_if(found, [&](const auto& each) { return !seen.insert(retentionKey(each)).second; });
    return found;
}

/// What a pass knows of the meetings that a detection belongs to.
struct MeetingReach {
    bool isRunning = false;    ///< a process in which there was one still runs
    bool isAccessible = false; ///< a window of one was looked at
    bool isOver = false;       ///< whatever there was does not count any more
};

template <typename Detection>
class Retention {
public:
    /// Ends a pass at the time `now` that has found this, one detection a key. Returns it, followed
    /// by what was found before and is still kept, in the order in which it was first seen.
    /// `reachOf` tells the MeetingReach of a detection.
    template <typename ReachOf>
    [[nodiscard]] std::vector<Detection> endPass(std::vector<Detection> found, Time now,
                                                 ReachOf&& reachOf) {
        ++pass;
        for (const auto& detection : found)
            see(detection, now);
        std::vector<const Entry*> kept;
        for (auto at = entries.begin(); at != entries.end();) {
            auto& entry = at->second;
            const bool isSeen = entry.lastPass == pass;
            if (!isSeen && !survivesMiss(entry, now, reachOf(entry.detection))) {
                at = entries.erase(at);
                continue;
            }
            if (!isSeen)
                kept.push_back(&entry);
            ++at;
        }
        std::sort(kept.begin(), kept.end(),
                  [](const Entry* a, const Entry* b) { return a->number < b->number; });
        for (const auto* entry : kept)
            found.push_back(entry->detection);
        return found;
    }

private:
    struct Entry {
        std::uint64_t number = 0; ///< in the order of first sighting
        Detection detection;      ///< the latest
        Time lastSeen;
        std::uint64_t lastPass = 0; ///< that has seen it
        int seenCount = 0;
        int consecutiveMisses = 0;
    };

    void see(const Detection& detection, Time now) {
        const auto [at, isNew] = entries.try_emplace(retentionKey(detection));
        auto& entry = at->second;
        if (isNew)
            entry.number = ++count;
        entry.detection = detection;
        entry.lastSeen = now;
        entry.lastPass = pass;
        ++entry.seenCount;
        entry.consecutiveMisses = 0;
    }

    bool survivesMiss(Entry& entry, Time now, const MeetingReach& reach) const {
        ++entry.consecutiveMisses;
        return !reach.isOver && now - entry.lastSeen < gracePeriod(entry, reach);
    }

    [[nodiscard]] Seconds gracePeriod(const Entry& entry, const MeetingReach& reach) const {
        if (reach.isAccessible && entry.consecutiveMisses >= missesInSight)
            return goneGracePeriod;
        if (entry.seenCount < confirmedScanThreshold)
            return baseGracePeriod;
        return reach.isRunning && !reach.isAccessible ? backgroundedMeetingGracePeriod
                                                      : confirmedGracePeriod;
    }

    const Seconds baseGracePeriod{15.0};
    const int confirmedScanThreshold = 3;
    const Seconds confirmedGracePeriod{60.0};
    const Seconds backgroundedMeetingGracePeriod{300.0};
    const Seconds goneGracePeriod{5.0}; ///< after this many misses in a window that was looked at
    const int missesInSight = 3;

    std::unordered_map<std::string, Entry> entries;
    std::uint64_t count = 0;
    std::uint64_t pass = 0;
};

} // namespace quorva
