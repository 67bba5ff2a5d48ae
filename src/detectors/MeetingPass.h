// One look at the meetings in all applications, as their windows were last read: what is in them,
// and what could not be looked at. Belongs to one thread.
#pragma once

#include "base/Time.h"
#include "catalogue/Records.h"
#include "detectors/MeetingWindowWalks.h"
#include "detectors/MeetingWindows.h"
#include "platform/AccessibilityTree.h"
#include "platform/Applications.h"
#include "platform/Log.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace quorva {

/// A window that could not be looked at, or an application with all its windows.
struct UnseenMeetingWindow {
    ProcessIdentifier processIdentifier = 0;
    std::string applicationName;
    std::string windowTitle; ///< empty: the application as a whole, or a window without a title
    std::string problem;     ///< empty: it has not been read yet

    bool operator==(const UnseenMeetingWindow&) const = default;
};

/// A meeting that is there but is not looked at, or not as a whole.
struct UnseenMeeting {
    enum class Cause {
        inBackgroundTab, ///< of a browser that does not let it be read there
        notInFront,      ///< in a window of such a browser
        beyondBudget,    ///< it was read, but holds more than is looked at
        silentInstance,  ///< whatever a further instance of the application shows
    };
    Cause cause = Cause::inBackgroundTab;
    std::string applicationName;
    std::string_view platformName; ///< empty for a silent instance

    bool operator==(const UnseenMeeting&) const = default;
    bool operator<(const UnseenMeeting& other) const {
        return std::tie(cause, applicationName, platformName) <
               std::tie(other.cause, other.applicationName, other.platformName);
    }
};

/// What a pass could look at. Distinguishes "found nothing" from "could not look".
struct MeetingCoverage {
    std::size_t applications = 0;                ///< running ones that may hold meetings
    std::size_t windows = 0;                     ///< meetings that were looked at
    std::vector<UnseenMeeting> unseen;           ///< each once, in a stable order
    std::vector<UnseenMeetingWindow> failed;     ///< could not be read, or were empty
    std::vector<UnseenMeetingWindow> notReadYet; ///< still to be read

    bool operator==(const MeetingCoverage&) const = default;
};

/// A running application that may hold meetings, as it was last read.
struct MeetingApplication {
    ProcessIdentifier process = 0;
    std::string bundleIdentifier;
    std::string name;
    ReadState state = ReadState::notReadYet;
    std::string problem;
    std::vector<MeetingCandidate> candidates;
    std::vector<HiddenMeeting> hidden;
    int silentInstances = 0;
    int startingInstances = 0;
};

/// Those of the running applications that may hold meetings.
[[nodiscard]] std::vector<MeetingApplication>
meetingApplications(const std::vector<RunningApplication>& running, const AccessibilityTree& tree);

/// A window or page by its process and its index there; the index is -1 for the whole application.
using MeetingKey = std::pair<ProcessIdentifier, int>;

/// The windows and pages that have not been read yet.
[[nodiscard]] std::set<MeetingKey> waitingIn(const std::vector<MeetingApplication>& applications);

class MeetingPass {
public:
    struct Results {
        std::vector<ParticipantBotDetection> bots; ///< a bot may occur several times
        std::vector<RecordingIndicatorDetection> indicators;
        MeetingCoverage coverage;
        std::optional<std::string> activeMeetingPlatform; ///< of the last meeting that was found
        std::set<std::string_view> platforms;             ///< whose meetings were looked at
        std::map<std::string_view, std::set<ProcessIdentifier>> processes; ///< with a meeting
        std::set<MeetingKey> waiting;
        std::set<std::pair<LogLevel, Printable>> messages; ///< for the log
    };

    /// Looks at all of them. The applications and the walks must outlive the pass, new detections
    /// get the time `now`.
    MeetingPass(const std::vector<MeetingApplication>& applications, MeetingWindowWalks& walks,
                Time now);

    Results results;

private:
    void scanPlatform(const MeetingPlatform& platform);
    void scanApplication(const MeetingPlatform& platform, const MeetingApplication& application);
    void scanDetachedParts(const MeetingPlatform& platform, const MeetingApplication& application);
    void scanMeeting(const MeetingPlatform& platform, const MeetingApplication& application,
                     const MeetingCandidate& meeting);
    void noteUnseen(const MeetingApplication& application);
    void noteFailing(const MeetingApplication& application, int index,
                     const std::string& windowTitle, const std::string& problem);
    void noteWaiting(const MeetingApplication& application, int index);
    void noteDiagnostics(const MeetingPlatform& platform, const MeetingWindowFindings& findings);
    void say(LogLevel level, Printable message);

    const std::vector<MeetingApplication>& applications;
    MeetingWindowWalks& walks;
    const Time now;
    std::set<MeetingKey> claimedPages; ///< a page belongs to the first platform that claims it
    std::set<MeetingKey> failing;
    std::set<UnseenMeeting> unseen;
};

} // namespace quorva
