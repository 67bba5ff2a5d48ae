// The first run without its window, on virtual time.
#include "ui/bridges/OnboardingViewModel.h"

#include "support/AccessibleElements.h"
#include "support/FakeComputer.h"
#include "ui/bridges/OnboardingBridge.h"

#include <gmock/gmock.h>

#include <optional>

namespace quorva {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using enum OnboardingStep;

class OnboardingViewModelTest : public testing::Test {
protected:
    OnboardingViewModel& start(bool hasAccessibility, bool hasCalendars) {
        computer.accessibility.isOn = hasAccessibility;
        computer.accessibility.grantsTrust = false;
        computer.calendars.status =
            hasCalendars ? CalendarAuthorization::fullAccess : CalendarAuthorization::notDetermined;
        state.emplace(computer.services);
        computer.loop.runPosted();
        return model.emplace(*state, computer.loop);
    }
    std::vector<OnboardingStep> walk(void (OnboardingViewModel::*direction)()) {
        std::vector<OnboardingStep> steps{model->currentStep.get()};
        for (;;) {
            ((*model).*direction)();
            if (model->currentStep.get() == steps.back())
                return steps;
            steps.push_back(model->currentStep.get());
        }
    }
    void goTo(OnboardingStep step) {
        while (model->currentStep.get() != step)
            model->next();
    }
    [[nodiscard]] std::vector<ScanPhase> phasesAt(std::initializer_list<double> times) {
        std::vector<ScanPhase> phases;
        double now = 0;
        for (const double time : times) {
            computer.loop.advance(Seconds(time - now));
            now = time;
            phases.push_back(model->scanPhase.get());
        }
        return phases;
    }

