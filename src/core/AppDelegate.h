// What happens when the program has come up, and before it goes down.
#pragma once

#include "core/AppState.h"

namespace quorva {

/// Main thread only.
class AppDelegate {
public:
    /// Both must outlive the delegate.
    AppDelegate(AppState& state, MainLoop& loop);

    /// The window of the first run shows.
    Published<bool, AppDelegate> onboardingWindow{false};

    /// To be called once, when this is known to be the only instance: half a second later the first
    /// run's window shows, unless it has been walked through before.
    void didFinishLaunching();

    /// Shows the window of the first run, again if need be.
    void showOnboardingWindow();
    void closeOnboardingWindow();

    /// Stores the settings; to be called before the program ends.
    void willTerminate();

private:
    AppState& state;
    MainLoop& loop;
    Timer onboardingTimer;
    Lifetime lifetime; // last: goes first
};

} // namespace quorva
