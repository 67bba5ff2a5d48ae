// Looking through the windows of meetings: walks their trees, matches their texts, and remembers
// what came of it, so that a window that has not changed is not walked again. Belongs to one
// thread.
#pragma once

#include "catalogue/Records.h"
#include "detectors/MeetingPlatforms.h"
#include "platform/AccessibilityTree.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace quorva {

/// What came of walking a window.
struct MeetingWindowFindings {
    std::size_t textCount = 0;
    bool isCutShort = false; ///< the walk ended where its budget did
    bool isMeeting = true;   ///< false: another window of the application; it is not matched
    /// The first of each key, in the order of the texts.
    std::vector<ParticipantBotDetection> bots;
    std::vector<RecordingIndicatorDetection> indicators;
};

class MeetingWindowWalks {
public:
    /// What the window, which has been read to its whole extent, shows at the time `now`: the
    /// detections bear that time. Valid until the next call.
    const MeetingWindowFindings& walk(const MeetingPlatform& platform,
                                      const AccessibleWindow& window, Time now);

    /// Forgets the windows that have not been walked since the last call.
    void endPass();

private:
    /// The findings are good as long as these are the same.
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
