// Leading the user to the desktop's settings, and what to say where this desktop has no such pane.
#pragma once

#include "core/AppState.h"

#include <QString>

namespace quorva {

/// What is to be done by hand where a pane could not be opened; empty where it could. Main thread
/// only.
struct PaneHelp {
    QString accounts;
    QString accessibility;

    void openInternetAccounts(AppState& state);

    /// Where there is no pane, this switches accessibility on: the user has just asked for it.
    void openAccessibilitySettings(AppState& state);
};

} // namespace quorva