    FakeComputer computer;
    std::optional<AppState> state;
    std::optional<OnboardingViewModel> model;
};

TEST_F(OnboardingViewModelTest, stepsWhosePermissionIsThereAreLeftOutBothWays) {
    const struct {
        bool hasAccessibility;
        bool hasCalendars;
        std::vector<OnboardingStep> steps;
    } table[] = {
        {false, false, {welcome, privacyPledge, accessibility, calendarSetup, detectionLive}},
        {true, false, {welcome, privacyPledge, calendarSetup, detectionLive}},
        {false, true, {welcome, privacyPledge, accessibility, detectionLive}},
        {true, true, {welcome, privacyPledge, detectionLive}},
    };
    for (const auto& row : table) {
        start(row.hasAccessibility, row.hasCalendars);
        EXPECT_THAT(model->visibleSteps(), ElementsAreArray(row.steps));
        EXPECT_EQ(model->position(), 1);
        EXPECT_THAT(walk(&OnboardingViewModel::next), ElementsAreArray(row.steps));
        EXPECT_EQ(model->position(), static_cast<int>(row.steps.size()));
        EXPECT_THAT(walk(&OnboardingViewModel::back),
                    ElementsAreArray(row.steps.rbegin(), row.steps.rend()));
    }
}

TEST_F(OnboardingViewModelTest, aPermissionGivenElsewhereIsSeenWithinTwoSeconds) {
    start(false, true);
    int timesInFront = 0;
    model->onBringToFront = [&] { ++timesInFront; };
    goTo(accessibility);
    model->requestAccessibility();
    computer.loop.advance(20s);
    EXPECT_EQ(timesInFront, 0);
    computer.accessibility.isOn = true;
    computer.loop.advance(2s);
    EXPECT_EQ(timesInFront, 1);
    EXPECT_EQ(model->visibleSteps().size(), 3U);
    computer.loop.advance(60s);
    EXPECT_EQ(timesInFront, 1);
    model->next();
    EXPECT_EQ(model->currentStep.get(), detectionLive);
}

TEST_F(OnboardingViewModelTest, lookingForThePermissionEndsAfterAMinuteOrWithTheStep) {
    for (const bool leaves : {false, true}) {
        start(false, true);
        int timesInFront = 0;
        model->onBringToFront = [&] { ++timesInFront; };
        goTo(accessibility);
        model->requestAccessibility();
        if (leaves)
            model->back();
        computer.loop.advance(leaves ? Seconds(1) : Seconds(61));
        computer.accessibility.isOn = true;
        computer.loop.advance(10s);
        EXPECT_EQ(timesInFront, 0) << leaves;
        EXPECT_TRUE(model->accessibilityPermissionRequested);
    }
}

TEST_F(OnboardingViewModelTest, aGrantOfCalendarsReadsTheAccountsAndARefusalLeadsToThePane) {
    start(true, false);
    using enum CalendarSourceType;
    computer.calendars.accounts = {{"ann@gmail.com", calDAV, CalendarProvider::google},
                                   {"Home", calDAV, CalendarProvider::iCloud}};
    goTo(calendarSetup);
    computer.calendars.answer.granted = false;
    model->requestCalendarAccess();
    EXPECT_TRUE(model->calendarPermissionRequested);
    EXPECT_FALSE(state->permissions.hasCalendarAccess());
    EXPECT_THAT(computer.systemSettings.opened, ElementsAre(SettingsPane::calendarPrivacy));

    computer.calendars.answer.granted = true;
    computer.calendars.status = CalendarAuthorization::fullAccess;
    model->requestCalendarAccess();
    EXPECT_TRUE(state->permissions.hasCalendarAccess());
    EXPECT_TRUE(model->calendarAccountsRefreshed);
    EXPECT_EQ(*model->connectedCalendarAccounts, computer.calendars.accounts);
    EXPECT_TRUE(model->hasGoogleCalendar && model->hasICloudCalendar);
    EXPECT_EQ(computer.systemSettings.opened.size(), 1U);
}

TEST_F(OnboardingViewModelTest, saysWhatIsMissingWhereThereAreNoCalendarsUntilThereAre) {
    start(true, false);
    AppDelegate delegate(*state, computer.loop);
    OnboardingBridge bridge(*state, delegate, computer.loop);
    while (bridge.model.currentStep.get() != calendarSetup)
        bridge.next();
    computer.calendars.status = CalendarAuthorization::restricted;
    bridge.requestCalendarAccess(); // which is granted
    EXPECT_TRUE(bridge.lacksCalendars());
    EXPECT_FALSE(bridge.calendarGranted());
    EXPECT_THAT(computer.systemSettings.opened, testing::IsEmpty());
    computer.calendars.status = CalendarAuthorization::fullAccess; // and the store says nothing
    computer.loop.advance(3s);
    EXPECT_FALSE(bridge.lacksCalendars());
    EXPECT_TRUE(bridge.calendarGranted());
}

TEST_F(OnboardingViewModelTest, accountsAddedElsewhereAppearForTwoMinutes) {
    start(true, false);
    goTo(calendarSetup);
    computer.calendars.status = CalendarAuthorization::fullAccess;
    computer.calendars.accounts = {{"Work", CalendarSourceType::exchange}};
    computer.loop.advance(3s);
    EXPECT_EQ(model->connectedCalendarAccounts->size(), 1U);
    computer.loop.advance(117s); // the 40th poll
    computer.calendars.accounts.push_back({"Home", CalendarSourceType::local});
    computer.loop.advance(60s);
    EXPECT_EQ(model->connectedCalendarAccounts->size(), 1U);
    model->back();
    goTo(calendarSetup); // polls again when opened again
    computer.loop.advance(3s);
    EXPECT_EQ(model->connectedCalendarAccounts->size(), 2U);
}

TEST_F(OnboardingViewModelTest, theFirstScanShowsThePhasesOfWhatItMayLookAt) {
    using enum ScanPhase;
    const struct {
        bool hasAccessibility;
        bool hasCalendars;
        std::vector<ScanPhase> phases; ///< at the start and after 0.8, 1.3 and 1.8 seconds
    } table[] = {
        {false, false, {process, done, done, done}},
        {false, true, {process, calendar, done, done}},
        {true, false, {process, meeting, meeting, done}},
        {true, true, {process, calendar, meeting, done}},
    };
    for (const auto& row : table) {
        start(row.hasAccessibility, row.hasCalendars);
        goTo(detectionLive);
        EXPECT_THAT(phasesAt({0, 0.81, 1.31}),
                    ElementsAre(row.phases[0], row.phases[1], row.phases[2]));
        EXPECT_FALSE(model->scanComplete);
        computer.loop.advance(0.5s);
        EXPECT_EQ(model->scanPhase.get(), row.phases[3]);
        EXPECT_TRUE(model->scanComplete);
    }
}

TEST_F(OnboardingViewModelTest, theFirstScanIsOverWhenEveryWindowHasBeenReadOrHasFailed) {
    start(true, true);
    state->stopMonitoring();
    computer.applications.running = {{"us.zoom.xos", "Zoom", std::nullopt, 500}};
    auto& zoom = computer.accessibility.applications[500];
    zoom.isAnswering = false;
    AppDelegate delegate(*state, computer.loop);
    OnboardingBridge shown(*state, delegate, computer.loop);
    while (shown.model.currentStep.get() != detectionLive)
        shown.next();
    computer.loop.advance(6s);
    EXPECT_FALSE(shown.showResults());
    EXPECT_EQ(shown.phaseText(), "Scanning");
    EXPECT_EQ(shown.scanTitle(), "Running First Scan...");
    computer.loop.advance(10s);
    EXPECT_TRUE(shown.showResults()) << "nobody is kept waiting";
    EXPECT_EQ(shown.resultTitle(), "Scanning");
    EXPECT_EQ(shown.scanned(), "Scanned processes, calendar -- nothing found there.");

    zoom.problem = "it does not answer";
    computer.accessibility.reads.call();
    computer.loop.advance(6s);
    EXPECT_EQ(shown.phaseText(), "Scan complete");
    EXPECT_EQ(shown.scanTitle(), "First Scan Results");
    EXPECT_EQ(shown.resultTitle(), "Not fully watching");
    EXPECT_THAT(shown.uncovered().toStdString(), testing::HasSubstr("it does not answer"));

    zoom = {.windows = {{.title = "Zoom Meeting", .tree = meetingWindow({"Ann"})}}};
    computer.loop.advance(6s);
    EXPECT_EQ(shown.resultTitle(), "All Clear");
    EXPECT_EQ(shown.scanned(),
              "Scanned processes, calendar, meetings -- your Mac is clear of known AI bots.");
}

TEST_F(OnboardingViewModelTest, theFirstScanLooksEvenWhenMonitoringIsOff) {
    start(true, true);
    state->stopMonitoring();
    computer.startOtter();
    goTo(detectionLive);
    computer.loop.runPosted();
    EXPECT_EQ(state->totalThreatCount(), 1U);
    EXPECT_TRUE(state->isMonitoring) << "what is off is not read";
    model->complete();
    EXPECT_TRUE(state->settings.hasCompletedOnboarding);
    EXPECT_TRUE(state->isMonitoring);
}

} // namespace
} // namespace quorva
