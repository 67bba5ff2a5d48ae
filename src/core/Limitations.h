// What the program cannot do just now, in words: which part of the desktop is missing, and what
// that costs. An indicator that is silent about it would be taken for "all clear".
#pragma once

#include "detectors/CalendarMonitor.h"
#include "detectors/MeetingParticipantMonitor.h"
#include "detectors/ProcessMonitor.h"
#include "platform/NotificationCenter.h"

#include <optional>
#include <string>
#include <vector>

namespace quorva {

/// What a limitation is about.
enum class LimitedPart { processes, calendars, meetings, notifications, speech, tray };

struct Limitation {
    LimitedPart part;
    std::string text; ///< one line: what is missing, and what that costs

    bool operator==(const Limitation&) const = default;
};

/// What the limitations follow from.
struct CapabilityFacts {
    bool isMonitoring = false;
    std::optional<Time> lastProcessScanDate;
    ProcessCoverage processes;
    bool calendarMonitorEnabled = false;
    CalendarAuthorization calendarAuthorization = CalendarAuthorization::notDetermined;
    std::vector<UnreadCalendar> unreadCalendars;
    bool participantMonitorEnabled = false;
    bool hasAccessibilityPermission = false;
    MeetingCoverage meetings;
    bool showNotifications = false;
    NotificationService notifications;
    std::optional<std::string> speechProblem;
    bool hasTray = true;
};

/// One for each part that is wanted but limited, in the order of the enumeration. What is switched
/// off is no limitation, nor is what is still being found out. Pure function.
[[nodiscard]] std::vector<Limitation> limitations(const CapabilityFacts& facts);

/// The state in words, for the tooltip and the menu: "Monitoring Off", the number of bots, or "All
/// Clear", with what could not be looked at when a source is limited.
[[nodiscard]] std::string stateInWords(bool isMonitoring, std::size_t threatCount,
                                       const std::vector<Limitation>& limitations);

} // namespace quorva
