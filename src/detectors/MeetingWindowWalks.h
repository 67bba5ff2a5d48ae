// Walks the trees of meeting windows and pages, matches their texts, and caches the findings, so
// that an unchanged window is not walked again. Belongs to one thread.
#pragma once

#include "catalogue/Records.h"
#include "detectors/MeetingPlatforms.h"
#include "detectors/MeetingWindows.h"
#include "platform/AccessibilityTree.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace quorva {

/// The findings of walking one window.
struct MeetingWindowFindings {
    std::size_t textCount = 0;
    bool isCutShort = false; ///< the walk ended because its budget was used up
    bool isMeeting = true;   ///< false: another window of the application, which is not matched
    /// The first of each key, in the order of the texts.
    std::vector<ParticipantBotDetection> bots;
    std::vector<RecordingIndicatorDetection> indicators;
};

class MeetingWindowWalks {
public:
    /// The findings in a meeting that was read to its whole extent. New detections get the time
    /// `now`. The reference is valid until the next call.
    const MeetingWindowFindings& walk(const MeetingPlatform& platform,
                                      const MeetingCandidate& meeting, Time now);

    /// Drops the findings of windows that were not walked since the last call.
    void endPass();

private:
    /// The findings are valid as long as the other fields are unchanged.
    struct Walk {
        AccessibleElementPtr tree;
        const MeetingPlatform* platform = nullptr;
        std::string windowTitle;
        MeetingWindowFindings findings;
    };
    using Walks = std::unordered_map<const AccessibleElement*, Walk>;

    Walks current;
    Walks previous;
};

} // namespace quorva
