// Records and announces what the sources find: first an entry of the history, then a notification
// and the alert.
#pragma once

#include "core/AlertPanel.h"
#include "core/AllowList.h"
#include "core/AnnouncementQueue.h"
#include "core/NotificationManager.h"
#include "core/RecordLog.h"
#include "core/Settings.h"
#include "sources/Source.h"

#include <deque>
#include <string>

namespace quorva {

/// Main thread only.
class Announcer {
public:
    /// Everything must outlive the announcer.
    Announcer(MainLoop& loop, Log& log, const Settings& settings, const AllowList& allowList,
              RecordLog<DetectionEvent>& detectionLog, NotificationManager& notifications,
              AlertPanel& alertPanel);

    /// Records a finding. If notifications are on, announces it once the entry would survive a
    /// power cut. Does nothing if the product is allowed.
    void announce(const FindingPtr& finding);

    /// Announces that a finding is gone, if its kind has such a notification. Does nothing if the
    /// product is allowed.
    void announceGone(const Finding& finding);

    /// Records that a source has lost sight of something. If notifications are on, says so once, in
    /// a quiet notification that replaces the source's last one. At most 20 an hour are recorded:
    /// the last of them says that there may be more, and the rest are only logged.
    void announceSightLost(const SourceProfile& source, const std::string& text);

    /// Shows the alert of the finding whose kind ranks first. Does nothing if there is none.
    void alertOfFirst(const Findings& findings);

private:
    MainLoop& loop;
    Log& log;
    const Settings& settings;
    const AllowList& allowList;
    RecordLog<DetectionEvent>& detectionLog;
    NotificationManager& notifications;
    AlertPanel& alertPanel;
    AnnouncementQueue announcements;
    std::deque<Time> sightLosses; ///< of the last hour
    Lifetime lifetime;            // last: goes first
};

} // namespace quorva
