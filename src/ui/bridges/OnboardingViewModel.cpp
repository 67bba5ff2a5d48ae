#include "ui/bridges/OnboardingViewModel.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorva {

namespace {

constexpr std::array steps{OnboardingStep::welcome, OnboardingStep::privacyPledge,
                           OnboardingStep::accessibility, OnboardingStep::calendarSetup,
                           OnboardingStep::detectionLive};

constexpr Seconds firstAccessibilityPoll{0.5};
constexpr Seconds accessibilityPollPeriod{2.0};
constexpr int mostAccessibilityPolls = 31; ///< the first one and 30 more

constexpr Seconds calendarPollPeriod{3.0};
constexpr int mostCalendarPolls = 40;

constexpr double longestWait = 15; ///< in seconds, for the results of the first scan

} // namespace

OnboardingViewModel::OnboardingViewModel(AppState& state_, MainLoop& loop_)
    : state(state_), loop(loop_) {}

bool OnboardingViewModel::isSkipped(OnboardingStep step) const {
    return (step == OnboardingStep::accessibility &&
            state.permissions.hasAccessibilityPermission()) ||
           (step == OnboardingStep::calendarSetup && state.permissions.hasCalendarAccess());
}

std::vector<OnboardingStep> OnboardingViewModel::visibleSteps() const {
    std::vector<OnboardingStep> visible;
    std::copy_if(steps.begin(), steps.end(), std::back_inserter(visible),
                 [this](OnboardingStep step) { return !isSkipped(step); });
    return visible;
}

int OnboardingViewModel::position() const {
    const auto visible = visibleSteps();
    return static_cast<int>(
        std::count_if(visible.begin(), visible.end(),
                      [this](OnboardingStep step) { return step <= currentStep.get(); }));
}

std::optional<OnboardingStep> OnboardingViewModel::neighbour(int direction) const {
    const auto count = static_cast<int>(steps.size());
    for (int at = static_cast<int>(currentStep.get()) + direction; at >= 0 && at < count;
         at += direction)
        if (const auto step = steps[static_cast<std::size_t>(at)]; !isSkipped(step))
            return step;
    return std::nullopt;
}

void OnboardingViewModel::next() {
    if (const auto step = neighbour(1))
        show(*step);
}

void OnboardingViewModel::back() {
    if (const auto step = neighbour(-1))
        show(*step);
}

void OnboardingViewModel::show(OnboardingStep step) {
    pollingTimer.reset();
    scanTimers.clear();
    looks.clear();
    polls = 0;
    currentStep = step;
    if (step == OnboardingStep::calendarSetup)
        pollingTimer = loop.every(calendarPollPeriod, [this] { pollCalendarAccounts(); });
    if (step == OnboardingStep::detectionLive)
        startScan();
}

void OnboardingViewModel::requestAccessibility() {
    state.permissions.requestAccessibilityPermission();
    accessibilityPermissionRequested = true;
    polls = 0;
    pollingTimer = loop.after(firstAccessibilityPoll, [this] { pollAccessibility(); });
}

void OnboardingViewModel::pollAccessibility() {
    state.permissions.refreshAccessibilityPermission();
    if (state.permissions.hasAccessibilityPermission()) {
        pollingTimer.reset();
        if (onBringToFront)
            onBringToFront();
    } else if (++polls >= mostAccessibilityPolls) {
        pollingTimer.reset();
    } else {
        pollingTimer = loop.after(accessibilityPollPeriod, [this] { pollAccessibility(); });
    }
}

void OnboardingViewModel::requestCalendarAccess() {
    state.permissions.requestCalendarAccess(lifetime.guard([this](bool isGranted) {
        calendarPermissionRequested = true;
        if (isGranted)
            refreshCalendarAccounts();
        else
            state.openSettingsPane(SettingsPane::calendarPrivacy);
    }));
}

void OnboardingViewModel::pollCalendarAccounts() {
    if (++polls > mostCalendarPolls)
        return pollingTimer.reset();
    if (state.permissions.lacksCalendars())
        state.permissions.refreshCalendars();
    refreshCalendarAccounts();
}

void OnboardingViewModel::refreshCalendarAccounts() {
    state.permissions.refreshCalendarAccounts();
    const auto& accounts = state.permissions.calendarAccounts.get();
    connectedCalendarAccounts = accounts;
    hasGoogleCalendar = state.permissions.hasGoogleCalendar.get();
    hasExchangeCalendar = state.permissions.hasExchangeCalendar.get();
    hasICloudCalendar =
        std::any_of(accounts.begin(), accounts.end(), [](const CalendarSource& account) {
            return account.provider == CalendarProvider::iCloud;
        });
    calendarAccountsRefreshed = true;
}

void OnboardingViewModel::startScan() {
    // The results are of a scan that has just run, whether monitoring starts by itself or not.
    state.startMonitoring();
    state.refreshAllScans();
    scanComplete = false;
    scanPhase = ScanPhase::process;
    const bool hasCalendar = state.sources.calendar.isWatching();
    const bool hasMeetings = state.sources.meeting.isWatching();
    const auto afterCalendar = hasMeetings ? ScanPhase::meeting : ScanPhase::done;
    const auto at = [this](double delay, Task task) {
        scanTimers.push_back(loop.after(Seconds(delay), std::move(task)));
    };
    at(0.8, [this, next = hasCalendar ? ScanPhase::calendar : afterCalendar] { enterPhase(next); });
    at(1.3, [this, afterCalendar] { enterPhase(afterCalendar); });
    at(1.8, [this] {
        for (const auto* const source : state.sources)
            looks.push_back(source->state.observeChanges(lifetime.guard([this] {
                loop.post(lifetime.guard([this] { finishScan(); })); // it is told before it changes
            })));
        finishScan();
    });
    at(longestWait, [this] { scanComplete = true; });
}

void OnboardingViewModel::enterPhase(ScanPhase next) {
    const bool isLooking = std::ranges::any_of(state.sources, [](const Source* source) {
        return source->state->kind == SourceState::Kind::looking;
    });
    scanPhase = next == ScanPhase::done && isLooking ? ScanPhase::waiting : next;
}

/// The scan is over when no source is looking any more. Its results are shown then, or after a
/// while: a window that is never read must not hold up the first run.
void OnboardingViewModel::finishScan() {
    if (looks.empty())
        return;
    enterPhase(ScanPhase::done);
    if (scanPhase != ScanPhase::done)
        return;
    looks.clear();
    scanComplete = true;
}

void OnboardingViewModel::complete() {
    state.completeOnboarding();
}

} // namespace quorva
