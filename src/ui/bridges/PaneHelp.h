// Opens the desktop's settings, or says what to do if this desktop has no such pane.
#pragma once

#include "core/AppState.h"

#include <QString>

namespace quorva {

/// What the user must do by hand because a pane could not be opened; empty if it was opened. Main
/// thread only.
struct PaneHelp {
    QString accounts;
    QString accessibility;

    void openInternetAccounts(AppState& state);

    /// If there is no pane, switches accessibility on: the user has just asked for it.
    void openAccessibilitySettings(AppState& state);
};

} // namespace quorva
