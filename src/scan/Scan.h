// What quorva-scan does with its options: one look, or a watch. Main thread only.
#pragma once

#include "detectors/CalendarMonitor.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "detectors/ProcessMonitor.h"
#include "platform/NoPreferences.h"
#include "platform/Platform.h"
#include "scan/ScanOptions.h"
#include "scan/ScanReport.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace quorva {

/// One look or one watch at the sources asked for. Nothing is stored. What cannot be looked at is
/// reported as such.
class Scan {
public:
    /// Takes one line, without a line feed.
    using Print = std::function<void(const std::string& line)>;

    /// The platform's services must outlive the scan. Nothing is looked at yet.
    Scan(const ScanOptions& options, Platform& platform);

    /// Looks at each source, and calls `done` once, as a task of the main loop.
    void look(std::function<void(ScanReport)> done);

    /// Keeps looking, and prints a line of JSON for each product that appears or disappears. Calls
    /// `done` once, as a task of the main loop, with what came of the first look at each source.
    void watch(Print print, std::function<void(std::vector<SourceReport>)> done);

private:
    void expectAnswers();
    void whenCalendarsAnswered(const Task& start);
    void whenMeetingsRead(Task then);
    void answered(ScanSource source);
    [[nodiscard]] std::vector<SourceReport> reports() const;
    [[nodiscard]] SourceReport processReport() const;
    [[nodiscard]] SourceReport calendarReport() const;
    [[nodiscard]] SourceReport meetingReport() const;

    const ScanOptions options;
    MainLoop& loop;
    ProcessTable& processTable;
    AccessibilityTree& accessibility;
    NoPreferences preferences;
    ProcessMonitor processes;
    CalendarMonitor calendar;
    MeetingParticipantMonitor meetings;

    const Seconds readingTime{10.0}; ///< that windows are waited for

    std::set<ScanSource> awaited; ///< the sources that have not been looked at yet
    Task finished;                ///< once, when every source has been looked at
    std::vector<Subscription> subscriptions;
    Lifetime lifetime;
};

} // namespace quorva
