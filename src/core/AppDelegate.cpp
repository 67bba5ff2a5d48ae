#include "core/AppDelegate.h"

namespace quorva {

AppDelegate::AppDelegate(AppState& state_, MainLoop& loop_) : state(state_), loop(loop_) {}

void AppDelegate::didFinishLaunching() {
    constexpr Seconds timeToSettle{0.5};
    onboardingTimer = loop.after(timeToSettle, lifetime.guard([this] {
        if (!state.settings.hasCompletedOnboarding)
            showOnboardingWindow();
    }));
}

void AppDelegate::showOnboardingWindow() {
    onboardingWindow = true;
}

void AppDelegate::closeOnboardingWindow() {
    onboardingWindow = false;
}

void AppDelegate::willTerminate() {
    state.saveSettings();
}

} // namespace quorva
