// Handles the start and the end of the program.
#pragma once

#include "core/AppState.h"

namespace quorva {

/// Main thread only.
class AppDelegate {
public:
    /// Both must outlive the delegate.
    AppDelegate(AppState& state, MainLoop& loop);

    /// Whether the window of the first run is shown.
    Published<bool, AppDelegate> onboardingWindow{false};

    /// Call once, when this is known to be the only instance. The window of the first run is shown
    /// half a second later, unless the first run was completed before.
    void didFinishLaunching();

    /// Shows or hides the window of the first run.
    void showOnboardingWindow();
    void closeOnboardingWindow();

    /// Stores the settings. Call before the program ends.
    void willTerminate();

private:
    AppState& state;
    MainLoop& loop;
    Timer onboardingTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
