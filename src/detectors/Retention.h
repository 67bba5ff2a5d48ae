// How detections are kept through gaps: for a short time when they have been seen once or twice,
// for longer once they are confirmed. The monitors of processes and of meetings have rules of their
// own for how long. Main thread only.
#pragma once

#include "base/Text.h"
#include "base/Time.h"
#include "catalogue/Records.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva {

/// The key under which a detection is kept: one product; the same bot or banner of a platform,
/// whatever its wording.
[[nodiscard]] inline std::string retentionKey(const DetectedBot& bot) {
    return bot.signatureId;
}
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

/// How often a detection that this pass has missed was seen before, and missed since.
struct Absence {
    int sightings = 0;
    int misses = 0; ///< in a row, this pass included
};

/// How long a detection is kept after its last sighting.
struct GracePeriods {
    Seconds base;
    Seconds confirmed; ///< after three sightings or more

    [[nodiscard]] Seconds after(const Absence& absence) const {
        constexpr int confirmedScanThreshold = 3;
        return absence.sightings < confirmedScanThreshold ? base : confirmed;
    }
};

inline constexpr GracePeriods processGracePeriods{.base = Seconds(9), .confirmed = Seconds(15)};

/// What a pass knows of the meetings that a detection belongs to.
struct MeetingReach {
    bool isKeptBack = false;   ///< one is known to go on where it cannot be looked at
    bool isRunning = false;    ///< a process that held one is still running
    bool isAccessible = false; ///< a window of one was looked at
    bool isOver = false;       ///< another platform's meeting has taken its place
};

/// How long what was found in a meeting is kept after its last sighting; nothing when it is not.
/// As long as its meeting is there without being looked at; the longest while the program that held
/// it runs but shows no meeting, the shortest after three misses in windows that were looked at.
[[nodiscard]] inline std::optional<Seconds> meetingGracePeriod(const Absence& absence,
                                                               const MeetingReach& reach) {
    constexpr GracePeriods inSight{.base = Seconds(15), .confirmed = Seconds(60)};
    constexpr GracePeriods inBackground{.base = Seconds(15), .confirmed = Seconds(300)};
    constexpr Seconds goneGracePeriod{5};
    constexpr int missesInSight = 3;
    if (reach.isKeptBack)
        return Seconds::max();
    if (reach.isOver)
        return std::nullopt;
    if (reach.isAccessible && absence.misses >= missesInSight)
        return goneGracePeriod;
    const bool isHidden = reach.isRunning && !reach.isAccessible;
    return (isHidden ? inBackground : inSight).after(absence);
}

template <typename Detection>
class Retention {
public:
    /// Misses in passes that follow each other in less than `missInterval` count once.
    explicit Retention(Seconds missInterval_ = Seconds(0)) : missInterval(missInterval_) {}

    /// Ends a pass at the time `now` that has found these detections, one a key. Returns them,
    /// followed by those found before that are still kept, in the order of their first sightings.
    ///
    /// `periodOf(detection, absence)` returns for how long after its last sighting a missed
    /// detection is kept, or nothing when it is not.
    template <typename PeriodOf>
    [[nodiscard]] std::vector<Detection> endPass(std::vector<Detection> found, Time now,
                                                 PeriodOf&& periodOf) {
        ++pass;
        for (const auto& detection : found)
            see(detection, now);
        std::vector<const Entry*> kept;
        for (auto at = entries.begin(); at != entries.end();) {
            auto& entry = at->second;
            const bool isSeen = entry.lastPass == pass;
            if (!isSeen && !survivesMiss(entry, now, periodOf)) {
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

    /// Drops all detections and their sightings.
    void clear() { entries.clear(); }

private:
    struct Entry {
        std::uint64_t number = 0; ///< in the order of first sighting
        Detection detection;      ///< the latest
        Time lastSeen;
        Time lastCounted;           ///< as seen or missed
        std::uint64_t lastPass = 0; ///< that has seen it
        Absence absence;
    };

    void see(const Detection& detection, Time now) {
        const auto [at, isNew] = entries.try_emplace(retentionKey(detection));
        auto& entry = at->second;
        if (isNew)
            entry.number = ++count;
        entry.detection = detection;
        entry.lastSeen = entry.lastCounted = now;
        entry.lastPass = pass;
        ++entry.absence.sightings;
        entry.absence.misses = 0;
    }

    template <typename PeriodOf>
    bool survivesMiss(Entry& entry, Time now, PeriodOf& periodOf) {
        if (now - entry.lastCounted >= missInterval) {
            ++entry.absence.misses;
            entry.lastCounted = now;
        }
        const std::optional<Seconds> period = periodOf(entry.detection, entry.absence);
        return period && now - entry.lastSeen < *period;
    }

    const Seconds missInterval;
    std::unordered_map<std::string, Entry> entries;
    std::uint64_t count = 0;
    std::uint64_t pass = 0;
};

} // namespace quorva
