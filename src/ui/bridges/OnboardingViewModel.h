// The first run, without its window: the current step, the permissions granted, polling for
// permissions and accounts that appear meanwhile, and the phases of the first scan.
#pragma once

#include "base/Subscription.h"
#include "core/AppState.h"

#include <optional>
#include <vector>

namespace quorva {

enum class OnboardingStep { welcome, privacyPledge, accessibility, calendarSetup, detectionLive };

/// `waiting` comes where a source takes longer than the phases are shown.
enum class ScanPhase { process, calendar, meeting, waiting, done };

/// Main thread only.
class OnboardingViewModel {
public:
    /// Both must outlive this. Steps whose permission is already granted are left out.
    OnboardingViewModel(AppState& state, MainLoop& loop);

    Published<OnboardingStep, OnboardingViewModel> currentStep{OnboardingStep::welcome};
    Published<bool, OnboardingViewModel> scanComplete{false}; ///< its results are shown
    Published<ScanPhase, OnboardingViewModel> scanPhase{ScanPhase::process};
    Published<bool, OnboardingViewModel> calendarPermissionRequested{false};
    Published<bool, OnboardingViewModel> accessibilityPermissionRequested{false};
    Published<std::vector<CalendarSource>, OnboardingViewModel> connectedCalendarAccounts;
    Published<bool, OnboardingViewModel> hasGoogleCalendar{false};
    Published<bool, OnboardingViewModel> hasExchangeCalendar{false};
    Published<bool, OnboardingViewModel> hasICloudCalendar{false};
    Published<bool, OnboardingViewModel> calendarAccountsRefreshed{false};

    /// Called when a permission was granted while the user was in another program; may be empty.
    Task onBringToFront;

    /// The steps of this run, in order.
    [[nodiscard]] std::vector<OnboardingStep> visibleSteps() const;
    /// The current step's position among them, from 1. A step that is no longer needed counts as
    /// the one before it.
    [[nodiscard]] int position() const;

    void next();
    void back();

    /// Asks for the permission, and polls for it for about a minute.
    void requestAccessibility();

    /// Asks for access to calendars. After a refusal, opens the desktop's settings.
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
    void enterPhase(ScanPhase next);
    void finishScan();

    AppState& state;
    MainLoop& loop;
    Timer pollingTimer; ///< of the current step
    int polls = 0;
    std::vector<Timer> scanTimers;
    std::vector<Subscription> looks; ///< at the sources' states, while the scan goes on
    Lifetime lifetime;               // last: destroyed first
};

} // namespace quorva
