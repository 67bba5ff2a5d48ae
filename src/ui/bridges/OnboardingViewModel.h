// The first run, without its window: which step shows, what has been granted, the looking for
// permissions and accounts that appear meanwhile, and the phases of the first scan.
#pragma once

#include "core/AppState.h"

#include <optional>
#include <vector>

namespace quorva {

enum class OnboardingStep { welcome, privacyPledge, accessibility, calendarSetup, detectionLive };

enum class ScanPhase { process, calendar, meeting, done };

/// Main thread only.
class OnboardingViewModel {
public:
    /// Both must outlive this. Steps whose permission is there already are left out.
    OnboardingViewModel(AppState& state, MainLoop& loop);

    Published<OnboardingStep, OnboardingViewModel> currentStep{OnboardingStep::welcome};
    Published<bool, OnboardingViewModel> scanComplete{false}; ///< what the scan came to is shown
    Published<ScanPhase, OnboardingViewModel> scanPhase{ScanPhase::process};
    Published<bool, OnboardingViewModel> calendarPermissionRequested{false};
    Published<bool, OnboardingViewModel> accessibilityPermissionRequested{false};
    Published<std::vector<CalendarSource>, OnboardingViewModel> connectedCalendarAccounts;
    Published<bool, OnboardingViewModel> hasGoogleCalendar{false};
    Published<bool, OnboardingViewModel> hasExchangeCalendar{false};
    Published<bool, OnboardingViewModel> hasICloudCalendar{false};
    Published<bool, OnboardingViewModel> calendarAccountsRefreshed{false};

    /// Called when a permission has come while the user was elsewhere; may be empty.
    Task onBringToFront;

    /// The steps that there are, in their order.
    [[nodiscard]] std::vector<OnboardingStep> visibleSteps() const;
    /// The current step's position among them, from 1. A step that has just become needless counts
    /// as the one before it.
    [[nodiscard]] int position() const;

    void next();
    void back();

    /// Asks for the permission, and looks for it for about a minute.
    void requestAccessibility();

    /// Asks for access to calendars. A refusal leads to the desktop's settings.
    void requestCalendarAccess();

    void refreshCalendarAccounts();

    /// Ends the first run.
    void complete();

private:
    [[nodiscard]] bool isSkipped(OnboardingStep step) const;
    [[nodiscard]] std::optional<OnboardingStep> neighbour(int direction) const;
    void show(OnboardingStep step);
    void pollAccessibility();
    void pollCalendarAccounts();
    void startScan();

    AppState& state;
    MainLoop& loop;
    Timer pollingTimer; ///< of the step that shows
    int polls = 0;
    std::vector<Timer> scanTimers;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
